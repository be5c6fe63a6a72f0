#include "qrenderwidget.h"

#include "render/qrenderer.h"

#include <QPaintEvent>
#include <QPainter>

QRenderWidget::QRenderWidget(QRenderer *renderer, QWidget *parent)
    : QWidget(parent)
    , m_renderer(renderer)
{
    setAutoFillBackground(false);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    attach(this, renderer);
}

void QRenderWidget::attach(QWidget *host, QRenderer *renderer)
{
    // Dragging repaints at once so that the stage follows the mouse.
    QObject::connect(renderer, &QRenderer::repaintNeeded, host, [host](bool immediately) {
        if (immediately)
            host->repaint();
        else
            host->update();
    });
    QObject::connect(renderer, &QRenderer::cursorShapeNeeded, host, [host](Qt::CursorShape shape) { host->setCursor(shape); });
    QObject::connect(renderer, &QRenderer::focusNeeded, host, [host] { host->setFocus(Qt::MouseFocusReason); });
}

void QRenderWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter;
    painter.begin(this);
    m_renderer->paint(&painter, event->rect());
    painter.end();
}

void QRenderWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_renderer->resizeEvent(size());
}

void QRenderWidget::keyPressEvent(QKeyEvent *event)
{
    QWidget::keyPressEvent(event);
    m_renderer->keyPressEvent(event);
}

void QRenderWidget::mousePressEvent(QMouseEvent *event)
{
    QWidget::mousePressEvent(event);
    m_renderer->mousePressEvent(event);
}

void QRenderWidget::mouseReleaseEvent(QMouseEvent *event)
{
    QWidget::mouseReleaseEvent(event);
    m_renderer->mouseReleaseEvent(event);
}

void QRenderWidget::mouseMoveEvent(QMouseEvent *event)
{
    QWidget::mouseMoveEvent(event);
    m_renderer->mouseMoveEvent(event);
}

void QRenderWidget::wheelEvent(QWheelEvent *event)
{
    QWidget::wheelEvent(event);
    m_renderer->wheelEvent(event);
}
