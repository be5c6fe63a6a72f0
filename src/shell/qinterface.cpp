#include "qinterface.h"

#include "base/qlifecyclelog.h"
#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "project/qprojectsettings.h"
#include "qaction2.h"
#include "qaskuser.h"
#include "qeditorregistry.h"
#include "qinterfacecontrolaction.h"
#include "qinterfaceeditor.h"
#include "qlanguagemanager.h"
#include "qpresetmanager.h"
#include "qwindowlayout.h"
#include "shell/finddlgmlt.h"
#include "shell/qquickfind.h"
#include "scripting/qscriptmanager.h"

#include <QDockWidget>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QToolBar>

QInterface::QInterface(QMainWindow *window, QDockWidget *actionDock, QListView *actionList,
                       const QAppObjects &objects)
    : QObject(window)
    , m_objects(objects)
    , m_actionDock(actionDock)
    , m_actionList(actionList)
    , m_window(window)
{
    m_layout = new QWindowLayout(window, actionDock, this);
    m_registry = new QEditorRegistry(*m_layout, m_actions, this);
    buildActions();
    buildControllerUi();
    // Scripts see the open projects, and a long run may be stopped.
    if (QScriptManager *scripts = m_objects.scripts) {
        scripts->setProjectSource([this] { return m_projects; }, [this] { return m_currentProject; });
        connect(scripts, &QScriptManager::runningLong, this, [this](bool *stop) {
            *stop = QAskUser::question(m_window, tr("Script"),
                                       tr("The script has been running for a while. Stop it?"));
        });
    }
    QLifecycleLog::record(QStringLiteral("+QInterface"));
}

QInterface::~QInterface()
{
    // Editors go before the state is written: some of them keep settings of
    // their own in the configuration as they die. First they let go of the
    // current project.
    if (m_objects.scripts)
        m_objects.scripts->setProjectSource({}, {});
    m_registry->clear();
    releaseProjects();
    QLifecycleLog::record(QStringLiteral("-QInterface:editors"));
    if (m_objects.config)
        m_layout->save(*m_objects.config);
    saveControllerState();
    QLifecycleLog::record(QStringLiteral("-QInterface:state"));
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
        void (QEditorRegistry::*signal)();
    };
    const Edit edits[] = {{"edit_undo", 11, &QEditorRegistry::editUndo},
                          {"edit_redo", 12, &QEditorRegistry::editRedo},
                          {"edit_cut", 13, &QEditorRegistry::editCut},
                          {"edit_copy", 14, &QEditorRegistry::editCopy},
                          {"edit_paste", 15, &QEditorRegistry::editPaste}};
    QMenu *editMenu = m_window->findChild<QMenu *>(QStringLiteral("menuEdit"));
    for (const Edit &e : edits) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(e.key), e.caption);
        connect(a, &QAction::triggered, m_registry, e.signal);
        if (editMenu)
            editMenu->addAction(a);
        m_registry->addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    struct EditorCommand
    {
        const char *key;
        int caption;
        void (QEditorRegistry::*slot)();
    };
    const EditorCommand commands[] = {{"editor_new", 49, &QEditorRegistry::editorNew},
                                      {"editor_open", 50, &QEditorRegistry::editorOpen},
                                      {"editor_save", 51, &QEditorRegistry::editorSave},
                                      {"editor_saveas", 52, &QEditorRegistry::editorSaveAs}};
    for (const EditorCommand &c : commands) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(c.key), c.caption);
        connect(a, &QAction::triggered, m_registry, c.slot);
        m_registry->addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    if (QMenu *fileMenu = m_window->findChild<QMenu *>(QStringLiteral("menuFile"))) {
        QAction2 *exit = m_actions.addAction(global, QStringLiteral("file_exit"), 10);
        connect(exit, &QAction::triggered, m_window, &QWidget::close);
        fileMenu->addAction(exit);
    }
}

void QInterface::init()
{
    if (m_objects.config)
        m_layout->restore(*m_objects.config);
    restoreControllerState();
    QLifecycleLog::record(QStringLiteral("QInterface::init:state"));

    const QList<int> editors = m_registry->editorIds();
    if (!editors.isEmpty()) {
        m_registry->editorAction(editors.first())->setChecked(true);
        m_registry->editorSwitch(editors.first());
    } else {
        m_registry->editorSwitch(QEditorRegistry::NoEditor);
    }
    for (int id = 0; id < QEditorRegistry::NoExtraEditor; ++id) {
        if (m_registry->extraEditor(id)) {
            m_registry->setExtraEditor(id);
            break;
        }
    }
    QLifecycleLog::record(QStringLiteral("QInterface::init:editor"));

    newProject(false);
    QLifecycleLog::record(QStringLiteral("QInterface::init:project"));

    applyConfig();
    QLifecycleLog::record(QStringLiteral("QInterface::init:config"));

    rebuildToolMenu();
    QLifecycleLog::record(QStringLiteral("QInterface::init:tools"));
}

void QInterface::setCurrentProject(QProject *project)
{
    m_currentProject = project;
    m_registry->setCurrentProject(project);
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
        m_objects.presets->apply(*m_registry, preset, iconset, stylesheet, colorset);
    m_registry->applyConfig();
}

void QInterface::retranslate()
{
    m_actions.retranslate();
    m_registry->retranslate(m_actions.translation());
    m_layout->retranslate();
    if (m_quickFind)
        m_quickFind->retranslate();
    if (m_findDialog)
        m_findDialog->retranslate();
    if (QMenu *options = m_window->findChild<QMenu *>(QStringLiteral("menuFindOptions")))
        m_actions.translation().retranslateMenu(options, 320);
}

void QInterface::rebuildToolMenu()
{
    QMenu *tools = m_window->findChild<QMenu *>(QStringLiteral("menuTools"));
    if (!tools || !m_objects.scripts)
        return;
    // The first entries are the program's own; scripts follow them.
    const QList<QAction *> existing = tools->actions();
    for (int i = m_fixedToolEntries; i < existing.size(); ++i) {
        tools->removeAction(existing.at(i));
        if (existing.at(i)->parent() == tools)
            delete existing.at(i);
    }
    const QList<QAction *> kept = tools->actions();
    for (QMenu *m : tools->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!kept.contains(m->menuAction()))
            delete m;
    }
    // Each folder of the tool scripts is a submenu, at any depth.
    QMap<QString, QMenu *> groups;
    const QMap<QString, QString> scripts = m_objects.scripts->scripts(QStringLiteral("tool"));
    for (auto it = scripts.constBegin(); it != scripts.constEnd(); ++it) {
        const QString name = it.key();
        const QStringList parts = name.split(QLatin1Char('/'));
        QMenu *target = tools;
        QString path;
        for (int i = 0; i + 1 < parts.size(); ++i) {
            path += parts.at(i) + QLatin1Char('/');
            if (!groups.contains(path))
                groups.insert(path, target->addMenu(parts.at(i)));
            target = groups.value(path);
        }
        QAction *a = target->addAction(parts.last());
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
    // What the tool prints is its report, shown once it has run.
    QStringList output;
    const QMetaObject::Connection printing =
        connect(sm, &QScriptManager::printOutput, this, [&output](const QString &text) { output << text; });
    const bool ok = sm->runTool(a->data().toString());
    disconnect(printing);
    if (!ok)
        QAskUser::critical(m_window, tr("Tool script error"), sm->errorMessage());
    sm->close();
    const int shown = 40;
    if (output.size() > shown) {
        const qsizetype more = output.size() - shown;
        output.erase(output.begin() + shown, output.end());
        output << tr("(%n more lines)", nullptr, int(more));
    }
    if (!output.isEmpty())
        QAskUser::message(m_window, QMessageBox::Information, a->text(), output.join(QLatin1Char('\n')),
                          QMessageBox::Ok, QMessageBox::Ok);
    if (QInterfaceEditor *e = m_registry->editor(m_registry->currentEditorId()))
        e->activate(true);
}
