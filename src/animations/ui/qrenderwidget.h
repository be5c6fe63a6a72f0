#pragma once

#include <QWidget>

class QRenderer;

// The native host of a stage renderer: a plain widget that paints through the
// renderer and hands it every input event.
class QRenderWidget : public QWidget
{
    Q_OBJECT

public:
    explicit QRenderWidget(QRenderer *renderer, QWidget *parent = nullptr);

    QRenderer *renderer() const { return m_renderer; }
    // Connects the renderer's requests (repaint, cursor, focus) to `host`.
    static void attach(QWidget *host, QRenderer *renderer);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QRenderer *m_renderer;
};
