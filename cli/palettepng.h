#pragma once

#include <QByteArray>
#include <QImage>

// PNG encoding of an 8-bit indexed image as a palette PNG, always: the pixel
// values stay the image's own colour indices and the colour table goes into PLTE
// with its alpha in tRNS. QImage's own writer turns an image whose colour table
// happens to be the grey ramp into a greyscale PNG, which would lose the palette.
namespace PalettePng {

// An empty array if the image isn't Format_Indexed8 or is null. Entries missing
// from a short colour table (or a missing one) are written opaque black, so that
// every index stays valid in the file.
QByteArray encode(const QImage &image);

} // namespace PalettePng
