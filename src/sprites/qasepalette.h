#pragma once

#include "sprites/qabstractpalette.h"

// Swatch exchange files (ASE): RGB, CMYK and grey colours, groups skipped.
class QASEPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
