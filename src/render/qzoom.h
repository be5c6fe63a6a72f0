#pragma once

#include <QtGlobal>

// The zoom of every stage: an index into a fixed table of factors, so that
// the sprites, animations and sounds editors, the command-line tool and the
// tests step through exactly the same scales.
class QZoom
{
public:
    static constexpr int Count = 10;
    static constexpr int Default = 2; // 1:1

    explicit QZoom(int index = Default) { setIndex(index); }

    int index() const { return m_index; }
    // Values outside the table are taken to its nearest end.
    void setIndex(int index) { m_index = qBound(0, index, Count - 1); }
    // 0.25, 0.5, 1, 2, 3 ... 8.
    qreal factor() const { return factorAt(m_index); }
    static qreal factorAt(int index);
    // Whole screen pixels per image pixel: 1 up to 1:1, the factor above it.
    int pixelSize() const { return m_index > Default ? int(factor()) : 1; }

    // One step in or out. Zooming out stops where an image of this size would
    // shrink below a pixel or two on screen; false when nothing changed.
    bool zoomIn();
    bool zoomOut(int imageWidth, int imageHeight);
    // After a new image: the smallest steps are left if they would hide it.
    void fit(int imageWidth, int imageHeight);

private:
    int m_index = Default;
};
