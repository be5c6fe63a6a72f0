#pragma once

#include "sprites/qabstractpalette.h"

// The "JASC-PAL" text palette.
class QJascPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
