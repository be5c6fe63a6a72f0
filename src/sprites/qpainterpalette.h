#pragma once

#include "sprites/qabstractpalette.h"

// Text swatches of a paint tool: a "ROWS" head, then "R: r, G: g, B: b" lines.
class QPainterPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
