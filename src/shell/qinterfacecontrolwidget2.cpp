#include "qinterfacecontrolwidget2.h"

QInterfaceControlWidget2::QInterfaceControlWidget2(int type, int captionId,
                                                   const QInterfaceControlOptions *options,
                                                   QObject *owner, const char *slot,
                                                   const char *signal, const QTranslationUnit &tu)
    : QInterfaceControlWidgetBase(type, captionId, options)
{
    for (QPointer<QWidget> &w : m_widgets)
        w = build(nullptr, owner, slot, signal, tu);
}

QInterfaceControlWidget2::~QInterfaceControlWidget2()
{
    for (const QPointer<QWidget> &w : m_widgets)
        delete w.data();
}

void QInterfaceControlWidget2::clear()
{
    for (const QPointer<QWidget> &w : m_widgets) {
        if (w) {
            w->hide();
            w->setParent(nullptr);
        }
    }
    m_placed = 0;
}

void QInterfaceControlWidget2::setEnabled(bool enabled)
{
    m_enabled = enabled;
    for (const QPointer<QWidget> &w : m_widgets) {
        if (w)
            w->setEnabled(enabled);
    }
}

QWidget *QInterfaceControlWidget2::create(QWidget *parent, const QString &name, int x, int y,
                                          int width, int height, const QTranslationUnit &)
{
    if (m_placed >= 2 || !m_widgets[size_t(m_placed)])
        return nullptr;
    QWidget *w = m_widgets[size_t(m_placed++)];
    place(w, parent, name, x, y, width, height);
    return w;
}

void QInterfaceControlWidget2::retranslate(const QTranslationUnit &tu)
{
    for (const QPointer<QWidget> &w : m_widgets)
        retranslateWidget(w, tu);
}
