#pragma once

#include "sprites/qabstractpalette.h"

// Raw 768 bytes of red, green, blue, entry 255 first.
class QACTPalette : public QAbstractPalette
{
public:
    bool load(QIODevice &device, QRGBPal *colors) override;
};
