// What the controller keeps between runs: shortcuts, history, the view
// switches and the places of the floating dialogs.
#include "shell/qinterface.h"

#include "qeditorregistry.h"
#include "qwindowlayout.h"

#include "base/qapppaths.h"
#include "base/qmugenmodel.h"
#include "shell/qhistorymanager.h"

#include <QCoreApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QMainWindow>

QString QInterface::shortcutsFile() const
{
    return m_objects.paths ? m_objects.paths->configFile(QStringLiteral("shortcuts.xml")) : QString();
}

void QInterface::restoreControllerState()
{
    // Until the user has keys of their own, the ones the program ships serve.
    const QString own = shortcutsFile();
    if (!own.isEmpty())
        m_actions.load(QFileInfo::exists(own) || !m_objects.paths
                           ? own
                           : m_objects.paths->dataPath(QStringLiteral("shortcuts.xml")));
    if (m_history)
        m_history->load();
    if (!m_objects.config)
        return;
    const QMugenModel &config = *m_objects.config;
    auto flag = [&config](const QString &key, bool fallback) { return config.flag(key, fallback); };

    // Set the check marks without running their slots: the panels follow the
    // editor switch that comes next.
    auto check = [](QAction *a, bool on) {
        if (!a)
            return;
        const bool blocked = a->blockSignals(true);
        a->setChecked(on);
        a->blockSignals(blocked);
    };
    check(m_viewLeft, flag(QStringLiteral("show_left_panel"), true));
    check(m_viewRight, flag(QStringLiteral("show_right_panel"), true));
    check(m_viewOrganizer, flag(QStringLiteral("show_organizer"), true));
    check(m_viewQuickFind, flag(QStringLiteral("show_quicksearch"), false));
    editFindToggled(m_viewQuickFind && m_viewQuickFind->isChecked());

    if (m_actionDock) {
        const bool showList = flag(QStringLiteral("show_action_list"), true);
        check(m_viewActions, showList);
        m_actionDock->setVisible(showList);
        // 0 (never stored) and anything unknown mean the right side.
        const int area = config.number(QStringLiteral("action_list_area"));
        m_window->addDockWidget(area == int(Qt::LeftDockWidgetArea) ? Qt::LeftDockWidgetArea
                                                                     : Qt::RightDockWidgetArea,
                                m_actionDock);
        const int width = config.number(QStringLiteral("action_list_width"));
        if (width > 0)
            m_actionDock->resize(width, 100);
    }

    for (auto it = m_dialogs.cbegin(); it != m_dialogs.cend(); ++it) {
        QWidget *dialog = it.value();
        if (!dialog)
            continue;
        const QString x = it.key() + QStringLiteral("_x");
        const QString y = it.key() + QStringLiteral("_y");
        if (config.map.contains(x) && config.map.contains(y))
            dialog->move(config.number(x), config.number(y));
        if (flag(QStringLiteral("show_") + it.key(), false))
            dialog->show();
    }
}

void QInterface::saveControllerState()
{
    if (m_history)
        m_history->save();
    if (!shortcutsFile().isEmpty())
        m_actions.save(shortcutsFile());
    if (!m_objects.config)
        return;
    QMap<QString, QVariant> &map = m_objects.config->map;
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
