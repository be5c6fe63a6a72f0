#include "qimagewidget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr int MaxZoom = 8;

} // namespace

QImageWidget::QImageWidget(QWidget *parent)
    : QWidget(parent)
{
    setMouseTracking(true);
}

void QImageWidget::setImage(const QImage &image)
{
    const bool resized = image.size() != m_image.size();
    m_image = image;
    if (resized) {
        updateGeometry();
        resize(sizeHint());
    }
    update();
}

void QImageWidget::setZoom(int zoom)
{
    zoom = qBound(1, zoom, MaxZoom);
    if (zoom == m_zoom)
        return;
    m_zoom = zoom;
    updateGeometry();
    resize(sizeHint());
    update();
}

QSize QImageWidget::sizeHint() const
{
    return m_image.isNull() ? QSize(64, 64) : m_image.size() * m_zoom;
}

QPoint QImageWidget::imagePoint(const QPoint &p) const
{
    return QPoint(p.x() / m_zoom, p.y() / m_zoom);
}

void QImageWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    // A checkerboard behind the picture, in 8-pixel squares.
    const QRect area = event->rect();
    constexpr int Square = 8;
    for (int y = area.top() / Square * Square; y <= area.bottom(); y += Square)
        for (int x = area.left() / Square * Square; x <= area.right(); x += Square)
            painter.fillRect(x, y, Square, Square, ((x / Square + y / Square) & 1) ? QColor(204, 204, 204) : QColor(250, 250, 250));
    if (!m_image.isNull())
        painter.drawImage(QRect(QPoint(0, 0), m_image.size() * m_zoom), m_image);
}

void QImageWidget::mousePressEvent(QMouseEvent *event)
{
    const QPoint p = imagePoint(event->position().toPoint());
    if (!m_picking || event->button() != Qt::LeftButton || m_image.format() != QImage::Format_Indexed8
        || !m_image.rect().contains(p))
        return;
    const bool add = event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::ShiftModifier);
    emit colorClicked(uchar(m_image.pixelIndex(p)), add);
}

void QImageWidget::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint p = imagePoint(event->position().toPoint());
    if (!m_image.rect().contains(p)) {
        QToolTip::hideText();
        return;
    }
    const QColor c = QColor::fromRgba(m_image.pixel(p));
    QString text = tr("%1, %2: %3, %4, %5").arg(p.x()).arg(p.y()).arg(c.red()).arg(c.green()).arg(c.blue());
    if (m_image.format() == QImage::Format_Indexed8)
        text = tr("%1, %2: index %3 (%4, %5, %6)").arg(p.x()).arg(p.y()).arg(m_image.pixelIndex(p)).arg(c.red()).arg(c.green()).arg(c.blue());
    QToolTip::showText(event->globalPosition().toPoint(), text, this);
}
