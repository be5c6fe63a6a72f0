#include "qoglrenderwidget.h"

#include "animations/ui/qrenderwidget.h"
#include "render/qrenderer.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSurfaceFormat>

QOGLRenderWidget::QOGLRenderWidget(QRenderer *renderer, QWidget *parent)
    : QOpenGLWidget(parent)
    , m_renderer(renderer)
{
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(0);
    setFormat(format);
    setAutoFillBackground(false);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    QRenderWidget::attach(this, renderer);
}

bool QOGLRenderWidget::available()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

void QOGLRenderWidget::resizeGL(int w, int h)
{
    m_renderer->resizeEvent(QSize(w, h));
}

void QOGLRenderWidget::paintGL()
{
    const QSize size = m_renderer->size();
    if (m_frame.size() != size)
        m_frame = QImage(size, QImage::Format_ARGB32_Premultiplied);
    {
        QPainter raster(&m_frame);
        m_renderer->paint(&raster, m_frame.rect());
    }
    QPainter painter;
    painter.begin(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(0, 0, m_frame);
    painter.end();
}

void QOGLRenderWidget::keyPressEvent(QKeyEvent *event)
{
    QOpenGLWidget::keyPressEvent(event);
    m_renderer->keyPressEvent(event);
}

void QOGLRenderWidget::mousePressEvent(QMouseEvent *event)
{
    QOpenGLWidget::mousePressEvent(event);
    m_renderer->mousePressEvent(event);
}

void QOGLRenderWidget::mouseReleaseEvent(QMouseEvent *event)
{
    QOpenGLWidget::mouseReleaseEvent(event);
    m_renderer->mouseReleaseEvent(event);
}

void QOGLRenderWidget::mouseMoveEvent(QMouseEvent *event)
{
    QOpenGLWidget::mouseMoveEvent(event);
    m_renderer->mouseMoveEvent(event);
}

void QOGLRenderWidget::wheelEvent(QWheelEvent *event)
{
    QOpenGLWidget::wheelEvent(event);
    m_renderer->wheelEvent(event);
}
