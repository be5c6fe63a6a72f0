#pragma once

#include <QImage>
#include <QWidget>

// A picture at a whole-number zoom over a checkerboard, so that transparent
// pixels read as such. A click on an indexed picture reports the palette index
// under the mouse; Ctrl or Shift asks to add it to the selection.
class QImageWidget : public QWidget
{
    Q_OBJECT

public:
    explicit QImageWidget(QWidget *parent = nullptr);

    void setImage(const QImage &image);
    const QImage &image() const { return m_image; }

    int zoom() const { return m_zoom; }
    void setZoom(int zoom);
    void zoomIn() { setZoom(m_zoom + 1); }
    void zoomOut() { setZoom(m_zoom - 1); }

    // Clicks report colours only while picking is on.
    void setPicking(bool on) { m_picking = on; }

    QSize sizeHint() const override;

signals:
    void colorClicked(uchar index, bool add);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QPoint imagePoint(const QPoint &widgetPoint) const;

    QImage m_image;
    int m_zoom = 2;
    bool m_picking = true;
};
