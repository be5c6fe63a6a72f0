#include "qzoom.h"

qreal QZoom::factorAt(int index)
{
    static constexpr qreal table[Count] = {0.25, 0.5, 1, 2, 3, 4, 5, 6, 7, 8};
    return table[qBound(0, index, Count - 1)];
}

bool QZoom::zoomIn()
{
    if (m_index >= Count - 1)
        return false;
    ++m_index;
    return true;
}

bool QZoom::zoomOut(int imageWidth, int imageHeight)
{
    // A quarter needs four image pixels for one on screen, a half two.
    const int smallest = qMin(imageWidth, imageHeight);
    if (m_index == 0 || (m_index == 1 && smallest < 4) || (m_index == 2 && smallest < 2))
        return false;
    --m_index;
    return true;
}

void QZoom::fit(int imageWidth, int imageHeight)
{
    const int smallest = qMin(imageWidth, imageHeight);
    if (smallest < 2 && m_index < 2)
        m_index = 2;
    else if (smallest < 4 && m_index == 0)
        m_index = 1;
}
