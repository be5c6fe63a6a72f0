#include "qpalettewidget.h"

#include "sprites/qrgbpalette.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace {

constexpr int Columns = 16;

// Light text on dark colours and dark text on light ones.
bool isDark(const QRGBColor &c)
{
    return c.r * 299 + c.g * 587 + c.b * 114 < 128000;
}

} // namespace

QPaletteWidget::QPaletteWidget(QWidget *parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void QPaletteWidget::setRgbPalette(QRGBPalette *palette)
{
    if (m_palette == palette)
        return;
    if (m_palette)
        disconnect(m_palette, nullptr, this, nullptr);
    m_palette = palette;
    if (m_palette) {
        connect(m_palette, &QRGBPalette::changing, this, &QPaletteWidget::internalPalChanging);
        connect(m_palette, &QRGBPalette::changed, this, &QPaletteWidget::internalPalChanged);
        connect(m_palette, &QObject::destroyed, this, [this] { m_palette = nullptr; });
    }
    resetHistory();
    update();
}

const QRGBPal *QPaletteWidget::colors() const
{
    return m_palette ? m_palette->buffer() : nullptr;
}

void QPaletteWidget::setColorCount(ushort count)
{
    const ushort c = count == 32 ? 32 : 256;
    if (c == m_count)
        return;
    m_count = c;
    for (int i = m_count; i < 256; ++i)
        m_selection[i] = 0;
    update();
}

// --- selection -----------------------------------------------------------------

QList<int> QPaletteWidget::selectedIndices() const
{
    QList<int> list;
    for (int i = 0; i < 256; ++i)
        if (m_selection[i])
            list << i;
    return list;
}

void QPaletteWidget::select(int index, bool extend)
{
    if (index < 0 || index >= m_count)
        return;
    if (!extend)
        std::fill(std::begin(m_selection), std::end(m_selection), quint8(0));
    m_selection[index] = 1;
    m_current = index;
    m_anchor = index;
    update();
    emit selectionChanged();
}

void QPaletteWidget::clearSelection()
{
    std::fill(std::begin(m_selection), std::end(m_selection), quint8(0));
    m_current = m_anchor = -1;
    update();
    emit selectionChanged();
}

// --- history ---------------------------------------------------------------------

void QPaletteWidget::internalPalChanging()
{
    if (m_replaying || !colors())
        return;
    m_undo.append(*colors());
    while (m_undo.size() > HistorySize)
        m_undo.removeFirst();
    m_redo.clear();
}

void QPaletteWidget::internalPalChanged()
{
    update();
    emit changed();
}

void QPaletteWidget::applySnapshot(const QRGBPal &snapshot)
{
    m_replaying = true;
    m_palette->setColorsQuiet(snapshot);
    m_replaying = false;
    internalPalChanged();
}

bool QPaletteWidget::undo()
{
    if (m_undo.isEmpty() || !colors())
        return false;
    m_redo.append(*colors());
    applySnapshot(m_undo.takeLast());
    return true;
}

bool QPaletteWidget::redo()
{
    if (m_redo.isEmpty() || !colors())
        return false;
    m_undo.append(*colors());
    applySnapshot(m_redo.takeLast());
    return true;
}

void QPaletteWidget::resetHistory()
{
    m_undo.clear();
    m_redo.clear();
}

void QPaletteWidget::resetAll()
{
    resetHistory();
    if (m_palette) {
        m_replaying = true;
        m_palette->setColorsQuiet(QRGBPal());
        m_replaying = false;
        internalPalChanged();
    }
}

void QPaletteWidget::moveColor(int from, int to)
{
    if (!m_palette || !colors() || from == to || from < 0 || to < 0 || from >= m_count || to >= m_count)
        return;
    QRGBPal moved = *colors();
    const QRGBColor c = moved[from];
    if (from < to)
        std::memmove(&moved[from], &moved[from + 1], sizeof(QRGBColor) * size_t(to - from));
    else
        std::memmove(&moved[to + 1], &moved[to], sizeof(QRGBColor) * size_t(from - to));
    moved[to] = c;
    m_palette->setColors(moved);
    select(to);
    emit colorMoved(ushort(from), ushort(to));
}

// --- geometry and drawing ----------------------------------------------------------

int QPaletteWidget::cellSize() const
{
    // Whole pixels per cell, one of them for the grid line.
    return qMax(3, (qMin(width(), height()) - 1) / Columns);
}

QRect QPaletteWidget::cellRect(int index) const
{
    const int s = cellSize();
    return QRect((index % Columns) * s, (index / Columns) * s, s + 1, s + 1);
}

int QPaletteWidget::indexAt(const QPoint &p) const
{
    const int s = cellSize();
    if (p.x() < 0 || p.y() < 0 || p.x() >= Columns * s || p.y() >= Columns * s)
        return -1;
    return (p.y() / s) * Columns + p.x() / s;
}

void QPaletteWidget::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    const QColor grid = palette().color(QPalette::Dark).darker(150);
    p.fillRect(rect(), palette().color(QPalette::Window));
    const QRGBPal *pal = colors();
    const int s = cellSize();
    p.fillRect(QRect(0, 0, Columns * s + 1, Columns * s + 1), grid);
    for (int i = 0; i < 256; ++i) {
        const QRect cell = cellRect(i).adjusted(1, 1, -1, -1);
        const QRGBColor c = pal ? (*pal)[i] : QRGBColor{0, 0, 0, 255};
        if (c.a < 255) {
            // Translucent entries over a checkerboard, so their alpha shows.
            const int h = qMax(1, cell.width() / 2);
            p.fillRect(cell, Qt::white);
            p.fillRect(QRect(cell.topLeft(), QSize(h, h)), QColor(204, 204, 204));
            p.fillRect(QRect(cell.left() + h, cell.top() + h, cell.width() - h, cell.height() - h), QColor(204, 204, 204));
        }
        p.fillRect(cell, QColor(c.r, c.g, c.b, c.a));
        if (i >= m_count) {
            // Past the colour count: kept in the file but not used by the sprites.
            QColor veil = palette().color(QPalette::Window);
            veil.setAlpha(170);
            p.fillRect(cell, veil);
            p.fillRect(cell, QBrush(palette().color(QPalette::Mid), Qt::BDiagPattern));
        }
    }
    // Entry 0 is the transparent colour of every indexed sprite: a corner mark.
    if (pal) {
        const QRect c0 = cellRect(0).adjusted(1, 1, -1, -1);
        const QColor mark = isDark((*pal)[0]) ? Qt::white : Qt::black;
        p.setPen(QPen(mark, 1));
        p.drawLine(c0.topLeft(), c0.bottomRight());
        p.drawLine(c0.topRight(), c0.bottomLeft());
    }
    // Selected cells: a black and a white frame, visible on any colour.
    for (int i = 0; i < 256; ++i) {
        if (!m_selection[i])
            continue;
        const QRect r = cellRect(i);
        p.setPen(QPen(Qt::black, 1));
        p.drawRect(r.adjusted(0, 0, -1, -1));
        p.setPen(QPen(Qt::white, 1));
        p.drawRect(r.adjusted(1, 1, -2, -2));
    }
    if (m_current >= 0 && m_current < 256 && m_selection[m_current]) {
        const QRect r = cellRect(m_current);
        p.setPen(QPen(QColor(255, 200, 0), 2));
        p.drawRect(r.adjusted(1, 1, -1, -1));
    }
    if (m_dragging && m_dropTarget >= 0) {
        const QRect r = cellRect(m_dropTarget);
        p.setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::DashLine));
        p.drawRect(r.adjusted(1, 1, -1, -1));
    }
    if (m_hover >= 0 && m_hover < 256 && !m_selection[m_hover]) {
        p.setPen(QPen(palette().color(QPalette::Highlight), 1));
        p.drawRect(cellRect(m_hover).adjusted(0, 0, -1, -1));
    }
}

// --- the mouse ---------------------------------------------------------------------

void QPaletteWidget::mousePressEvent(QMouseEvent *event)
{
    const int i = indexAt(event->position().toPoint());
    if (i < 0 || i >= m_count)
        return;
    const Qt::KeyboardModifiers mods = event->modifiers();
    m_pressPos = event->position().toPoint();
    m_pressed = -1;
    if (event->button() == Qt::LeftButton && (mods & Qt::ShiftModifier) && m_anchor >= 0) {
        const int a = qMin(m_anchor, i), b = qMax(m_anchor, i);
        if (!(mods & Qt::ControlModifier))
            std::fill(std::begin(m_selection), std::end(m_selection), quint8(0));
        for (int k = a; k <= b; ++k)
            m_selection[k] = 1;
        m_current = i;
        update();
        emit selectionChanged();
        emit multiColorClick();
        return;
    }
    if (event->button() == Qt::LeftButton && (mods & Qt::ControlModifier)) {
        m_selection[i] = m_selection[i] ? 0 : 1;
        m_current = i;
        m_anchor = i;
        update();
        emit selectionChanged();
        emit multiColorClick();
        return;
    }
    if (event->button() == Qt::LeftButton) {
        // A press on the one selected colour may start a drag; otherwise it selects.
        if (!m_selection[i] || selectedIndices().size() > 1)
            select(i);
        m_pressed = i;
    }
    emit colorClick(ushort(i), event->button());
}

void QPaletteWidget::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    const int i = indexAt(pos);
    if (m_pressed >= 0 && (event->buttons() & Qt::LeftButton)) {
        if (!m_dragging && (pos - m_pressPos).manhattanLength() >= QApplication::startDragDistance())
            m_dragging = true;
        if (m_dragging) {
            m_dropTarget = i >= 0 && i < m_count ? i : -1;
            setCursor(Qt::ClosedHandCursor);
        }
    }
    if (i != m_hover) {
        m_hover = i;
        if (i >= 0 && colors()) {
            const QRGBColor c = (*colors())[i];
            QString text = tr("Index %1: %2, %3, %4").arg(i).arg(c.r).arg(c.g).arg(c.b);
            if (c.a != 255)
                text += tr(" (alpha %1)").arg(c.a);
            if (i == 0)
                text += tr("\nTransparent colour of the sprites");
            if (i >= m_count)
                text += tr("\nPast the colour count");
            setToolTip(text);
            if (underMouse())
                QToolTip::showText(event->globalPosition().toPoint(), text, this, cellRect(i));
        } else {
            setToolTip(QString());
        }
    }
    update();
}

void QPaletteWidget::mouseReleaseEvent(QMouseEvent *event)
{
    const int from = m_pressed;
    const bool dragged = m_dragging;
    const int target = indexAt(event->position().toPoint());
    m_pressed = -1;
    m_dragging = false;
    m_dropTarget = -1;
    unsetCursor();
    if (dragged && from >= 0 && target >= 0 && target < m_count && target != from)
        moveColor(from, target);
    else
        update();
}

void QPaletteWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int i = indexAt(event->position().toPoint());
    if (i < 0 || i >= m_count || event->button() != Qt::LeftButton)
        return;
    select(i);
    emit colorDblClick(ushort(i));
}

void QPaletteWidget::leaveEvent(QEvent *)
{
    m_hover = -1;
    update();
}
