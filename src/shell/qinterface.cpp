#include "qinterface.h"

#include "shell/qaction2.h"
#include "shell/qlanguagemanager.h"
#include "base/qlifecyclelog.h"
#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "project/qprojectsettings.h"
#include "qinterfacecontrol.h"
#include "qinterfacecontrolaction.h"
#include "qinterfaceeditor.h"
#include "qinterfaceextraeditor.h"
#include "qinterfaceworkspace.h"
#include "qpanelwidget.h"
#include "qpresetmanager.h"
#include "scripting/qscriptmanager.h"

#include <QActionGroup>
#include <QBoxLayout>
#include <QDockWidget>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedLayout>
#include <QTabBar>
#include <QToolBar>

QInterface::QInterface(QMainWindow *window, QDockWidget *actionDock, QListView *actionList,
                       const QAppObjects &objects)
    : QObject(window)
    , m_objects(objects)
    , m_actionDock(actionDock)
    , m_actionList(actionList)
    , m_window(window)
{
    m_editorGroup = new QActionGroup(this);
    m_editorGroup->setExclusive(true);
    buildLayout();
    buildActions();
    buildToolBars();
    buildControllerUi();
    connect(m_editorGroup, &QActionGroup::triggered, this,
            qOverload<QAction *>(&QInterface::editorSwitch));
    QLifecycleLog::record(QStringLiteral("+QInterface"));
}

QInterface::~QInterface()
{
    // Editors go before the state is written: some of them keep settings of
    // their own in the configuration as they die. First they let go of the
    // current project.
    setCurrentProject(nullptr);
    if (QInterfaceEditor *e = editor(m_currentEditor)) {
        disconnectEditor(e);
        e->deactivate();
    }
    qDeleteAll(m_projects);
    m_projects.clear();
    m_controls.clear();
    m_workspaces.clear();
    m_editors.clear();
    m_extraEditors.clear();
    releaseProjects();
    QLifecycleLog::record(QStringLiteral("-QInterface:editors"));
    saveState();
    saveControllerState();
    QLifecycleLog::record(QStringLiteral("-QInterface:state"));
}

void QInterface::buildLayout()
{
    auto *central = m_window->centralWidget();
    if (!central) {
        central = new QWidget;
        m_window->setCentralWidget(central);
    }
    auto *outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);

    m_tabBar = new QTabBar(central);
    m_tabBar->setObjectName(QStringLiteral("projectTabs"));
    m_tabBar->setMovable(true);
    m_tabBar->setTabsClosable(true);
    m_tabBar->setExpanding(false);
    m_tabBar->setDocumentMode(true);
    outer->addWidget(m_tabBar);

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    outer->addLayout(row, 1);

    m_leftPanel = new QPanelWidget(central);
    m_leftPanel->setObjectName(QStringLiteral("leftPanel"));
    m_leftPanel->setMinimumWidth(220);
    m_leftStack = new QStackedLayout(m_leftPanel);
    row->addWidget(m_leftPanel);

    auto *centre = new QVBoxLayout;
    centre->setContentsMargins(0, 0, 0, 0);
    centre->setSpacing(0);
    m_centralStack = new QStackedLayout;
    centre->addLayout(m_centralStack, 1);
    m_editorToolBar = new QToolBar(central);
    m_editorToolBar->setObjectName(QStringLiteral("editorToolBar"));
    m_editorToolBar->hide();
    centre->addWidget(m_editorToolBar);
    row->addLayout(centre, 1);

    m_rightPanel = new QPanelWidget(central);
    m_rightPanel->setObjectName(QStringLiteral("rightPanel"));
    m_rightPanel->setMinimumWidth(220);
    m_rightStack = new QStackedLayout(m_rightPanel);
    row->addWidget(m_rightPanel);

    m_leftPanel->hide();
    m_rightPanel->hide();
}

void QInterface::buildActions()
{
    // The edit commands go to whichever editor is current; the editor
    // commands are also controls, so a preset can place them on a panel.
    const QList<int> global{QAction2::GlobalScope, -1};
    struct Edit
    {
        const char *key;
        int caption;
        void (QInterface::*signal)();
    };
    const Edit edits[] = {{"edit_undo", 11, &QInterface::editUndo},
                          {"edit_redo", 12, &QInterface::editRedo},
                          {"edit_cut", 13, &QInterface::editCut},
                          {"edit_copy", 14, &QInterface::editCopy},
                          {"edit_paste", 15, &QInterface::editPaste}};
    QMenu *editMenu = m_window->findChild<QMenu *>(QStringLiteral("menuEdit"));
    for (const Edit &e : edits) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(e.key), e.caption);
        connect(a, &QAction::triggered, this, e.signal);
        if (editMenu)
            editMenu->addAction(a);
        addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    struct EditorCommand
    {
        const char *key;
        int caption;
        void (QInterface::*slot)();
    };
    const EditorCommand commands[] = {{"editor_new", 49, &QInterface::editorNew},
                                      {"editor_open", 50, &QInterface::editorOpen},
                                      {"editor_save", 51, &QInterface::editorSave},
                                      {"editor_saveas", 52, &QInterface::editorSaveAs}};
    for (const EditorCommand &c : commands) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(c.key), c.caption);
        connect(a, &QAction::triggered, this, c.slot);
        addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    if (QMenu *fileMenu = m_window->findChild<QMenu *>(QStringLiteral("menuFile"))) {
        QAction2 *exit = m_actions.addAction(global, QStringLiteral("file_exit"), 10);
        connect(exit, &QAction::triggered, m_window, &QWidget::close);
        fileMenu->addAction(exit);
    }
}

void QInterface::buildToolBars()
{
    m_mainToolBar = new QToolBar(tr("Main"), m_window);
    m_mainToolBar->setObjectName(QStringLiteral("mainToolBar"));
    m_mainToolBar->setFloatable(false);
    m_extraToolBar = new QToolBar(tr("Extra"), m_window);
    m_extraToolBar->setObjectName(QStringLiteral("extraToolBar"));
    m_extraToolBar->setFloatable(false);
    m_toolbarEntries.insert(QStringLiteral("main"), QToolBarEntry());
    m_toolbarEntries.insert(QStringLiteral("extra"), QToolBarEntry());
}

void QInterface::init()
{
    restoreState();
    restoreControllerState();
    QLifecycleLog::record(QStringLiteral("QInterface::init:state"));

    if (!m_editorActions.isEmpty()) {
        QAction *first = m_editorActions.first();
        first->setChecked(true);
        editorSwitch(m_editorActions.firstKey());
    } else {
        editorSwitch(NoEditor);
    }
    if (!m_extraEditors.empty())
        setExtraEditor(m_extraEditors.begin()->first);
    QLifecycleLog::record(QStringLiteral("QInterface::init:editor"));

    newProject(false);
    QLifecycleLog::record(QStringLiteral("QInterface::init:project"));

    applyConfig();
    QLifecycleLog::record(QStringLiteral("QInterface::init:config"));

    rebuildToolMenu();
    QLifecycleLog::record(QStringLiteral("QInterface::init:tools"));
}

void QInterface::restoreState()
{
    const QMugenModel &cfg = *m_objects.config;
    const int w = cfg.number(QStringLiteral("window_width"));
    const int h = cfg.number(QStringLiteral("window_height"));
    if (w > 0 && h > 0) {
        m_window->resize(w, h);
        m_window->move(cfg.number(QStringLiteral("window_left")), cfg.number(QStringLiteral("window_top")));
    }
    m_window->setWindowState(Qt::WindowStates(cfg.number(QStringLiteral("window_state"))));
    m_showLeftPanel = cfg.flag(QStringLiteral("show_left_panel"));
    m_showRightPanel = cfg.flag(QStringLiteral("show_right_panel"));

    // Tool bars: areas, order and the break between them.
    auto area = [](int stored) {
        const auto a = Qt::ToolBarArea(stored);
        return a == Qt::LeftToolBarArea || a == Qt::RightToolBarArea || a == Qt::BottomToolBarArea
                   ? a
                   : Qt::TopToolBarArea;
    };
    const Qt::ToolBarArea mainArea = area(cfg.number(QStringLiteral("main_toolbar")));
    const Qt::ToolBarArea extraArea = area(cfg.number(QStringLiteral("extra_toolbar")));
    const bool extraFirst = cfg.flag(QStringLiteral("toolbar_first"));
    QToolBar *first = extraFirst ? m_extraToolBar : m_mainToolBar;
    QToolBar *second = extraFirst ? m_mainToolBar : m_extraToolBar;
    m_window->addToolBar(extraFirst ? extraArea : mainArea, first);
    if (cfg.flag(QStringLiteral("toolbar_break")))
        m_window->addToolBarBreak(extraFirst ? mainArea : extraArea);
    m_window->addToolBar(extraFirst ? mainArea : extraArea, second);

    if (m_actionDock) {
        m_actionDock->setVisible(cfg.flag(QStringLiteral("show_action_list")));
        const int dockArea = cfg.number(QStringLiteral("action_list_area"));
        m_window->addDockWidget(dockArea == Qt::LeftDockWidgetArea ? Qt::LeftDockWidgetArea
                                                                   : Qt::RightDockWidgetArea,
                                m_actionDock);
        const int dockWidth = cfg.number(QStringLiteral("action_list_width"));
        if (dockWidth > 0)
            m_window->resizeDocks({m_actionDock}, {dockWidth}, Qt::Horizontal);
    }
}

void QInterface::saveState()
{
    QMugenModel &cfg = *m_objects.config;
    cfg[QStringLiteral("show_left_panel")] = m_showLeftPanel;
    cfg[QStringLiteral("show_right_panel")] = m_showRightPanel;
    const QRect normal = m_window->normalGeometry().isValid() ? m_window->normalGeometry()
                                                              : m_window->geometry();
    cfg[QStringLiteral("window_left")] = m_window->pos().x();
    cfg[QStringLiteral("window_top")] = m_window->pos().y();
    cfg[QStringLiteral("window_width")] = normal.width();
    cfg[QStringLiteral("window_height")] = normal.height();
    cfg[QStringLiteral("window_state")] = int(m_window->windowState());
    cfg[QStringLiteral("main_toolbar")] = int(m_window->toolBarArea(m_mainToolBar));
    cfg[QStringLiteral("extra_toolbar")] = int(m_window->toolBarArea(m_extraToolBar));
    const bool extraFirst = m_window->toolBarArea(m_extraToolBar) == m_window->toolBarArea(m_mainToolBar)
                                ? (m_extraToolBar->pos().x() + m_extraToolBar->pos().y()
                                   < m_mainToolBar->pos().x() + m_mainToolBar->pos().y())
                                : false;
    cfg[QStringLiteral("toolbar_first")] = extraFirst;
    cfg[QStringLiteral("toolbar_break")] =
        m_window->toolBarBreak(extraFirst ? m_mainToolBar : m_extraToolBar);
    if (m_actionDock) {
        cfg[QStringLiteral("show_action_list")] = !m_actionDock->isHidden();
        cfg[QStringLiteral("action_list_width")] = m_actionDock->width();
        cfg[QStringLiteral("action_list_area")] = int(m_window->dockWidgetArea(m_actionDock));
    }
}

void QInterface::applyConfig()
{
    const QMugenModel &cfg = *m_objects.config;
    if (m_objects.languages)
        m_objects.languages->setLanguage(cfg.text(QStringLiteral("language")));
    const QString colorset = cfg.text(QStringLiteral("colorset"));
    const QString stylesheet = cfg.text(QStringLiteral("stylesheet"));
    const QString iconset = cfg.text(QStringLiteral("iconset"));
    const QString preset = cfg.text(QStringLiteral("preset"));
    if (m_objects.presets)
        m_objects.presets->apply(this, preset, iconset, stylesheet, colorset);

    updateEditorName();
    updateExtraEditorName();
    for (auto &[id, x] : m_extraEditors)
        x->applyConfig();
    for (auto &[id, e] : m_editors)
        e->applyConfig();
    for (auto &[id, w] : m_workspaces)
        w->applyConfig();
    editorSwitch(m_currentEditor);
}

void QInterface::retranslate()
{
    m_actions.retranslate();
    const QTranslationUnit &tu = m_actions.translation();
    for (auto &[name, c] : m_controls)
        c->retranslate(tu);
    for (auto &[id, x] : m_extraEditors)
        x->retranslate(tu);
    for (auto &[id, e] : m_editors)
        e->retranslate(tu);
    for (auto &[id, w] : m_workspaces)
        w->retranslate(tu);
    m_mainToolBar->setWindowTitle(tr("Main"));
    m_extraToolBar->setWindowTitle(tr("Extra"));
    updateEditorName();
    updateExtraEditorName();
}

bool QInterface::canCloseProject(QProject *project)
{
    // Every editor is asked, even after a refusal: each may have its own
    // question for the user.
    bool ok = true;
    for (auto &[id, e] : m_editors)
        ok = e->canClose(project) && ok;
    return ok;
}

void QInterface::rebuildToolMenu()
{
    QMenu *tools = m_window->findChild<QMenu *>(QStringLiteral("menuTools"));
    if (!tools || !m_objects.scripts)
        return;
    // The first four entries are the program's own; scripts follow them.
    const QList<QAction *> existing = tools->actions();
    for (int i = 4; i < existing.size(); ++i) {
        tools->removeAction(existing.at(i));
        if (existing.at(i)->parent() == tools)
            delete existing.at(i);
    }
    const QList<QAction *> kept = tools->actions();
    for (QMenu *m : tools->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!kept.contains(m->menuAction()))
            delete m;
    }
    QMap<QString, QMenu *> groups;
    const QMap<QString, QString> scripts = m_objects.scripts->scripts(QStringLiteral("tool"));
    for (auto it = scripts.constBegin(); it != scripts.constEnd(); ++it) {
        const QString name = it.key();
        QMenu *target = tools;
        QString text = name;
        const int slash = name.indexOf(QLatin1Char('/'));
        if (slash > 0) {
            const QString group = name.left(slash);
            if (!groups.contains(group))
                groups.insert(group, tools->addMenu(group));
            target = groups.value(group);
            text = name.mid(slash + 1);
        }
        QAction *a = target->addAction(text);
        a->setData(name);
        connect(a, &QAction::triggered, this, &QInterface::toolActivated);
    }
}

void QInterface::toolActivated()
{
    auto *a = qobject_cast<QAction *>(sender());
    if (!a || !m_objects.scripts)
        return;
    QScriptManager *sm = m_objects.scripts;
    if (!sm->runTool(a->data().toString()))
        QMessageBox::critical(m_window, tr("Tool script error"), sm->errorMessage());
    sm->close();
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->activate(true);
}

void QInterface::editorNew()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->clear();
}

void QInterface::editorOpen()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->open();
}

void QInterface::editorSave()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->save();
}

void QInterface::editorSaveAs()
{
    if (QInterfaceEditor *e = editor(m_currentEditor))
        e->saveAs();
}
