#include <QtTest>

#include "approot.h"
#include "base/qlifecyclelog.h"
#include "base/qmugenmodel.h"
#include "base/qxmlhelper.h"
#include "shell/mainwindow.h"
#include "shell/qaction2.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterface.h"
#include "shell/qwindowlayout.h"
#include "shell/qpresetmanager.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"

#include <QMenu>
#include <QTabBar>

// Start-up and shut-down of the program: the order of the process-wide
// objects, the first start, the close question, and where files live.
class TestStartup : public QObject
{
    Q_OBJECT

    QTemporaryDir m_home;
    QString m_config;
    int m_questions = 0;
    bool m_answer = false;
    QStringList m_xmlFailures;

    std::unique_ptr<QAppRoot> start()
    {
        auto root = std::make_unique<QAppRoot>(TestSupport::appPaths(m_home.path()));
        root->window()->setCloseQuestion([this](QWidget *) {
            ++m_questions;
            return m_answer;
        });
        return root;
    }

private slots:
    void initTestCase()
    {
        m_config = m_home.filePath("config.xml");
        QXmlHelper::setFailureHandler([this](const QString &m) { m_xmlFailures << m; });
    }
    void init()
    {
        QFile::remove(m_config);
        QLifecycleLog::clear();
        m_questions = 0;
        m_xmlFailures.clear();
    }

    void firstStartAndOrder()
    {
        auto root = start();
        MainWindow *w = root->window();
        QInterface *ui = root->controller();
        const QStringList created = QLifecycleLog::entries();
        const QStringList expectedCreation{
            "+MainWindow",          "+syntax definitions",    "+cache filters",         "+QIconsetManager",       "+QStylesheetManager",
            "+QColorsetManager",    "+SyntaxFormats",         "+QMugenModel",
            "config.xml read",      "+QPresetManager",        "+QLanguageManager",
            "+QSCtrlManager",       "+QScriptManager",        "+QSnippetManager",
            "+QFileWatcherManager", "+QInterface",            "QInterface::init:state",
            "QInterface::init:editor", "QInterface::init:project", "QInterface::init:config",
            "QInterface::init:tools"};
        QCOMPARE(created, expectedCreation);

        QCOMPARE(w->windowTitle(), QStringLiteral("Orvane Brawlforge"));

        // First start: defaults, one empty project, the definitions editor.
        QCOMPARE(w->size(), QSize(580, 750));
        QCOMPARE(w->pos(), QPoint(0, 0));
        QCOMPARE(ui->layout().tabBar()->count(), 1);
        QCOMPARE(ui->layout().tabBar()->tabText(0), QStringLiteral("Project 1"));
        QCOMPARE(ui->projects().size(), 1);
        QVERIFY(ui->currentProject());
        QCOMPARE(ui->currentProject(), ui->projects().first());
        QCOMPARE(ui->registry().currentEditorId(), 0);
        QVERIFY(QBFCacheFilter::filter(QBFCacheFilter::LZ5));
        QVERIFY(root->objects().undoCache);
        QVERIFY(m_xmlFailures.isEmpty());

        // The window's state must reach the file: the controller writes it
        // into the configuration before the configuration is saved.
        w->resize(640, 700);
        QLifecycleLog::clear();
        root.reset();
        const QStringList expectedDestruction{
            "~QAppRoot",            "-QInterface:editors", "-QInterface:state",
            "config.xml written",   "-QFileWatcherManager", "-QSnippetManager", "-QScriptManager",
            "-QSCtrlManager",       "-QLanguageManager",   "-QPresetManager",
            "-QMugenModel",         "-SyntaxFormats",      "-QColorsetManager",
            "-QStylesheetManager",  "-QIconsetManager",    "-syntax definitions", "-cache filters",
            "-MainWindow"};
        QCOMPARE(QLifecycleLog::entries(), expectedDestruction);
        QVERIFY(!QBFCacheFilter::filter(QBFCacheFilter::LZ5));
        QMugenModel saved;
        QVERIFY(saved.load(m_config));
        QCOMPARE(saved.map.value("window_width").toInt(), 640);
        QCOMPARE(saved.map.value("window_height").toInt(), 700);
        QCOMPARE(saved.map.value("confirm_close").toString(), QStringLiteral("true"));

        // The next start takes the saved size.
        auto again = start();
        QCOMPARE(again->window()->size(), QSize(640, 700));
    }

    void closeQuestion()
    {
        {
            auto root = start();
            MainWindow &w = *root->window();
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            m_answer = false;
            QVERIFY(!w.close());
            QCOMPARE(m_questions, 1);
            QVERIFY(w.isVisible());
            QCOMPARE(root->controller()->layout().tabBar()->count(), 1);
            QVERIFY(!QFile::exists(m_config));

            m_answer = true;
            QVERIFY(w.close());
            QCOMPARE(m_questions, 2);
        }
        QVERIFY(QFile::exists(m_config));

        // With confirm_close off the window closes without a question.
        QMugenModel cfg;
        QVERIFY(cfg.load(m_config));
        cfg.map["confirm_close"] = false;
        QVERIFY(cfg.save(m_config));
        m_questions = 0;
        auto root = start();
        root->window()->show();
        QVERIFY(root->window()->close());
        QCOMPARE(m_questions, 0);
    }

    void brokenConfigKeepsDefaults()
    {
        QFile f(m_config);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("<configuration><config name=\"window_width\" value=\"9");
        f.close();
        auto root = start();
        QCOMPARE(m_xmlFailures.size(), 1);
        QCOMPARE(root->window()->size(), QSize(580, 750));
        QCOMPARE(root->objects().config->text("preset"), QStringLiteral("Classic"));
    }

    void whereFilesLive()
    {
        // An ordinary copy keeps its settings in the user's folders...
        const QString exeDir = QCoreApplication::applicationDirPath();
        const QString marker = exeDir + "/portable";
        if (!QFile::exists(exeDir + "/config.xml")) {
            const QAppPaths user = QAppPaths::forApplication();
            QVERIFY(!user.isPortable());
            QCOMPARE(user.configDir(), QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation));
            QCOMPARE(user.stateDir(), QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
            QVERIFY(user.dataPath("presets/Classic.xml").startsWith(exeDir + "/presets"));
        }
        // ... a portable one beside itself.
        QVERIFY(QFile(marker).open(QIODevice::WriteOnly));
        const QAppPaths portable = QAppPaths::forApplication();
        QFile::remove(marker);
        QVERIFY(portable.isPortable());
        QCOMPARE(portable.configFile("config.xml"), exeDir + "/config.xml");
        QCOMPARE(portable.stateFile("history.xml"), exeDir + "/history.xml");

        // The user's own data comes first and hides what the program ships
        // under the same name; the shipped shortcuts serve until there are own.
        QTemporaryDir own;
        QDir().mkpath(own.filePath("presets"));
        QVERIFY(QFile::copy(QStringLiteral(BF_SOURCE_DIR "/data/presets/Classic.xml"), own.filePath("presets/Mine.xml")));
        QVERIFY(QFile(own.filePath("presets/Classic.xml")).open(QIODevice::WriteOnly));
        {
            QAppRoot root(QAppPaths(m_home.path(), m_home.path(), {own.path(), exeDir}));
            QPresetManager *presets = root.objects().presets;
            QCOMPARE(presets->entries().names(), (QStringList{"Classic", "Mine"}));
            QCOMPARE(presets->entries().filePath("Classic"), own.filePath("presets/Classic.xml"));
            QVERIFY(root.controller()->actionManager().action("file_save")->keys() == QKeySequence("Ctrl+S"));
            root.window()->setCloseQuestion([](QWidget *) { return true; });
        }
        QVERIFY(QFile::exists(m_home.filePath("shortcuts.xml")));
        QVERIFY(QFile::exists(m_home.filePath("history.xml")));
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
