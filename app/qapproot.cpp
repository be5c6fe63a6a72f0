#include "qapproot.h"

#include "animations/ui/animationseditors.h"
#include "base/qfilewatchermanager.h"
#include "base/qlifecyclelog.h"
#include "base/qlog.h"
#include "base/qmugenmodel.h"
#include "code/qsctrlmanager.h"
#include "code/qsyntaxproperties.h"
#include "code/syntaxformats.h"
#include "code/ui/codeeditors.h"
#include "code/ui/qtexteditor.h"
#include "docs/ui/docseditors.h"
#include "scripting/qscriptmanager.h"
#include "scripting/qsnippetmanager.h"
#include "shell/mainwindow.h"
#include "shell/qcolorsetmanager.h"
#include "shell/qeditorregistry.h"
#include "shell/qiconsetmanager.h"
#include "shell/qinterface.h"
#include "shell/qlanguagemanager.h"
#include "shell/qpresetmanager.h"
#include "shell/qstylesheetmanager.h"
#include "sounds/ui/qsoundseditor.h"
#include "sounds/ui/soundseditors.h"
#include "animations/ui/qanimspriteworkspace.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/qspriterecordpool.h"
#include "sprites/ui/spriteseditors.h"

#include <QCoreApplication>

QAppRoot::QAppRoot(const QAppPaths &paths)
    : m_paths(paths)
{
    m_paths.makeWritable();
    m_objects.paths = &m_paths;
    m_objects.log = new QLog(m_paths.stateFile(QStringLiteral("log.txt")));
    // The log a bug report carries: every run adds to it, Qt's own warnings included.
    m_objects.log->installMessageHandler();
    m_objects.log->append(QStringLiteral("Brawlforge started"));

    m_window = new MainWindow;
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath());
    QLifecycleLog::record(QStringLiteral("+MainWindow"));

    // The engine's language and the Lua names, read once for every document.
    m_objects.mugenSyntax = new QMugenSyntaxProperties;
    m_objects.mugenSyntax->load(m_paths.dataPath(QStringLiteral("syntax_mugen.xml")));
    m_objects.luaSyntax = new QLuaSyntaxProperties;
    m_objects.luaSyntax->load(m_paths.dataPath(QStringLiteral("syntax_lua.xml")));
    QLifecycleLog::record(QStringLiteral("+syntax definitions"));
    QBFCacheFilter::createFilters();
    m_objects.spriteRecords = new QSpriteRecordPool;
    m_objects.undoCache = new QSpriteCache(QStringLiteral("sprUndo"), QSpriteCache::TemporaryFile, true, -1,
                                           m_objects.spriteRecords);
    m_objects.soundUndoCache = new QSpriteCache(QStringLiteral("sndUndo"), QSpriteCache::TemporaryFile, false, -1,
                                                m_objects.spriteRecords);
    QLifecycleLog::record(QStringLiteral("+cache filters"));
    m_objects.iconsets = new QIconsetManager(m_paths.dataFolders(QStringLiteral("iconsets")));
    m_objects.stylesheets = new QStylesheetManager(m_paths.dataFolders(QStringLiteral("styles")));
    m_objects.colorsets = new QColorsetManager(m_paths.dataFolders(QStringLiteral("colorsets")));
    m_objects.syntaxFormats = new SyntaxFormats;
    m_objects.config = new QMugenModel;
    m_objects.config->load(m_paths.configFile(QStringLiteral("config.xml")));
    QLifecycleLog::record(QStringLiteral("config.xml read"));
    m_objects.presets = new QPresetManager(m_paths.dataFolders(QStringLiteral("presets")), m_objects.iconsets,
                                           m_objects.stylesheets, m_objects.colorsets);
    m_objects.languages = new QLanguageManager(m_paths.dataPath(QStringLiteral("languages")),
                                               QCoreApplication::instance());
    QObject::connect(m_objects.languages, &QLanguageManager::langChanged, m_window, &MainWindow::retranslate);
    m_objects.sctrls = new QSCtrlManager(m_paths.dataFolders(QStringLiteral("sctrls")));
    m_objects.scripts = new QScriptManager(m_paths.dataPath(QStringLiteral("scripts")));
    m_objects.snippets = new QSnippetManager(m_paths.dataFolders(QStringLiteral("snippets")));
    m_objects.fileWatcher = new QFileWatcherManager;
    m_controller = new QInterface(m_window, m_window->actionDock(), m_window->actionList(), m_objects);
    m_window->setController(m_controller, m_objects.config, m_objects.snippets);

    registerEditors();
    m_controller->init();
}

void QAppRoot::registerEditors()
{
    // Each subsystem brings its workspaces, editors and extra editors; the
    // registry orders them by their numbers, whatever the order here.
    QEditorRegistry &registry = m_controller->registry();
    registerCodeEditors(registry, m_objects, [controller = m_controller] { return controller->projects(); });
    // A double click on "file(N): ..." in the issues opens the text on line N.
    m_controller->addJumpHandler(QStringLiteral("text"), [controller = m_controller](const QString &file, uint line) {
        return showTextLine(controller->registry(), controller->currentProject(), file, line);
    });
    registerSpriteEditors(registry, m_objects);
    // The animations' text views are the program's code widget.
    registerAnimationEditors(
        registry, m_objects, [](QWidget *parent) { return new QTextEditor(parent); },
        [controller = m_controller] { return controller->projects(); });
    // "file.air(N): ..." in the issues shows the action written at line N.
    m_controller->addJumpHandler(QStringLiteral("animations"), [controller = m_controller](const QString &file, uint line) {
        return showAnimationLine(controller->registry(), controller->currentProject(), file, line);
    });
    // The sounds page shows the shared stage locked and empty.
    QSoundsEditor *sounds = registerSoundEditors(registry, m_objects);
    sounds->setProjectList([controller = m_controller] { return controller->projects(); });
    if (auto *stage = qobject_cast<QAnimSpriteWorkspace *>(registry.workspace(sounds->workspaceId())))
        QObject::connect(sounds, &QSoundsEditor::stageWanted, stage, &QAnimSpriteWorkspace::showForSounds);
    registerDocsEditors(registry, m_objects);
}

QAppRoot::~QAppRoot()
{
    QLifecycleLog::record(QStringLiteral("~QAppRoot"));
    m_window->setController(nullptr, nullptr, nullptr);
    delete m_controller;
    m_controller = nullptr;
    // A failed write is silent: there is no one left to tell.
    if (m_objects.config->save(m_paths.configFile(QStringLiteral("config.xml"))))
        QLifecycleLog::record(QStringLiteral("config.xml written"));
    delete m_objects.fileWatcher;
    delete m_objects.snippets;
    delete m_objects.scripts;
    delete m_objects.sctrls;
    delete m_objects.languages;
    delete m_objects.presets;
    delete m_objects.config;
    delete m_objects.syntaxFormats;
    delete m_objects.colorsets;
    delete m_objects.stylesheets;
    delete m_objects.iconsets;
    delete m_objects.undoCache;
    delete m_objects.soundUndoCache;
    m_objects.log->append(QStringLiteral("Brawlforge stopped"));
    delete m_objects.log;
    delete m_objects.spriteRecords;
    delete m_objects.luaSyntax;
    delete m_objects.mugenSyntax;
    QLifecycleLog::record(QStringLiteral("-syntax definitions"));
    QBFCacheFilter::destroyFilters();
    m_objects = QAppObjects();
    QLifecycleLog::record(QStringLiteral("-cache filters"));
    delete m_window;
    QLifecycleLog::record(QStringLiteral("-MainWindow"));
}
