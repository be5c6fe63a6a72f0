#include "qinterfacecontrolaction.h"

#include <QAction>
#include <QToolButton>

QInterfaceControlAction::QInterfaceControlAction(QAction *action)
    : m_action(action)
{
}

QInterfaceControlAction::~QInterfaceControlAction()
{
    clear();
}

void QInterfaceControlAction::clear()
{
    for (const QPointer<QToolButton> &b : std::as_const(m_buttons))
        delete b.data();
    m_buttons.clear();
}

void QInterfaceControlAction::setEnabled(bool enabled)
{
    if (m_action)
        m_action->setEnabled(enabled);
}

QWidget *QInterfaceControlAction::create(QWidget *parent, const QString &name, int x, int y,
                                         int width, int height, const QTranslationUnit &)
{
    auto *b = new QToolButton(parent);
    b->setObjectName(name);
    b->setDefaultAction(m_action);
    const QSize natural = b->sizeHint();
    const QSize size(width < 0 ? natural.width() : width, height < 0 ? natural.height() : height);
    b->setGeometry(x, y, size.width(), size.height());
    b->setMinimumSize(size);
    m_buttons.append(b);
    return b;
}

void QInterfaceControlAction::retranslate(const QTranslationUnit &)
{
    // The action carries its own texts; the buttons follow it.
}

QList<QToolButton *> QInterfaceControlAction::buttons() const
{
    QList<QToolButton *> list;
    for (const QPointer<QToolButton> &b : m_buttons) {
        if (b)
            list.append(b);
    }
    return list;
}
