#pragma once

#include <QObject>
#include <QSize>

class QKeyEvent;
class QMouseEvent;
class QPainter;
class QWheelEvent;

// Draws into a host and takes the host's input. The host is any paint target
// that forwards its events: the native and the OpenGL stage widgets, or a
// QImage in the tests and the command-line tool. Nothing here needs widgets.
class QRenderer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void keyPressEvent(QKeyEvent *) {}
    virtual void mousePressEvent(QMouseEvent *) {}
    virtual void mouseReleaseEvent(QMouseEvent *) {}
    virtual void mouseMoveEvent(QMouseEvent *) {}
    virtual void wheelEvent(QWheelEvent *) {}
    // The host's new size.
    virtual void resizeEvent(const QSize &size) { m_size = size; }
    // `exposed` is the part of the host to repaint.
    virtual void paint(QPainter *painter, const QRect &exposed) = 0;

    QSize size() const { return m_size; }

signals:
    // The host should paint again: at once while the user drags, so that the
    // stage follows the mouse, else when the event loop comes round.
    void repaintNeeded(bool immediately);
    void cursorShapeNeeded(Qt::CursorShape shape);
    void focusNeeded();

protected:
    QSize m_size;
};
