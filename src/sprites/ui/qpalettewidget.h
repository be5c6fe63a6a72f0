#pragma once

#include "sprites/qrgbpal.h"

#include <QList>
#include <QWidget>

class QRGBPalette;

// The 256 colours of a palette as a 16 x 16 grid of cells. A click selects a
// colour, Ctrl+click adds or removes one, Shift+click selects a range; a
// selected colour dragged onto another cell moves there, the entries between
// shifting by one. The widget keeps its own short history of the colours.
class QPaletteWidget : public QWidget
{
    Q_OBJECT

public:
    static constexpr int HistorySize = 12;

    explicit QPaletteWidget(QWidget *parent = nullptr);

    // The colours shown; not owned. Changes made here go through it.
    void setRgbPalette(QRGBPalette *palette);
    QRGBPalette *rgbPalette() const { return m_palette; }
    ushort colorCount() const { return m_count; }

    // 256 bytes, non-zero for each selected entry.
    const quint8 *selection() const { return m_selection; }
    QList<int> selectedIndices() const;
    void select(int index, bool extend = false);
    void clearSelection();
    int current() const { return m_current; }

    // The cell under a point of the widget, -1 outside the grid.
    int indexAt(const QPoint &point) const;
    QRect cellRect(int index) const;

    // Moves entry `from` to `to`, shifting the entries between; with history.
    void moveColor(int from, int to);

    bool canUndo() const { return !m_undo.isEmpty(); }
    bool canRedo() const { return !m_redo.isEmpty(); }
    bool undo();
    bool redo();
    // Forgets the history; the colours stay.
    void resetHistory();
    // Forgets the history and makes every colour opaque black.
    void resetAll();

    QSize sizeHint() const override { return QSize(16 * 13 + 1, 16 * 13 + 1); }

public slots:
    void setColorCount(ushort count);
    // Around every change of the colours, by this widget or by its owner.
    void internalPalChanging();
    void internalPalChanged();

signals:
    void changed();
    void selectionChanged();
    void colorClick(ushort index, Qt::MouseButton button);
    void colorDblClick(ushort index);
    void multiColorClick();
    void colorMoved(ushort from, ushort to);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    int cellSize() const;
    const QRGBPal *colors() const;
    void applySnapshot(const QRGBPal &colors);

    QRGBPalette *m_palette = nullptr;
    ushort m_count = 256;
    quint8 m_selection[256] = {};
    int m_current = -1;
    int m_anchor = -1;
    int m_hover = -1;
    int m_pressed = -1;
    int m_dropTarget = -1;
    bool m_dragging = false;
    QPoint m_pressPos;
    // Snapshots taken before each change, oldest first, and those undone.
    QList<QRGBPal> m_undo;
    QList<QRGBPal> m_redo;
    bool m_replaying = false;
};
