#include <QAction>
#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QtTest>

#include "base/qxmlhelper.h"
#include "shell/qhistorymanager.h"
#include "shell/projdlg.h"

namespace {
QString touch(const QTemporaryDir &dir, const QString &name)
{
    const QString path = dir.filePath(name);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly))
        f.write("x");
    return path;
}

QStringList entryTexts(QMenu &menu)
{
    QStringList texts;
    for (QAction *a : menu.actions())
        texts << (a->isSeparator() ? QStringLiteral("-") : a->text());
    return texts;
}
} // namespace

class TestInterfaceHistory : public QObject
{
    Q_OBJECT

private slots:
    void historyKeepsTwentyNewestFirst();
    void historyFileRoundTripDropsVanishedFiles();
    void openAllAndClear();
    void templateDialogListsGroups();
};

void TestInterfaceHistory::historyKeepsTwentyNewestFirst()
{
    QTemporaryDir dir;
    QMenu menu;
    QHistoryManager h(&menu, dir.filePath("history.xml"), 20);
    QStringList files;
    for (int i = 0; i < 21; ++i)
        files << dir.filePath(QString("p%1/kfm%1.def").arg(i));
    for (int i = 0; i < 20; ++i)
        h.add(files[i]);
    QCOMPARE(h.entries().size(), 20);
    QCOMPARE(h.entries().first(), files[19]);

    // Reopening an old entry moves it to the top and drops nothing.
    h.add(files[0]);
    QCOMPARE(h.entries().size(), 20);
    QCOMPARE(h.entries().first(), files[0]);
    QCOMPARE(h.entries().last(), files[1]);

    // The 21st distinct project drops the oldest.
    h.add(files[20]);
    QCOMPARE(h.entries().size(), 20);
    QVERIFY(!h.entries().contains(files[1]));
    QCOMPARE(h.entries().first(), files[20]);
    h.add(QString()); // ignored
    QCOMPARE(h.entries().first(), files[20]);

    // Menu: one entry per file by base name, a separator, "Open all", "Clear".
    const QStringList texts = entryTexts(menu);
    QCOMPARE(texts.size(), 23);
    QCOMPARE(texts.first(), QString("kfm20"));
    QCOMPARE(texts.mid(20), QStringList({"-", "Open all", "Clear"}));
    QCOMPARE(menu.actions().first()->data().toString(), files[20]);

    // Clicking an entry asks to open its full path.
    QSignalSpy spy(&h, &QHistoryManager::entryTriggered);
    menu.actions().at(1)->trigger();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), h.entries().at(1));
}

void TestInterfaceHistory::historyFileRoundTripDropsVanishedFiles()
{
    QTemporaryDir dir;
    const QString file = dir.filePath("history.xml");
    const QString a = touch(dir, "a/a.def");
    const QString b = touch(dir, "b/b.def");
    const QString c = touch(dir, "c/c.def");
    {
        QHistoryManager h(nullptr, file, 20);
        h.add(a);
        h.add(b);
        h.add(c);
        QVERIFY(h.save());
    }
    QFile f(file);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray xml = f.readAll();
    f.close();
    QVERIFY(xml.contains("<!DOCTYPE ORVHistoryML>")); // older versions read only this

    QFile::remove(b);
    QMenu menu;
    QHistoryManager h(&menu, file, 20);
    QVERIFY(h.load());
    QCOMPARE(h.entries(), QStringList({c, a}));

    // Missing, broken and foreign files leave an empty list; a broken one is reported.
    QStringList reports;
    auto old = QXmlHelper::setFailureHandler([&](const QString &m) { reports << m; });
    QHistoryManager missing(&menu, dir.filePath("none.xml"), 20);
    QVERIFY(!missing.load());
    QVERIFY(missing.entries().isEmpty());
    QFile broken(dir.filePath("broken.xml"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("<history><entry file=\"");
    broken.close();
    QHistoryManager bad(&menu, broken.fileName(), 20);
    QVERIFY(!bad.load());
    QVERIFY(bad.entries().isEmpty());
    QCOMPARE(reports.size(), 1);
    QFile foreign(dir.filePath("foreign.xml"));
    QVERIFY(foreign.open(QIODevice::WriteOnly));
    foreign.write(QString("<shortcuts><entry file=\"%1\"/></shortcuts>").arg(a).toUtf8());
    foreign.close();
    QHistoryManager wrong(&menu, foreign.fileName(), 20);
    QVERIFY(!wrong.load());
    QVERIFY(wrong.entries().isEmpty());
    QXmlHelper::setFailureHandler(old);

    // A failed save keeps the earlier file.
    QHistoryManager nowhere(nullptr, dir.filePath("no/dir/history.xml"), 20);
    nowhere.add(a);
    QVERIFY(!nowhere.save());
}

void TestInterfaceHistory::openAllAndClear()
{
    QTemporaryDir dir;
    QMenu menu;
    QHistoryManager h(&menu, dir.filePath("history.xml"), 20);
    h.add("/x/one.def");
    h.add("/x/two.def");
    h.add("/x/three.def");
    const QStringList before = h.entries();

    // Opening everything must not reorder the list while it is walked, even
    // though each open reports back with add().
    QStringList opened;
    connect(&h, &QHistoryManager::entryTriggered, this, [&](const QString &file) {
        opened << file;
        h.add(file);
        h.add("/x/new.def");
    });
    h.allTriggered();
    QCOMPARE(opened, before);
    QCOMPARE(h.entries(), before);

    // Recording works again afterwards.
    h.add("/x/one.def");
    QCOMPARE(h.entries().first(), QString("/x/one.def"));

    // "Clear" empties the list and the menu.
    QAction *clear = menu.actions().last();
    QCOMPARE(clear->text(), QString("Clear"));
    clear->trigger();
    QVERIFY(h.entries().isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(entryTexts(menu), QStringList({"-", "Open all", "Clear"}));
    QVERIFY(!menu.actions().at(1)->isEnabled());
}

void TestInterfaceHistory::templateDialogListsGroups()
{
    QTemporaryDir dir;
    touch(dir, "project/Characters/Basic.lua");
    touch(dir, "project/Characters/Fighter.lua");
    touch(dir, "project/Characters/readme.txt");
    touch(dir, "project/Stages/Simple.lua");
    touch(dir, "project/stray.lua");
    touch(dir, "project/Stages/deep/Nested.lua");
    const QStringList found = ProjDlg::findTemplates(dir.filePath("project"));
    QCOMPARE(found, QStringList({"Characters/Basic", "Characters/Fighter", "Stages/Simple"}));
    QVERIFY(ProjDlg::findTemplates(dir.filePath("missing")).isEmpty());

    ProjDlg dlg(found + QStringList({"bad", "/bad", "bad/"}), dir.filePath("project"));
    QCOMPARE(dlg.windowTitle(), QString("Project template"));
    auto *tabs = dlg.findChild<QTabWidget *>();
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QString("Characters"));
    QCOMPARE(tabs->widget(1)->whatsThis(), QString("Stages"));

    // Nothing selected: an empty template, which means a plain project.
    QVERIFY(dlg.chosenTemplate().isEmpty());
    QVERIFY(dlg.selectTemplate("Stages/Simple"));
    QCOMPARE(dlg.chosenTemplate(), QString("Stages/Simple"));
    QVERIFY(!dlg.selectTemplate("Stages/None"));
    auto *list = qobject_cast<QListWidget *>(tabs->widget(0));
    QCOMPARE(list->count(), 2);
    QCOMPARE(list->item(1)->data(Qt::WhatsThisRole).toString(), QString("Characters/Fighter"));

    ProjDlg empty({}, QString());
    QVERIFY(empty.chosenTemplate().isEmpty());
}

QTEST_MAIN(TestInterfaceHistory)
#include "tst_interface_history.moc"
