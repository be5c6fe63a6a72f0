#include <QtTest>

#include "testsupport.h"

#include "code/qsctrlmanager.h"
#include "code/syntaxformats.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "base/qfilewatchermanager.h"
#include "base/qfilewatchobject.h"
#include "shell/qiconsetmanager.h"
#include "shell/qlanguagemanager.h"
#include "shell/qtranslationunit.h"
#include "base/qxmlhelper.h"
#include "scripting/qscriptmanager.h"
#include "scripting/qsnippetmanager.h"

extern "C" {
#include <lua.h>
}

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

class WatchedDoc : public QFileWatchObject
{
    Q_OBJECT
public:
    QString path;
    QString fileName() const override { return path; }
    bool reload(const QString &) override { return true; }
};

} // namespace

// The managers created at start-up: what they list from their folders, and
// what they do with bad or missing data.
class TestManagers : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QStringList m_xmlFailures;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QXmlHelper::setFailureHandler([this](const QString &m) { m_xmlFailures << m; });
    }
    void init() { m_xmlFailures.clear(); }

    void translationBounds()
    {
        // Out-of-range caption ids give no text rather than reading past the table.
        QTranslationUnit tu;
        QVERIFY(!tu.text(0).isEmpty());
        QCOMPARE(tu.text(QTranslationUnit::Count), QString());
        QCOMPARE(tu.text(-1), QString());
    }

    void appearanceFolders()
    {
        const QString root = m_dir.filePath("appearance");
        // Icon sets: sub-folders; the icons of a set go onto the actions by key.
        QVERIFY(TestSupport::writeAll(root + "/iconsets/Blue/Iconset.xml",
                          "<!DOCTYPE ORVIconsetML><iconset><icon name=\"spr_save\" file=\"save.png\"/></iconset>"));
        QImage img(8, 8, QImage::Format_ARGB32);
        img.fill(Qt::blue);
        QVERIFY(img.save(root + "/iconsets/Blue/save.png"));
        QVERIFY(TestSupport::writeAll(root + "/iconsets/Broken/Iconset.xml", "<iconset><icon"));
        QIconsetManager icons({root + "/iconsets"});
        QCOMPARE(icons.count(), 2);
        QActionManager am;
        QAction2 *save = am.addAction({1, -1}, "spr_save", 72);
        QAction2 *other = am.addAction({1, -1}, "spr_add", 74);
        icons.apply("Blue", &am);
        QCOMPARE(icons.current(), QStringLiteral("Blue"));
        QVERIFY(!save->icon().isNull());
        QVERIFY(other->icon().isNull());
        QVERIFY(!icons.icon("spr_save").isNull());
        icons.apply("Broken", &am);
        QCOMPARE(m_xmlFailures.size(), 1);
        QVERIFY(save->icon().isNull());
        icons.apply("Nowhere", &am);
        QCOMPARE(icons.current(), QString());
        QVERIFY(icons.icon("spr_save").isNull());

        // Languages: only folders with a readable info.xml, rooted right, count.
        QVERIFY(TestSupport::writeAll(root + "/languages/pt-br/info.xml",
                          "<!DOCTYPE ORVLanguageML><language value=\"pt-br\" name=\"Portugues\" author=\"A\" contact=\"a@b\"/>"));
        QVERIFY(TestSupport::writeAll(root + "/languages/pt-br/broken.QM", "not a translation"));
        QVERIFY(TestSupport::writeAll(root + "/languages/xx/info.xml", "<colors/>"));
        QVERIFY(TestSupport::writeAll(root + "/languages/.hidden/info.xml", "<language name=\"h\"/>"));
        QVERIFY(QDir().mkpath(root + "/languages/empty"));
        QLanguageManager langs(root + "/languages", QCoreApplication::instance());
        QCOMPARE(langs.count(), 1);
        QCOMPARE(langs.name(0), QStringLiteral("Portugues"));
        QCOMPARE(langs.language(0).contact, QStringLiteral("a@b"));
        QCOMPARE(langs.indexOf("pt-br"), 0);
        QCOMPARE(langs.indexOf("xx"), -1);
        QSignalSpy changed(&langs, &QLanguageManager::langChanged);
        langs.setLanguage("pt-br");
        QCOMPARE(langs.current(), QStringLiteral("pt-br"));
        QCOMPARE(langs.translatorCount(), 0); // the bad .qm is passed over
        langs.setLanguage("klingon");
        QCOMPARE(langs.current(), QString());
        QCOMPARE(changed.count(), 2);
        QLanguageManager none(root + "/missing", nullptr);
        QCOMPARE(none.count(), 0);

        // The code colour roles: a missing role is black and plain.
        SyntaxFormats formats;
        QCOMPARE(formats.font().family(), QStringLiteral("Courier"));
        QVERIFY(formats.font().fixedPitch());
        QMap<QString, SyntaxFormats::Record> colors;
        colors.insert("comment", {QColor(0, 128, 0), false, true});
        colors.insert("block", {QColor(0, 0, 160), true, false});
        QVERIFY(formats.applyColors(colors));
        QVERIFY(!formats.applyColors(colors));
        QCOMPARE(formats.format(0).color, QColor(0, 128, 0));
        QVERIFY(formats.format(0).italic);
        QVERIFY(formats.format(4).bold);
        QCOMPARE(formats.format(1).color, QColor(Qt::black));
        QVERIFY(formats.applyColors({}));
        QVERIFY(!formats.format(4).bold);
        formats.setFont(QFont("Monospace", 13), true);
        QCOMPARE(formats.charFormat(4).fontPointSize(), 13.0);
        QVERIFY(!formats.setFormat(9, {}));
    }

    void servicesAndScripts()
    {
        const QString root = m_dir.filePath("services");
        QVERIFY(TestSupport::writeAll(root + "/sctrls/ChangeState.sctrl", "x"));
        QVERIFY(TestSupport::writeAll(root + "/sctrls/notes.txt", "x"));
        QVERIFY(TestSupport::writeAll(root + "/snippets/b.xml", "<snippet/>"));
        QVERIFY(TestSupport::writeAll(root + "/snippets/a.xml", "<snippet/>"));
        QSCtrlManager sctrls({root + "/sctrls"});
        QCOMPARE(sctrls.names(), QStringList{"ChangeState"});
        QCOMPARE(sctrls.data(sctrls.index(0)).toString(), QStringLiteral("ChangeState"));
        QVERIFY(TestSupport::writeAll(root + "/sctrls/Explod.sctrl", "x"));
        QSignalSpy reset(&sctrls, &QAbstractItemModel::modelReset);
        sctrls.refresh();
        QCOMPARE(sctrls.rowCount(), 2);
        QCOMPARE(reset.count(), 1);
        // Several folders, the user's first: a name found twice is the first one's.
        QVERIFY(TestSupport::writeAll(root + "/own/snippets/b.xml", "<snippet own=\"1\"/>"));
        QVERIFY(TestSupport::writeAll(root + "/own/snippets/c.xml", "<snippet/>"));
        QSnippetManager snippets({root + "/own/snippets", root + "/snippets", root + "/none"});
        QCOMPARE(snippets.names(), (QStringList{"a", "b", "c"}));
        QCOMPARE(snippets.filePath("b"), root + "/own/snippets/b.xml");
        QCOMPARE(snippets.filePath("a"), root + "/snippets/a.xml");
        QCOMPARE(snippets.newFilePath("d"), root + "/own/snippets/d.xml");
        QSnippetManager nothing({root + "/none"});
        QCOMPARE(nothing.rowCount(), 0);

        // Scripts: categories are folders, scripts are .lua files in them.
        QVERIFY(TestSupport::writeAll(root + "/scripts/tool/Hello.lua", "function main() print('hi', 2) end"));
        QVERIFY(TestSupport::writeAll(root + "/scripts/tool/Broken.lua", "function main( end"));
        QVERIFY(TestSupport::writeAll(root + "/scripts/tool/readme.txt", "x"));
        QVERIFY(TestSupport::writeAll(root + "/scripts/common/util.lua", "return { twice = function(x) return 2*x end }"));
        QVERIFY(TestSupport::writeAll(root + "/scripts/project/Uses.lua", "local u = require('util'); result = u.twice(21)"));
        QVERIFY(TestSupport::writeAll(root + "/scripts/.git/x.lua", ""));
        QScriptManager scripts(root + "/scripts");
        QCOMPARE(scripts.categories(), (QStringList{"common", "project", "tool"}));
        QCOMPARE(scripts.scripts("tool").keys(), (QStringList{"Broken", "Hello"}));
        QVERIFY(scripts.scripts("unknown").isEmpty());

        QSignalSpy printed(&scripts, &QScriptManager::printOutput);
        QVERIFY(scripts.load("tool/Hello.lua"));
        lua_getglobal(scripts.state(), "main");
        QCOMPARE(lua_pcall(scripts.state(), 0, 0, 0), 0);
        QCOMPARE(printed.count(), 1);
        QCOMPARE(printed.first().first().toString(), QStringLiteral("hi\t2"));
        QVERIFY(scripts.load("project/Uses.lua"));
        lua_getglobal(scripts.state(), "result");
        QCOMPARE(int(lua_tointeger(scripts.state(), -1)), 42);
        QVERIFY(!scripts.load("tool/Broken.lua"));
        QVERIFY(!scripts.errorMessage().isEmpty());
        QVERIFY(!scripts.load("tool/Absent.lua"));
        QVERIFY(!scripts.loadText("error('boom')"));
        QVERIFY(scripts.errorMessage().contains("boom"));
        scripts.close();
        QVERIFY(!scripts.state());
        QCOMPARE(scripts.errorMessage(), QString());

        // The watcher tells about outside changes, not about the program's own saves.
        const QString watchedPath = root + "/watched.def";
        QVERIFY(TestSupport::writeAll(watchedPath, "[Info]"));
        QFileWatcherManager watcher;
        WatchedDoc doc;
        doc.path = watchedPath;
        WatchedDoc unnamed;
        watcher.watch(&doc);
        watcher.watch(&doc);
        watcher.watch(&unnamed);
        QCOMPARE(watcher.watchedCount(), 1);
        QSignalSpy changed(&watcher, &QFileWatcherManager::fileChanged);
        QVERIFY(TestSupport::writeAll(watchedPath, "[Info]\nname=x"));
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), watchedPath);
        // Two documents on one file share its watch; it goes with the last.
        WatchedDoc twin;
        twin.path = watchedPath;
        watcher.watch(&twin);
        watcher.unwatch(&doc);
        QVERIFY(watcher.isWatched(watchedPath));
        watcher.unwatch(&twin);
        QVERIFY(!watcher.isWatched(watchedPath));
        QCOMPARE(watcher.watchedCount(), 0);
    }

    void xmlHelperSave()
    {
        // A write that can't complete leaves the previous file as it was.
        const QString path = m_dir.filePath("keep.xml");
        QVERIFY(TestSupport::writeAll(path, "<old/>"));
        QDomDocument doc("ORVTestML");
        doc.appendChild(doc.createElement("root"));
        QVERIFY(!QXmlHelper::save(doc, m_dir.filePath("no/dir/keep.xml")));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("<old/>"));
        f.close();
        QVERIFY(QXmlHelper::save(doc, path));
        QDomDocument back;
        QVERIFY(QXmlHelper::parseFile(back, path));
        QCOMPARE(back.doctype().name(), QStringLiteral("ORVTestML"));
        QVERIFY(!QXmlHelper::parseFile(back, m_dir.filePath("absent.xml")));
        QVERIFY(m_xmlFailures.isEmpty());
        QVERIFY(!QXmlHelper::parse(back, nullptr));
        QCOMPARE(m_xmlFailures.size(), 1);
    }
};

QTEST_MAIN(TestManagers)
#include "tst_managers.moc"
