#pragma once

#include "sprites/qabstractpalette.h"

// Colour swatches (ACO), version 1 section.
class QACOPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
