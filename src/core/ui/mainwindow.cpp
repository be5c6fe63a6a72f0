#include "mainwindow.h"

#include "ui_mainwindow.h"

#include "animations/ui/qanimationseditor.h"
#include "animations/ui/qanimspriteworkspace.h"
#include "code/qsctrlmanager.h"
#include "code/qsyntaxproperties.h"
#include "code/syntaxformats.h"
#include "code/ui/qcommandseditor.h"
#include "code/ui/qdefinitionseditor.h"
#include "code/ui/qstateseditor.h"
#include "code/ui/qtextworkspace.h"
#include "core/qappobjects.h"
#include "core/qcolorsetmanager.h"
#include "core/qfilewatchermanager.h"
#include "core/qiconsetmanager.h"
#include "core/qlanguagemanager.h"
#include "core/qlifecyclelog.h"
#include "core/qmugenmodel.h"
#include "qinterface.h"
#include "qpresetmanager.h"
#include "qreferencedocseditor.h"
#include "qstylesheetmanager.h"
#include "qwebbrowserworkspace.h"
#include "scripting/qscriptmanager.h"
#include "scripting/qsnippetmanager.h"
#include "sounds/ui/qsoundseditor.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/ui/qorganizereditor.h"
#include "sprites/ui/qpaletteseditor.h"
#include "sprites/ui/qspriteseditor.h"
#include "sprites/ui/qthumbnailseditor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>

namespace {
MainWindow::CloseQuestion &closeQuestion()
{
    static MainWindow::CloseQuestion question;
    return question;
}

QString dataPath(const char *suffix)
{
    return QCoreApplication::applicationDirPath() + QLatin1String(suffix);
}
} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , ui(new Ui::MainWindow)
{
    ui->setupUi(this);
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath());
    QLifecycleLog::record(QStringLiteral("+MainWindow"));

    // The engine's language and the Lua names, read once for every document.
    Bf::mugenSyntax = new QMugenSyntaxProperties;
    Bf::mugenSyntax->load(dataPath("/syntax_mugen.xml"));
    Bf::luaSyntax = new QLuaSyntaxProperties;
    Bf::luaSyntax->load(dataPath("/syntax_lua.xml"));
    QLifecycleLog::record(QStringLiteral("+syntax definitions"));
    QBFCacheFilter::createFilters();
    QSpriteCache::createUndoCache();
    QLifecycleLog::record(QStringLiteral("+cache filters"));
    Bf::iconsets = new QIconsetManager(dataPath("/iconsets"));
    Bf::stylesheets = new QStylesheetManager(dataPath("/styles"));
    Bf::colorsets = new QColorsetManager(dataPath("/colorsets"));
    Bf::syntaxFormats = new SyntaxFormats;
    Bf::config = new QMugenModel;
    Bf::config->load(dataPath("/config.xml"));
    QLifecycleLog::record(QStringLiteral("config.xml read"));
    Bf::presets = new QPresetManager(dataPath("/presets"));
    Bf::languages = new QLanguageManager(dataPath("/languages"), QCoreApplication::instance());
    connect(Bf::languages, &QLanguageManager::langChanged, this, &MainWindow::retranslate);
    Bf::sctrls = new QSCtrlManager(dataPath("/sctrls"));
    Bf::scripts = new QScriptManager(dataPath("/scripts"));
    Bf::snippets = new QSnippetManager(dataPath("/snippets"));
    Bf::fileWatcher = new QFileWatcherManager;
    Bf::mainInterface = new QInterface(this, ui->dockWidget, ui->actList);

    registerEditors();
    Bf::mainInterface->init();
}

void MainWindow::registerEditors()
{
    QInterface *i = Bf::mainInterface;
    i->addWorkspace(std::make_unique<QTextWorkspace>());
    i->addWorkspace(std::make_unique<QAnimSpriteWorkspace>());
    i->addWorkspace(std::make_unique<QWebBrowserWorkspace>());
    i->addEditor(std::make_unique<QDefinitionsEditor>());
    i->addEditor(std::make_unique<QSpritesEditor>());
    i->addEditor(std::make_unique<QAnimationsEditor>());
    i->addEditor(std::make_unique<QCommandsEditor>());
    i->addEditor(std::make_unique<QStatesEditor>());
    i->addEditor(std::make_unique<QSoundsEditor>());
    i->addEditor(std::make_unique<QReferenceDocsEditor>());
    i->addExtraEditor(std::make_unique<QOrganizerEditor>());
    i->addExtraEditor(std::make_unique<QPalettesEditor>());
    i->addExtraEditor(std::make_unique<QThumbnailsEditor>());
}

MainWindow::~MainWindow()
{
    QLifecycleLog::record(QStringLiteral("~MainWindow"));
    delete Bf::mainInterface;
    // A failed write is silent: there is no one left to tell.
    if (Bf::config->save(dataPath("/config.xml")))
        QLifecycleLog::record(QStringLiteral("config.xml written"));
    delete Bf::fileWatcher;
    Bf::fileWatcher = nullptr;
    delete Bf::scripts;
    Bf::scripts = nullptr;
    delete Bf::sctrls;
    Bf::sctrls = nullptr;
    delete Bf::languages;
    Bf::languages = nullptr;
    delete Bf::presets;
    Bf::presets = nullptr;
    delete Bf::config;
    Bf::config = nullptr;
    delete Bf::syntaxFormats;
    Bf::syntaxFormats = nullptr;
    delete Bf::colorsets;
    Bf::colorsets = nullptr;
    delete Bf::stylesheets;
    Bf::stylesheets = nullptr;
    delete Bf::iconsets;
    Bf::iconsets = nullptr;
    // The snippet list stays until the process ends: scripts may still name it.
    delete Bf::mugenSyntax;
    Bf::mugenSyntax = nullptr;
    delete Bf::luaSyntax;
    Bf::luaSyntax = nullptr;
    QLifecycleLog::record(QStringLiteral("-syntax definitions"));

    QBFCacheFilter::destroyFilters();
    QSpriteCache::destroyUndoCache();
    QSpriteCache::purge();
    QLifecycleLog::record(QStringLiteral("-cache filters"));
    delete ui;
    QLifecycleLog::record(QStringLiteral("-MainWindow"));
}

void MainWindow::setCloseQuestion(CloseQuestion question)
{
    closeQuestion() = std::move(question);
}

bool MainWindow::askClose(QWidget *parent)
{
    if (closeQuestion())
        return closeQuestion()(parent);
    return QMessageBox::question(parent, tr("Close"), tr("Do you really want to close Brawlforge?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
           == QMessageBox::Yes;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    // Open projects are not asked about here: the one question is the guard.
    if (!(*Bf::config)[QStringLiteral("confirm_close")].toBool()) {
        QMainWindow::closeEvent(event);
        return;
    }
    if (askClose(this))
        QMainWindow::closeEvent(event);
    else
        event->ignore();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        retranslate();
}

void MainWindow::retranslate()
{
    ui->retranslateUi(this);
    if (Bf::mainInterface)
        Bf::mainInterface->retranslate();
    if (Bf::snippets)
        Bf::snippets->refresh();
}
