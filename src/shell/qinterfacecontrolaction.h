#pragma once

#include "qinterfacecontrol.h"

#include <QList>
#include <QPointer>

class QAction;
class QToolButton;

// A command placed on a panel: one tool button per placement, all sharing
// the action, so they enable and disable together.
class QInterfaceControlAction : public QInterfaceControl
{
public:
    explicit QInterfaceControlAction(QAction *action);
    ~QInterfaceControlAction() override;

    void clear() override;
    void setEnabled(bool enabled) override;
    QWidget *create(QWidget *parent, const QString &name, int x, int y, int width, int height,
                    const QTranslationUnit &translation) override;
    void retranslate(const QTranslationUnit &translation) override;

    QAction *action() const { return m_action; }
    QList<QToolButton *> buttons() const;

private:
    QPointer<QAction> m_action;
    QList<QPointer<QToolButton>> m_buttons;
};
