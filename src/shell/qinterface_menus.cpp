// Menus, the status bar and the small slots behind them.
#include "shell/qinterface.h"

#include "qeditorregistry.h"
#include "qwindowlayout.h"

#include "shell/qaction2.h"
#include "base/qapppaths.h"
#include "base/qbugreport.h"
#include "base/qfilewatchermanager.h"
#include "base/qfilewatchobject.h"
#include "base/qlog.h"
#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/bugdlg.h"
#include "shell/enginedialogs.h"
#include "shell/qinterfaceeditor.h"
#include "shell/errordlg.h"
#include "shell/qaskuser.h"
#include "shell/qhistorymanager.h"
#include "shell/qquickfind.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QDockWidget>
#include <QLabel>
#include <QListView>
#include <QMainWindow>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
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
    if (m_objects.fileWatcher)
        connect(m_objects.fileWatcher, &QFileWatcherManager::fileChanged, this, &QInterface::watchedFileChanged);

    buildProjectMenu();
    buildViewMenu();
    buildFind();
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

    connect(m_layout->tabBar(), &QTabBar::currentChanged, this, &QInterface::projTabsChanged);
    connect(m_layout->tabBar(), &QTabBar::tabMoved, this, &QInterface::projTabsMoved);
    connect(m_layout->tabBar(), &QTabBar::tabCloseRequested, this, &QInterface::projTabsClosed);
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
    const QString historyFile =
        m_objects.paths ? m_objects.paths->stateFile(QStringLiteral("history.xml")) : QString();
    m_history = new QHistoryManager(m_recentMenu, historyFile, HistorySize, this);
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
    add("file_run_mugen", 9, SLOT(fileRunMugen()));
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
        // The program's own entries; the tool scripts are listed after them.
        tools->addAction(m_actions.addAction(kGlobal, QStringLiteral("tools_options"), 37, false, this,
                                             SLOT(toolsOptions())));
        tools->addAction(m_actions.addAction(kGlobal, QStringLiteral("tools_engines"), 326, false, this,
                                             SLOT(toolsEngines())));
        tools->addSeparator();
        m_fixedToolEntries = int(tools->actions().size());
    }
    if (QMenu *help = windowMenu(m_window, "menuHelp")) {
        help->addAction(m_actions.addAction(kGlobal, QStringLiteral("help_reportbug"), 40, false, this,
                                            SLOT(helpReportBug())));
        help->addAction(m_actions.addAction(kGlobal, QStringLiteral("help_restorebug"), 327, false, this,
                                            SLOT(restoreBugReport())));
        help->addSeparator();
        help->addAction(
            m_actions.addAction(kGlobal, QStringLiteral("help_about"), 41, false, this, SLOT(helpAbout())));
    }
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
    m_layout->projectStatusLabel()->setText(m_currentProject ? projectStatusText(int(m_currentProject->type()),
                                                                  m_currentProject->version())
                                              : QString());
}

void QInterface::editFindToggled(bool show)
{
    if (!m_quickFind)
        return;
    // The bar starts from the text selected where the user was, if it is one
    // line, and gives the focus back there when it closes.
    QWidget *focus = QApplication::focusWidget();
    if (show && focus && !m_quickFind->isAncestorOf(focus)) {
        m_findReturn = focus;
        QString selected;
        if (auto *text = qobject_cast<QPlainTextEdit *>(focus))
            selected = text->textCursor().selectedText();
        if (!selected.isEmpty() && !selected.contains(QChar::ParagraphSeparator))
            m_quickFind->findField()->setText(selected);
    }
    m_quickFind->setVisible(show);
    if (show)
        m_quickFind->focusFind();
    else if (m_findReturn && m_quickFind->isAncestorOf(focus))
        m_findReturn->setFocus();
}

void QInterface::viewLeftPanel(bool show)
{
    m_layout->setPanelsWanted(show, m_layout->rightPanelWanted());
    m_registry->showPanels();
}

void QInterface::viewRightPanel(bool show)
{
    m_layout->setPanelsWanted(m_layout->leftPanelWanted(), show);
    m_registry->showPanels();
}

void QInterface::viewOrganizer(bool show)
{
    // The organizer is extra editor 0; hiding it leaves the panel to the others.
    if (show)
        m_registry->setExtraEditor(0);
    else if (m_registry->currentExtraEditorId() == 0)
        m_registry->setExtraEditor(QEditorRegistry::NoExtraEditor);
}

void QInterface::viewActions(bool show)
{
    if (m_actionDock)
        m_actionDock->setVisible(show);
}

void QInterface::toolsOptions()
{
    // Until the options have a dialog of their own, the engines are what can be set here.
    if (QWidget *options = m_dialogs.value(QStringLiteral("options")))
        options->show();
    else
        toolsEngines();
}

void QInterface::toolsEngines()
{
    if (!m_objects.config)
        return;
    EnginesDlg dlg(m_objects.config, m_window);
    QAskUser::exec(&dlg);
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
    const QString logFile = m_objects.log ? m_objects.log->path()
                                          : m_objects.paths ? m_objects.paths->stateFile(QStringLiteral("log.txt"))
                                                            : QString();
    QString error;
    // The animation store writes its own section; the other editors have a placeholder.
    const QBugReportSection *animations = m_currentProject ? m_currentProject->animations() : nullptr;
    if (QBugReport::make(target, logFile, dlg.description(), dlg.flags(), animations, &error))
        log(tr("Bug report written - %1").arg(target));
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
    const QString folder = m_objects.paths ? m_objects.paths->stateDir() : QString();
    QBugReportSection *animations = m_currentProject ? m_currentProject->animations() : nullptr;
    const bool restored = QBugReport::restore(package, folder, animations, &error);
    refreshCurrentEditor();
    if (restored)
        log(tr("Bug report restored - %1").arg(package));
    else
        QAskUser::warning(m_window, tr("Restore Bug Report"), error);
}

void QInterface::refreshCurrentEditor()
{
    if (QInterfaceEditor *editor = m_registry->editor(m_registry->currentEditorId()))
        editor->activate(false);
    m_registry->updateEditorName();
}

void QInterface::log(const QString &line) const
{
    if (m_objects.log)
        m_objects.log->append(line);
}

void QInterface::logMessages(const QString &title, const QMessages &messages) const
{
    if (m_objects.log)
        m_objects.log->appendMessages(title, messages);
}

void QInterface::actionChanged(const QModelIndex &index)
{
    QAction2 *a = m_actions.list().action(index.row());
    if (a && a->isEnabled())
        a->activate(QAction::Trigger);
}

void QInterface::watchedFileChanged(const QString &path, const QList<QFileWatchObject *> &objects)
{
    if (!configFlag("enable_file_watcher", false))
        return;
    QList<QPointer<QFileWatchObject>> documents(objects.cbegin(), objects.cend());
    const QMessageBox::StandardButton answer = QAskUser::message(
        m_window, QMessageBox::Question, tr("File modified"),
        tr("The file '%1' has been modified. Do you want to reload all other instances of this file now?")
            .arg(QDir::toNativeSeparators(path)),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer != QMessageBox::Yes)
        return;
    bool failed = false;
    for (const QPointer<QFileWatchObject> &doc : std::as_const(documents))
        if (doc && !doc->reload(path))
            failed = true;
    refreshCurrentEditor();
    if (failed)
        QAskUser::warning(m_window, tr("File modified"),
                          tr("The file '%1' could not be read again; the text open here stays as it was.")
                              .arg(QDir::toNativeSeparators(path)));
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
