#pragma once

#include <QWidget>

class QTextEditor;

// The strip beside the text of a QTextEditor: line numbers and fold boxes.
// It only forwards its events to the editor, which knows the geometry.
class QEditorExtraArea : public QWidget
{
    Q_OBJECT

public:
    explicit QEditorExtraArea(QTextEditor *editor);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QTextEditor *m_editor;
};
