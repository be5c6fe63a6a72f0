#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

class QAnimations;
class QSprites;

// One image of an animated GIF: an 8-bit indexed sprite placed on the common
// canvas, index 0 transparent.
struct GifFrame
{
    QList<QRgb> palette; // local colour table; empty when the global one serves
    QImage image;        // Format_Indexed8, already mirrored
    quint16 left = 0;
    quint16 top = 0;
    quint16 delay = 0;   // hundredths of a second
    bool loop = false;   // a NETSCAPE2.0 loop block stands before this image
};

// Writes GIF89a files from indexed images. Nothing is composed: each frame is
// its own image on the canvas, cleared to the background after it shows
// (disposal 2), so the file stays as small as the sprites.
class GifWriter
{
public:
    QList<GifFrame> frames;
    QList<QRgb> globalPalette; // empty: every frame carries its own table
    qint16 width = 0;
    qint16 height = 0;

    QByteArray encode() const;
    // Through a temporary file renamed over `path`: a failed write leaves an
    // existing file as it was. `error` gets the reason.
    bool save(const QString &path, QString *error) const;

    // The LZW data of an image, as sub-blocks with their terminator, for a
    // minimum code size of 8. Pixels are read row by row across the width.
    static QByteArray lzw(const QImage &image);
    // Hundredths of a second for a frame of `ticks` at the engine's 60 ticks
    // a second; -1 (forever) becomes 65535.
    static quint16 delayOf(int ticks);
};

namespace AnimationGif {

// The writer for action `anim` of the store: the canvas that holds every
// frame on a common axis, a global table when all sprites share their
// colours, loop blocks before each Loopstart frame (or the first frame when
// there is none). Frames whose sprite is missing are left out. False, with
// the reason in `why`, when no frame shows a sprite or the frames spread
// wider than a GIF can hold.
bool build(const QAnimations &store, const QSprites *sprites, int anim, GifWriter *out, QString *why = nullptr);

} // namespace AnimationGif
