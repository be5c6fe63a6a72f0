// Menus, the status bar and the small slots behind them.
#include "core/ui/qinterface.h"

#include "core/qaction2.h"
#include "core/qappobjects.h"
#include "core/qbugreport.h"
#include "core/qlog.h"
#include "core/qmugenmodel.h"
#include "core/qproject.h"
#include "core/ui/bugdlg.h"
#include "core/ui/errordlg.h"
#include "core/ui/qaskuser.h"
#include "core/ui/qhistorymanager.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDockWidget>
#include <QLabel>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QStatusBar>
#include <QTabBar>

namespace {
const QList<int> kGlobal{QAction2::GlobalScope, -1};

QMenu *windowMenu(QMainWindow *window, const char *name)
{
    return window->findChild<QMenu *>(QString::fromLatin1(name));
}
} // namespace

void QInterface::buildControllerUi()
{
    m_issues = new ErrorDlg(m_window);
    m_issues->setObjectName(QStringLiteral("issuesDialog"));
    registerDialog(QStringLiteral("issues"), m_issues);
    connect(m_issues, &ErrorDlg::itemClicked, this, &QInterface::itemClicked);

    buildStatusBar();
    buildProjectMenu();
    buildViewMenu();
    buildToolsAndHelpMenus();

    // A carrier only fires for actions a widget has taken in.
    connect(&m_actions, &QActionManager::carrierCreated, m_window,
            [this](QAction *carrier) { m_window->addAction(carrier); });
    connect(&m_actions, &QActionManager::conflict, this, [this](QAction2 *, const QKeySequence &) {
        QAskUser::warning(m_window, tr("Conflict!"),
                          tr("This shortcut conflict with another that resides in the same scope."));
    });
    for (QAction *carrier : m_actions.carriers())
        m_window->addAction(carrier);

    if (m_actionList) {
        m_actionList->setModel(&m_actions.list());
        connect(m_actionList, &QAbstractItemView::clicked, this, &QInterface::actionChanged);
    }

    connect(m_tabBar, &QTabBar::currentChanged, this, &QInterface::projTabsChanged);
    connect(m_tabBar, &QTabBar::tabMoved, this, &QInterface::projTabsMoved);
    connect(m_tabBar, &QTabBar::tabCloseRequested, this, &QInterface::projTabsClosed);
}

void QInterface::buildProjectMenu()
{
    QMenu *menu = windowMenu(m_window, "menuFile");
    if (!menu)
        return;
    // The exit command may already stand in the menu; everything goes above it.
    QAction *exit = m_actions.action(QStringLiteral("file_exit"));
    if (exit && !menu->actions().contains(exit))
        exit = nullptr;
    auto add = [&](const char *key, int caption, const char *slot) {
        QAction2 *a = m_actions.addAction(kGlobal, QString::fromLatin1(key), caption, false, this, slot);
        menu->insertAction(exit, a);
        return a;
    };
    auto separator = [&] { menu->insertSeparator(exit); };

    add("file_new", 0, SLOT(fileNew()));
    add("file_open", 1, SLOT(fileOpen()));
    m_recentMenu = new QMenu(menu);
    m_recentMenu->setObjectName(QStringLiteral("menuRecent"));
    m_actions.translation().retranslateMenu(m_recentMenu, 42);
    menu->insertMenu(exit, m_recentMenu);
    m_history = new QHistoryManager(m_recentMenu, stateFile(QStringLiteral("history.xml")), HistorySize, this);
    connect(m_history, &QHistoryManager::entryTriggered, this, &QInterface::openProject);
    separator();
    add("file_close", 2, SLOT(fileClose()));
    add("file_close_all", 3, SLOT(fileCloseAll()));
    add("file_close_others", 4, SLOT(fileCloseAllCurr()));
    separator();
    add("file_save", 5, SLOT(fileSave()));
    add("file_saveas", 6, SLOT(fileSaveAs()));
    separator();
    add("file_backup", 7, SLOT(fileBackup()));
    add("file_load_backup", 8, SLOT(fileLoadBackup()));
    separator();
    // Runs in the engine arrive with the engine part; until then the command stays off.
    add("file_run_mugen", 9, SLOT(fileRunMugen()))->setEnabled(false);
    if (exit)
        separator();
}

void QInterface::buildViewMenu()
{
    if (QMenu *edit = windowMenu(m_window, "menuEdit")) {
        edit->addSeparator();
        m_viewQuickFind = m_actions.addAction(kGlobal, QStringLiteral("edit_find_replace"), 16, true, this,
                                              SLOT(editFindToggled(bool)));
        edit->addAction(m_viewQuickFind);
        QAction2 *multi = m_actions.addAction(kGlobal, QStringLiteral("edit_find_replace_multi"), 17);
        connect(multi, &QAction::triggered, this, [this] {
            if (QWidget *d = m_dialogs.value(QStringLiteral("find_multi")))
                d->show();
        });
        edit->addAction(multi);
    }

    QMenu *view = windowMenu(m_window, "menuView");
    if (!view)
        return;
    m_viewLeft = m_actions.addAction(kGlobal, QStringLiteral("view_left_panel"), 18, true, this,
                                     SLOT(viewLeftPanel(bool)));
    m_viewRight = m_actions.addAction(kGlobal, QStringLiteral("view_right_panel"), 19, true, this,
                                      SLOT(viewRightPanel(bool)));
    m_viewOrganizer = m_actions.addAction(kGlobal, QStringLiteral("view_organizer"), 20, true, this,
                                          SLOT(viewOrganizer(bool)));
    m_viewActions = m_actions.addAction(kGlobal, QStringLiteral("view_actions"), 21, true, this,
                                        SLOT(viewActions(bool)));
    for (QAction *a : {m_viewLeft, m_viewRight, m_viewOrganizer, m_viewActions})
        view->addAction(a);
    view->addSeparator();
    struct DialogCommand
    {
        const char *key;
        int caption;
        const char *tag;
    };
    const DialogCommand dialogs[] = {{"view_calculator", 22, "calculator"},
                                     {"view_clipboard", 23, "clipboard"},
                                     {"view_issues", 24, "issues"}};
    for (const DialogCommand &d : dialogs) {
        QAction2 *a = m_actions.addAction(kGlobal, QString::fromLatin1(d.key), d.caption);
        const QString tag = QString::fromLatin1(d.tag);
        connect(a, &QAction::triggered, this, [this, tag] {
            if (QWidget *w = m_dialogs.value(tag)) {
                w->show();
                w->raise();
            }
        });
        view->addAction(a);
    }
    // Keep the check marks true to what the user sees, however it changed.
    if (m_actionDock) {
        connect(m_actionDock, &QDockWidget::visibilityChanged, this, [this](bool) {
            if (m_actionDock && !m_window->isHidden())
                m_viewActions->setChecked(!m_actionDock->isHidden());
        });
    }
}

void QInterface::buildToolsAndHelpMenus()
{
    if (QMenu *tools = windowMenu(m_window, "menuTools")) {
        // Four fixed entries: the tool scripts are listed after them.
        tools->addAction(m_actions.addAction(kGlobal, QStringLiteral("tools_options"), 37, false, this,
                                             SLOT(toolsOptions())));
        tools->addSeparator();
        tools->addAction(m_actions.addAction(kGlobal, QStringLiteral("tools_script_editor"), 38, false, this,
                                             SLOT(toolsScript())));
        tools->addSeparator();
    }
    if (QMenu *help = windowMenu(m_window, "menuHelp")) {
        help->addAction(m_actions.addAction(kGlobal, QStringLiteral("help_reportbug"), 40, false, this,
                                            SLOT(helpReportBug())));
        help->addSeparator();
        help->addAction(
            m_actions.addAction(kGlobal, QStringLiteral("help_about"), 41, false, this, SLOT(helpAbout())));
    }
}

void QInterface::buildStatusBar()
{
    QStatusBar *bar = m_window->statusBar();
    for (int i = 0; i < StatusFieldCount; ++i) {
        auto *field = new QLabel(bar);
        field->setObjectName(QStringLiteral("statusField%1").arg(i));
        field->setMinimumWidth(250);
        bar->addWidget(field);
        field->hide();
        m_statusFields.append(field);
    }
    m_projectStatus = new QLabel(bar);
    m_projectStatus->setObjectName(QStringLiteral("projectStatus"));
    bar->addPermanentWidget(m_projectStatus);
}

void QInterface::setStatusText(int field, const QString &text)
{
    QLabel *label = m_statusFields.value(field);
    if (!label)
        return;
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

void QInterface::registerDialog(const QString &tag, QWidget *dialog)
{
    m_dialogs.insert(tag, dialog);
}

QString QInterface::projectStatusText(int projectType, quint32 version)
{
    QString type;
    switch (projectType) {
    case int(QProjectType::Character):
        type = tr("Character");
        break;
    case int(QProjectType::Storyboard):
        type = tr("Storyboard");
        break;
    case int(QProjectType::Stage):
        type = tr("Stage");
        break;
    case int(QProjectType::Font):
        type = tr("Font");
        break;
    default:
        break;
    }
    const QString ver = version == 0 ? tr("Beta")
                                     : QStringLiteral("%1.%2").arg(version >> 24).arg((version >> 16) & 0xff);
    return tr("Project: %1, Version: M.U.G.E.N. %2").arg(type, ver);
}

void QInterface::updateProjectStatus()
{
    if (!m_projectStatus)
        return;
    m_projectStatus->setText(m_currentProject ? projectStatusText(int(m_currentProject->type()),
                                                                  m_currentProject->version())
                                              : QString());
}

void QInterface::editFindToggled(bool show)
{
    if (QWidget *quickFind = m_dialogs.value(QStringLiteral("quick_find")))
        quickFind->setVisible(show);
}

void QInterface::viewLeftPanel(bool show)
{
    m_showLeftPanel = show;
    showPanels();
}

void QInterface::viewRightPanel(bool show)
{
    m_showRightPanel = show;
    showPanels();
}

void QInterface::viewOrganizer(bool show)
{
    // The organizer is extra editor 0; hiding it leaves the panel to the others.
    if (show)
        setExtraEditor(0);
    else if (m_currentExtra == 0)
        setExtraEditor(NoExtraEditor);
}

void QInterface::viewActions(bool show)
{
    if (m_actionDock)
        m_actionDock->setVisible(show);
}

void QInterface::toolsOptions()
{
    if (QWidget *options = m_dialogs.value(QStringLiteral("options")))
        options->show();
}

void QInterface::toolsScript()
{
    if (QWidget *scripts = m_dialogs.value(QStringLiteral("script_editor")))
        scripts->show();
    rebuildToolMenu();
}

void QInterface::helpAbout()
{
    QAskUser::message(m_window, QMessageBox::Information, tr("About Brawlforge"),
                      tr("<b>Brawlforge</b> %1<br>An environment for making M.U.G.E.N. characters, stages, "
                         "storyboards and fonts.")
                          .arg(QCoreApplication::applicationVersion()));
}

void QInterface::helpReportBug()
{
    BugDlg dlg(m_window);
    if (QAskUser::exec(&dlg) != QDialog::Accepted)
        return;
    const QString folder = m_currentProject ? m_currentProject->path(QStringLiteral("proj_path")) : QString();
    const QString target = QAskUser::saveFileName(m_window, tr("Report a bug..."), folder, QBugReport::fileFilter());
    if (target.isEmpty())
        return;
    const QLog *log = QLog::current();
    QString error;
    // No store carries a section of its own yet: the package holds the log and the description.
    if (QBugReport::make(target, log ? log->path() : QLog::defaultPath(), dlg.description(), dlg.flags(), nullptr,
                         &error))
        QLog::note(tr("Bug report written - %1").arg(target));
    else
        QAskUser::warning(m_window, tr("Report a bug"), error);
}

void QInterface::restoreBugReport()
{
    const QString package = QAskUser::openFileName(m_window, tr("Restore Bug Report"), QString(),
                                                   QBugReport::fileFilter());
    if (package.isEmpty())
        return;
    QString error;
    if (!QBugReport::restore(package, QCoreApplication::applicationDirPath(), nullptr, &error))
        QAskUser::warning(m_window, tr("Restore Bug Report"), error);
}

void QInterface::actionChanged(const QModelIndex &index)
{
    QAction2 *a = m_actions.list().action(index.row());
    if (a && a->isEnabled())
        a->activate(QAction::Trigger);
}

void QInterface::addJumpHandler(const QString &context, JumpHandler handler)
{
    m_jumpHandlers.insert(context, std::move(handler));
}

void QInterface::itemClicked(const QString &file, uint line)
{
    for (const JumpHandler &handler : std::as_const(m_jumpHandlers)) {
        if (handler && handler(file, line))
            return;
    }
}
