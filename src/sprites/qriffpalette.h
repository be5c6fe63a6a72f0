#pragma once

#include "sprites/qabstractpalette.h"

// The RIFF "PAL data" palette, stored in the same reversed order as ACT.
class QRIFFPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
