#pragma once

#include <QImage>
#include <QOpenGLWidget>

class QRenderer;

// The OpenGL host of a stage renderer. The stage is drawn by the same code as
// on the native host, into an image that the GPU then puts on screen: the
// blending modes of the frames are those of the raster engine on both hosts.
// Never created on a platform without OpenGL (offscreen).
class QOGLRenderWidget : public QOpenGLWidget
{
    Q_OBJECT

public:
    explicit QOGLRenderWidget(QRenderer *renderer, QWidget *parent = nullptr);

    QRenderer *renderer() const { return m_renderer; }
    // Whether this platform can show OpenGL widgets at all.
    static bool available();

protected:
    void paintGL() override;
    void resizeGL(int w, int h) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QRenderer *m_renderer;
    QImage m_frame;
};
