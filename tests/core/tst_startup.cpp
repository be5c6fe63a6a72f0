#include <QtTest>

#include "core/qappobjects.h"
#include "core/qlifecyclelog.h"
#include "core/qmugenmodel.h"
#include "core/qxmlhelper.h"
#include "core/ui/mainwindow.h"
#include "core/ui/qinterface.h"
#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"

#include <QDockWidget>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QTabBar>

// Start-up and shut-down of the main window: the order of the process-wide
// objects, the first start, and the close question.
class TestStartup : public QObject
{
    Q_OBJECT

    QString m_config;
    QByteArray m_savedConfig;
    bool m_hadConfig = false;
    int m_questions = 0;
    bool m_answer = false;
    QStringList m_xmlFailures;

    QByteArray readConfig() const
    {
        QFile f(m_config);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

private slots:
    void initTestCase()
    {
        // The program keeps its configuration beside the executable; keep
        // whatever a developer had there.
        m_config = QCoreApplication::applicationDirPath() + "/config.xml";
        m_hadConfig = QFile::exists(m_config);
        m_savedConfig = readConfig();
        MainWindow::setCloseQuestion([this](QWidget *) {
            ++m_questions;
            return m_answer;
        });
        QXmlHelper::setFailureHandler([this](const QString &m) { m_xmlFailures << m; });
    }
    void cleanupTestCase()
    {
        QFile::remove(m_config);
        if (m_hadConfig) {
            QFile f(m_config);
            if (f.open(QIODevice::WriteOnly))
                f.write(m_savedConfig);
        }
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
        auto *w = new MainWindow;
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

        // The form: names, title, menus, the action-list dock.
        QCOMPARE(w->objectName(), QStringLiteral("MainWindow"));
        QCOMPARE(w->windowTitle(), QStringLiteral("Orvane Brawlforge"));
        QVERIFY(w->findChild<QWidget *>("centralWidget"));
        QMenuBar *bar = w->findChild<QMenuBar *>("menuBar");
        QVERIFY(bar);
        QStringList titles;
        for (QAction *a : bar->actions())
            titles << a->text();
        QCOMPARE(titles, (QStringList{"Project", "Edit", "View", "Tools", "Help"}));
        QCOMPARE(bar->actions().first()->menu()->objectName(), QStringLiteral("menuFile"));
        auto *dock = w->findChild<QDockWidget *>();
        QVERIFY(dock);
        QCOMPARE(dock->features(), QDockWidget::DockWidgetFloatable);
        QCOMPARE(dock->allowedAreas(), Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        QVERIFY(dock->findChild<QWidget *>("dockWidgetContents"));
        QVERIFY(dock->findChild<QListView *>("actList"));

        // First start: defaults, one empty project, the definitions editor.
        QCOMPARE(w->size(), QSize(580, 750));
        QCOMPARE(w->pos(), QPoint(0, 0));
        QCOMPARE(Bf::mainInterface->tabBar()->count(), 1);
        QCOMPARE(Bf::mainInterface->tabBar()->tabText(0), QStringLiteral("Project 1"));
        QCOMPARE(Bf::mainInterface->projects().size(), 1);
        QVERIFY(Bf::mainInterface->currentProject());
        QCOMPARE(Bf::mainInterface->currentProject(), Bf::mainInterface->projects().first());
        QCOMPARE(Bf::mainInterface->currentEditorId(), 0);
        QVERIFY(QBFCacheFilter::filter(QBFCacheFilter::LZ5));
        QVERIFY(QSpriteCache::undoCache());
        QVERIFY(m_xmlFailures.isEmpty());

        // The window's state must reach the file: the controller writes it
        // into the configuration before the configuration is saved.
        w->resize(640, 700);
        QLifecycleLog::clear();
        delete w;
        const QStringList expectedDestruction{
            "~MainWindow",          "-QInterface:editors", "-QInterface:state",
            "config.xml written",   "-QFileWatcherManager", "-QScriptManager",
            "-QSCtrlManager",       "-QLanguageManager",   "-QPresetManager",
            "-QMugenModel",         "-SyntaxFormats",      "-QColorsetManager",
            "-QStylesheetManager",  "-QIconsetManager",    "-syntax definitions", "-cache filters",
            "-MainWindow"};
        QCOMPARE(QLifecycleLog::entries(), expectedDestruction);
        QVERIFY(!Bf::mainInterface);
        QVERIFY(!QBFCacheFilter::filter(QBFCacheFilter::LZ5));
        QVERIFY(!QSpriteCache::undoCache());
        QMugenModel saved;
        QVERIFY(saved.load(m_config));
        QCOMPARE(saved.map.value("window_width").toInt(), 640);
        QCOMPARE(saved.map.value("window_height").toInt(), 700);
        QCOMPARE(saved.map.value("confirm_close").toString(), QStringLiteral("true"));

        // The next start takes the saved size.
        MainWindow again;
        QCOMPARE(again.size(), QSize(640, 700));
    }

    void closeQuestion()
    {
        {
            MainWindow w;
            w.show();
            QVERIFY(QTest::qWaitForWindowExposed(&w));
            m_answer = false;
            QVERIFY(!w.close());
            QCOMPARE(m_questions, 1);
            QVERIFY(w.isVisible());
            QCOMPARE(Bf::mainInterface->tabBar()->count(), 1);
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
        MainWindow w;
        w.show();
        QVERIFY(w.close());
        QCOMPARE(m_questions, 0);
    }

    void brokenConfigKeepsDefaults()
    {
        QFile f(m_config);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("<configuration><config name=\"window_width\" value=\"9");
        f.close();
        MainWindow w;
        QCOMPARE(m_xmlFailures.size(), 1);
        QCOMPARE(w.size(), QSize(580, 750));
        QCOMPARE((*Bf::config)["preset"].toString(), QStringLiteral("Classic"));
    }
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
