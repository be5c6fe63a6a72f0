// What the controller keeps between runs: shortcuts, history, the view
// switches and the places of the floating dialogs.
#include "shell/qinterface.h"

#include "shell/qappobjects.h"
#include "base/qmugenmodel.h"
#include "shell/qhistorymanager.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QMainWindow>

namespace {
QString &stateFolderOverride()
{
    static QString folder;
    return folder;
}

bool flag(const QMap<QString, QVariant> &map, const QString &key, bool fallback)
{
    // A key that is missing, or present without a value, keeps the default.
    const QString s = map.value(key).toString().trimmed().toLower();
    if (s.isEmpty())
        return fallback;
    return s == QLatin1String("true") || s.toInt() != 0;
}
} // namespace

void QInterface::setStateFolder(const QString &folder)
{
    stateFolderOverride() = folder;
}

QString QInterface::stateFile(const QString &name)
{
    const QString folder =
        stateFolderOverride().isEmpty() ? QCoreApplication::applicationDirPath() : stateFolderOverride();
    return folder + QLatin1Char('/') + name;
}

void QInterface::restoreControllerState()
{
    m_actions.load(stateFile(QStringLiteral("shortcuts.xml")));
    if (m_history)
        m_history->load();
    if (!Bf::config)
        return;
    const QMap<QString, QVariant> &map = Bf::config->map;

    // Set the check marks without running their slots: the panels follow the
    // editor switch that comes next.
    auto check = [](QAction *a, bool on) {
        if (!a)
            return;
        const bool blocked = a->blockSignals(true);
        a->setChecked(on);
        a->blockSignals(blocked);
    };
    check(m_viewLeft, flag(map, QStringLiteral("show_left_panel"), true));
    check(m_viewRight, flag(map, QStringLiteral("show_right_panel"), true));
    check(m_viewOrganizer, flag(map, QStringLiteral("show_organizer"), true));
    check(m_viewQuickFind, flag(map, QStringLiteral("show_quicksearch"), false));
    editFindToggled(m_viewQuickFind && m_viewQuickFind->isChecked());

    if (m_actionDock) {
        const bool showList = flag(map, QStringLiteral("show_action_list"), true);
        check(m_viewActions, showList);
        m_actionDock->setVisible(showList);
        // 0 (never stored) and anything unknown mean the right side.
        const int area = map.value(QStringLiteral("action_list_area")).toString().toInt();
        m_window->addDockWidget(area == int(Qt::LeftDockWidgetArea) ? Qt::LeftDockWidgetArea
                                                                     : Qt::RightDockWidgetArea,
                                m_actionDock);
        const int width = map.value(QStringLiteral("action_list_width")).toString().toInt();
        if (width > 0)
            m_actionDock->resize(width, 100);
    }

    for (auto it = m_dialogs.cbegin(); it != m_dialogs.cend(); ++it) {
        QWidget *dialog = it.value();
        if (!dialog)
            continue;
        const QString x = it.key() + QStringLiteral("_x");
        const QString y = it.key() + QStringLiteral("_y");
        if (map.contains(x) && map.contains(y))
            dialog->move(map.value(x).toString().toInt(), map.value(y).toString().toInt());
        if (flag(map, QStringLiteral("show_") + it.key(), false))
            dialog->show();
    }
}

void QInterface::saveControllerState()
{
    if (m_history)
        m_history->save();
    m_actions.save(stateFile(QStringLiteral("shortcuts.xml")));
    if (!Bf::config)
        return;
    QMap<QString, QVariant> &map = Bf::config->map;
    if (m_viewQuickFind)
        map[QStringLiteral("show_quicksearch")] = m_viewQuickFind->isChecked();
    if (m_viewLeft)
        map[QStringLiteral("show_left_panel")] = m_viewLeft->isChecked();
    if (m_viewRight)
        map[QStringLiteral("show_right_panel")] = m_viewRight->isChecked();
    if (m_viewOrganizer)
        map[QStringLiteral("show_organizer")] = m_viewOrganizer->isChecked();
    if (m_actionDock) {
        map[QStringLiteral("show_action_list")] = !m_actionDock->isHidden();
        map[QStringLiteral("action_list_width")] = m_actionDock->width();
        map[QStringLiteral("action_list_area")] = int(m_window->dockWidgetArea(m_actionDock));
    }
    for (auto it = m_dialogs.cbegin(); it != m_dialogs.cend(); ++it) {
        QWidget *dialog = it.value();
        if (!dialog)
            continue;
        map[QStringLiteral("show_") + it.key()] = dialog->isVisible();
        // A dialog never shown has no place of its own yet.
        if (dialog->testAttribute(Qt::WA_WState_ExplicitShowHide) || dialog->isVisible()) {
            map[it.key() + QStringLiteral("_x")] = dialog->x();
            map[it.key() + QStringLiteral("_y")] = dialog->y();
        }
    }
}
