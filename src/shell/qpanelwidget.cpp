#include "qpanelwidget.h"

#include <QPainter>
#include <QStyleOption>

QPanelWidget::QPanelWidget(QWidget *parent)
    : QWidget(parent)
{
    setContentsMargins(2, 30, 2, 2);
}

void QPanelWidget::setTitle(const QString &title)
{
    m_title = title;
    update();
}

void QPanelWidget::setTitleMetrics(int top, int height)
{
    m_titleTop = top;
    m_titleHeight = height;
    update();
}

void QPanelWidget::paintEvent(QPaintEvent *)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter p(this);
    // Lets a style sheet give the panel a background of its own.
    style()->drawPrimitive(QStyle::PE_Widget, &option, &p, this);
    QFont f = font();
    f.setWeight(QFont::Bold);
    p.setFont(f);
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(QRect(0, m_titleTop, width(), m_titleHeight), Qt::AlignCenter, m_title);
}
