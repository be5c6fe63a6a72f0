#pragma once

// Colours for the palette tests, and how QTest prints them.

#include "sprites/qrgbpal.h"

#include <QtTest>

namespace TestSupport {

inline QRGBColor rgb(int r, int g, int b, int a = 255)
{
    return QRGBColor{quint8(r), quint8(g), quint8(b), quint8(a)};
}

} // namespace TestSupport

namespace QTest {
template <> inline char *toString(const QRGBColor &c)
{
    return qstrdup(QByteArray::number(c.r) + "," + QByteArray::number(c.g) + "," + QByteArray::number(c.b) + ","
                   + QByteArray::number(c.a));
}
} // namespace QTest
