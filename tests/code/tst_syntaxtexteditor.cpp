#include <QtTest>

#include "testsupport.h"

#include "code/qmugensyntaxhierarchy.h"
#include "code/qsyntaxtexteditor.h"
#include "code/qtextencoding.h"
#include "testsupport.h"

#include <QDirIterator>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTextDocument>

using TestSupport::readAll;
using TestSupport::writeAll;

class TestSyntaxTextEditor : public QObject
{
    Q_OBJECT

private slots:
    void encodingTableAndDetection()
    {
        QCOMPARE(QTextEncoding::codepageName(0), QByteArray());
        QCOMPARE(QTextEncoding::codepageName(1), QByteArray("UTF-8"));
        QCOMPARE(QTextEncoding::codepageName(39), QByteArray("CP1252"));
        QCOMPARE(QTextEncoding::codepageName(46), QByteArray("TIS-620"));
        QCOMPARE(QTextEncoding::codepageName(47), QByteArray());
        // Past the table counts as the system locale.
        QCOMPARE(QTextEncoding::codecForIndex(47), QTextCodec::codecForLocale());
        QCOMPARE(QTextEncoding::codecForIndex(-3), QTextCodec::codecForLocale());
        QTextCodec *cp1252 = QTextCodec::codecForName("CP1252");
        QVERIFY(cp1252);

        // Nothing to detect: the fallback applies; the same for plain ASCII.
        QCOMPARE(QTextEncoding::detectCodec(QByteArray(), 39), cp1252);
        QCOMPARE(QTextEncoding::detectCodec(QByteArray("[Info]\r\nname = x\r\n"), 39), cp1252);
        // A UTF-8 byte-order mark wins over any default.
        QCOMPARE(QTextEncoding::detectCodec(QByteArray("\xEF\xBB\xBF[Info]\r\nname = \xC3\xA9t\xC3\xA9\r\n"), 39)->mibEnum(),
                 106);
        // Reading through a device leaves it at the start.
        QBuffer buf;
        buf.setData("; \xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x86\xE3\x82\xAD\xE3\x82\xB9\xE3\x83\x88 "
                    "\xE3\x81\xA7\xE3\x81\x99\xE3\x80\x82\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\r\n");
        buf.open(QIODevice::ReadOnly);
        QCOMPARE(QTextEncoding::detectCodec(&buf, 39)->mibEnum(), 106);
        QCOMPARE(buf.pos(), qint64(0));

        // Bad bytes are found and located; the mark is dropped on decoding.
        int badLine = -2;
        QCOMPARE(QTextEncoding::decode("\xEF\xBB\xBF" "a\nb", nullptr, &badLine), QStringLiteral("a\nb"));
        QCOMPARE(badLine, -1);
        QTextEncoding::decode("ok\nok\nbad \xFF\xFE here", QTextCodec::codecForName("UTF-8"), &badLine);
        QCOMPARE(badLine, 2);

        // A byte-order mark only where the codec has one, in its byte order.
        QCOMPARE(QTextEncoding::encode(QStringLiteral("A"), nullptr), QByteArray("\xEF\xBB\xBF" "A"));
        QCOMPARE(QTextEncoding::encode(QStringLiteral("\u00E9"), cp1252), QByteArray("\xE9"));
        QCOMPARE(QTextEncoding::encode(QStringLiteral("A"), QTextCodec::codecForName("UTF-16LE")),
                 QByteArray("\xFF\xFE" "A\0", 4));
        QCOMPARE(QTextEncoding::encode(QStringLiteral("A"), QTextCodec::codecForName("UTF-16BE")),
                 QByteArray("\xFE\xFF\0A", 4));
    }

    void loadKeepsEncodingAndSaveWritesCrLf()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("a.cns"));
        // Legacy code page, LF line ends, no declaration.
        const QByteArray legacy("; Caf\xE9 cr\xE8me br\xFBl\xE9\n[Statedef 200]\ntype = S\n");
        QVERIFY(writeAll(path, legacy));

        QSyntaxTextEditor doc;
        QVERIFY(doc.loadFile(path, 39));
        QVERIFY(doc.text().startsWith(QStringLiteral("; Caf\u00E9 cr\u00E8me br\u00FBl\u00E9\n")));
        QCOMPARE(doc.language(), int(QSyntaxTextEditor::Mugen));
        QCOMPARE(doc.fileName(), path);
        QVERIFY(!doc.isModified());
        QVERIFY(doc.sectionExists(QStringLiteral("STATEDEF")));
        const QByteArray found = doc.encoding();
        QVERIFY(!found.isEmpty());

        // Untouched, the very bytes come back, LF line ends included.
        const QString copy = dir.filePath(QStringLiteral("copy.cns"));
        QVERIFY(doc.saveFile(copy, false, true));
        QCOMPARE(readAll(copy), legacy);
        QCOMPARE(doc.fileName(), path); // a copy keeps the document's own file

        // Edited, it goes out in the encoding found, CR LF, no mark for a
        // legacy code page.
        doc.document()->setPlainText(doc.text() + QStringLiteral("ctrl = 1\n"));
        QByteArray expected = legacy + "ctrl = 1\n";
        expected.replace("\n", "\r\n");
        QVERIFY(doc.saveFile(copy, false, true));
        QCOMPARE(readAll(copy), expected);
        QCOMPARE(doc.firstLossyLine(), -1);

        doc.document()->setPlainText(doc.text() + QStringLiteral("\u65E5"));
        QVERIFY(doc.isModified());
        QVERIFY(doc.saveFile(path, true, false));
        QCOMPARE(doc.encoding(), QByteArray("UTF-8"));
        QVERIFY(!doc.isModified());
        const QByteArray utf8 = readAll(path);
        QVERIFY(utf8.startsWith("\xEF\xBB\xBF; Caf\xC3\xA9"));
        QVERIFY(utf8.contains("\r\n[Statedef 200]\r\n"));
        QVERIFY(!utf8.contains("\r\r"));

        // A load with the document's name kept (reading a backup back).
        QSyntaxTextEditor other;
        other.setFileName(QStringLiteral("/elsewhere/own.cns"));
        QVERIFY(other.loadFile(path, 0, true, true));
        QCOMPARE(other.fileName(), QStringLiteral("/elsewhere/own.cns"));
        QCOMPARE(other.text(), doc.text());

        // Missing file: false, the document as it was.
        QVERIFY(!other.loadFile(dir.filePath(QStringLiteral("none.cns")), 0));
        QCOMPARE(other.text(), doc.text());
        QVERIFY(!other.errorString().isEmpty());

        other.clear();
        QVERIFY(other.isEmpty());
        QCOMPARE(other.encoding(), QByteArray("UTF-8"));
        QCOMPARE(other.fileName(), QString());
    }

    void textsRoundTripInTheirCodePages()
    {
        BF_REQUIRE_SAMPLE();
        QTemporaryDir dir;
        const QString out = dir.filePath(QStringLiteral("out.txt"));

        // Every text of the engine's sample: read cleanly, written back byte
        // for byte when untouched, by a copy and by a real save alike.
        int texts = 0;
        QDirIterator it(TestSupport::sampleDir(), {"*.def", "*.cns", "*.st", "*.cmd", "*.air"}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const QByteArray bytes = readAll(path);
            QSyntaxTextEditor doc;
            QVERIFY2(doc.loadFile(path, 0), qPrintable(path));
            QCOMPARE(doc.firstBadLine(), -1);
            if (bytes.startsWith("\xEF\xBB\xBF"))
                QCOMPARE(doc.encoding(), QByteArray("UTF-8"));
            QVERIFY(doc.saveFile(out, false, true));
            QVERIFY2(readAll(out) == bytes, qPrintable(path));
            QVERIFY(doc.saveFile(out, false, false));
            QVERIFY(doc.saveFile(out, false, false));
            QVERIFY2(readAll(out) == bytes, qPrintable(path));
            ++texts;
        }
        QVERIFY(texts >= 40);
        qInfo("%d sample texts round-tripped", texts);

        // Legacy code pages without a declaration, found by the detector
        // whatever the fallback says.
        const struct
        {
            const char *file;
            const char *word;
            QList<int> mibs;
        } fixtures[] = {
            {"cp1251.cns", "\u041F\u0435\u0440\u0441\u043E\u043D\u0430\u0436", {2251}},
            {"shiftjis.def", "\u30AB\u30F3\u30D5\u30FC\u30DE\u30F3", {17, 2024}},
            {"gbk.cmd", "\u6CE2\u52A8\u62F3", {113, 114, 2025}},
        };
        for (const auto &f : fixtures) {
            const QString path = TestSupport::fixturesDir() + QStringLiteral("/encodings/") + QLatin1String(f.file);
            const QByteArray bytes = readAll(path);
            QSyntaxTextEditor doc;
            QVERIFY(doc.loadFile(path, 1));
            QTextCodec *codec = QTextCodec::codecForName(doc.encoding());
            QVERIFY2(codec && f.mibs.contains(codec->mibEnum()), doc.encoding().constData());
            QVERIFY2(doc.text().contains(QString::fromUtf8(f.word)), f.file);
            QCOMPARE(doc.firstBadLine(), -1);
            QVERIFY(doc.saveFile(out, false, true));
            QVERIFY2(readAll(out) == bytes, f.file);

            // An edit keeps the code page; what it cannot hold is reported.
            const QString edited = doc.text() + QString::fromUtf8(f.word) + QStringLiteral("\n");
            doc.setText(edited);
            QVERIFY(doc.saveFile(out, false, true));
            QCOMPARE(codec->toUnicode(readAll(out)), QString(edited).replace(QLatin1Char('\n'), QLatin1String("\r\n")));
            QCOMPARE(doc.firstLossyLine(), -1);
            const QString foreign = QStringLiteral("\u00E9\u20AC\u0E01");
            if (!codec->canEncode(foreign)) {
                doc.setText(edited + foreign + QStringLiteral("\n"));
                QVERIFY(doc.saveFile(out, false, true));
                QCOMPARE(doc.firstLossyLine(), int(edited.count(QLatin1Char('\n'))));
            }
        }

        // Bytes the detected codec can't map stay in an untouched save.
        const QByteArray damaged("\xEF\xBB\xBF[Info]\r\nname = \"bad \xFF\xFE byte\"\r\n");
        const QString damagedPath = dir.filePath(QStringLiteral("damaged.def"));
        QVERIFY(writeAll(damagedPath, damaged));
        QSyntaxTextEditor doc;
        QVERIFY(doc.loadFile(damagedPath, 0));
        QCOMPARE(doc.firstBadLine(), 1);
        QVERIFY(doc.saveFile(damagedPath, false, false));
        QCOMPARE(readAll(damagedPath), damaged);

        // A fallback name this system knows by another name still gives a codec.
        QVERIFY(QTextEncoding::codecForIndex(15));
    }

    void failedSaveKeepsPreviousFile()
    {
        QTemporaryDir dir;
        QSyntaxTextEditor doc;
        doc.setText(QStringLiteral("[Info]\nname = new"));

        // The target is a directory: nothing is written, nothing is lost.
        const QString asDir = dir.filePath(QStringLiteral("taken.def"));
        QVERIFY(QDir().mkpath(asDir + QStringLiteral("/inner")));
        QVERIFY(!doc.saveFile(asDir, false, false));
        QVERIFY(QFileInfo(asDir + QStringLiteral("/inner")).isDir());
        QVERIFY(!doc.errorString().isEmpty());

        // The temporary file beside the target can't be made (its name is
        // too long for the file system): the previous file stays whole.
        const QString longName = dir.filePath(QString(248, QLatin1Char('n')) + QStringLiteral(".def"));
        const QByteArray previous("\xEF\xBB\xBF[Info]\r\nname = old\r\n");
        QVERIFY(writeAll(longName, previous));
        QVERIFY(!doc.saveFile(longName, false, false));
        QCOMPARE(readAll(longName), previous);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
        QVERIFY(doc.fileName().isEmpty());
    }

    void languageAndHierarchy()
    {
        QCOMPARE(QSyntaxTextEditor::detectLanguage(QStringLiteral("  \n; c\n")), int(QSyntaxTextEditor::Mugen));
        QCOMPARE(QSyntaxTextEditor::detectLanguage(QStringLiteral("[Info]")), int(QSyntaxTextEditor::Mugen));
        QCOMPARE(QSyntaxTextEditor::detectLanguage(QStringLiteral("local function f() end")), int(QSyntaxTextEditor::Lua));
        // A text that starts with the word stays plain.
        QCOMPARE(QSyntaxTextEditor::detectLanguage(QStringLiteral("function f() end")), int(QSyntaxTextEditor::PlainText));

        QSyntaxTextEditor doc;
        doc.setSyntax(QSyntaxTextEditor::Mugen);
        QSignalSpy spy(&doc, &QSyntaxTextEditor::hierarchyUpdated);
        doc.setText(QStringLiteral(
            "; header\n[Info]\nname = \"Kung Fu; Man\" ; comment\nmugenversion = 1.0\n\n"
            "[Files]\nsprite = kfm.sff\n[Data]\nlife = 1000\n[Size]\nxscale = 1\n"
            "[Statedef 200]\ntype = S\n[State 200, 1]\ntype = ChangeState\n[State 200, 2]\ntype = VarSet\n"
            "[Command]\nname = \"QCF_x\"\ncommand = ~D, DF, F, x\n[Command]\nname = \"x\"\n"
            "[Begin Action 0]\n0,0, 0,0, 10\n[Victory Quotes]\nvictory1 = \"Ha\"\n"));
        // Edits only restart the timer; the hierarchy follows on the update.
        QCOMPARE(spy.count(), 0);
        doc.updateHierarchy();
        QCOMPARE(spy.count(), 1);

        auto *h = qobject_cast<QMugenSyntaxHierarchy *>(doc.hierarchy());
        QVERIFY(h);
        QCOMPARE(h->name(), QStringLiteral("Kung Fu; Man"));
        QCOMPARE(doc.findValue(QStringLiteral("INFO"), QStringLiteral("MugenVersion")), QStringLiteral("1.0"));
        QCOMPARE(doc.findValue(QStringLiteral("files"), QStringLiteral("sprite")), QStringLiteral("kfm.sff"));
        QCOMPARE(doc.findValue(QStringLiteral("data"), QStringLiteral("life")), QStringLiteral("1000"));
        QCOMPARE(doc.findValue(QStringLiteral("files"), QStringLiteral("anim")), QString());
        QVERIFY(doc.sectionExists(QStringLiteral("files")));
        QVERIFY(!doc.sectionExists(QStringLiteral("bgdef")));

        // Top level: info, files, const, statedef, commands, anim, quotes.
        QStringList top;
        for (int r = 0; r < h->rowCount(); ++r)
            top << h->data(h->index(r, 0)).toString();
        QCOMPARE(top, (QStringList{QStringLiteral("Info"), QStringLiteral("Files"), QStringLiteral("Constants"),
                                   QStringLiteral("Statedef 200"), QStringLiteral("Commands"),
                                   QStringLiteral("Begin Action 0"), QStringLiteral("Victory Quotes")}));
        const QModelIndex statedef = h->index(3, 0);
        QCOMPARE(h->rowCount(statedef), 2);
        QCOMPARE(h->parent(h->index(1, 0, statedef)), statedef);
        const QModelIndex commands = h->index(4, 0);
        QCOMPARE(h->data(h->index(0, 0, commands)).toString(), QStringLiteral("QCF_x"));
        QCOMPARE(h->rowCount(h->index(6, 0)), 1);

        // The deepest node at a line: line 14 is inside [State 200, 1].
        const QModelIndex at = h->nodeAtLine(14);
        QCOMPARE(h->data(at).toString(), QStringLiteral("State 200, 1"));
        QVERIFY(!h->nodeAtLine(0).isValid());

        // Empty text leaves an empty outline and no name.
        doc.setText(QString());
        doc.updateHierarchy();
        QCOMPARE(h->rowCount(), 0);
        QCOMPARE(h->name(), QString());

        // Without the hierarchy an edit never reports an update.
        QSyntaxTextEditor off(false);
        off.setSyntax(QSyntaxTextEditor::Mugen);
        QSignalSpy offSpy(&off, &QSyntaxTextEditor::hierarchyUpdated);
        off.setText(QStringLiteral("[Info]"));
        off.updateHierarchy();
        QCOMPARE(offSpy.count(), 0);
    }

    // The variable view: which states set which var and fvar, and view
    // switches and rebuilds told to views as row removals and insertions.
    void variableOutline()
    {
        QMugenSyntaxHierarchy h;
        QCOMPARE(h.rowCount(), 0);
        h.update(QStringLiteral(
            "[Statedef 200]\n[State 200, a]\ntype = VarSet\ntrigger1 = 1\nv = 3\nvalue = 2\n"
            "[Statedef 200]\n[State 200, b]\ntrigger1 = Var(5) := 1 ; var(7) := 1\ntrigger2 = sysvar(1) := 1\n"
            "type = Null\ntrigger3 = var(5) := 2\n"
            "[State 200, c]\ntype = VarRangeSet\ntrigger1 = 1\nfirst = 10\nlast = 5\nvalue = 0\n"
            "[State 200, d]\ntype = VarRangeSet\ntrigger1 = 1\nfirst = 38\nfvalue = 0\n"
            "[State 200, e]\ntrigger1 = 1\nfvar(2) = 1\nvar(60) = 1\ntype = VarAdd\n"
            "[State 200, f]\ntype = ParentVarSet\ntrigger1 = 1\nfv = 39\nvalue = 1\n"));
        // Both statedefs of one number, each with its states.
        QCOMPARE(h.rowCount(), 2);
        QCOMPARE(h.data(h.index(0, 0)).toString(), QStringLiteral("Statedef 200"));
        QCOMPARE(h.data(h.index(1, 0)).toString(), QStringLiteral("Statedef 200"));
        QCOMPARE(h.rowCount(h.index(0, 0)), 1);
        QCOMPARE(h.rowCount(h.index(1, 0)), 5);
        const int pooled = h.pooledNodes();

        QSignalSpy removed(&h, &QAbstractItemModel::rowsRemoved);
        QSignalSpy inserted(&h, &QAbstractItemModel::rowsInserted);
        h.setView(QMugenSyntaxHierarchy::VariablesView);
        QCOMPARE(removed.count(), 1);
        QCOMPARE(inserted.count(), 1);
        h.setView(QMugenSyntaxHierarchy::VariablesView);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(h.rowCount(), 2);
        QCOMPARE(h.data(h.index(0, 0)).toString(), QStringLiteral("Integer"));
        const QModelIndex ints = h.index(0, 0), floats = h.index(1, 0);
        QCOMPARE(h.rowCount(ints), 60);
        QCOMPARE(h.rowCount(floats), 40);
        QCOMPARE(h.data(h.index(59, 0, ints)).toString(), QStringLiteral("59"));
        const auto users = [&h](const QModelIndex &group, int n) {
            QStringList out;
            const QModelIndex var = h.index(n, 0, group);
            for (int r = 0; r < h.rowCount(var); ++r)
                out << h.data(h.index(r, 0, var)).toString() + QLatin1Char('@')
                           + QString::number(h.lineOf(h.index(r, 0, var)));
            return out;
        };
        QCOMPARE(users(ints, 3), QStringList(QStringLiteral("State 200, a@4")));
        // Once per state, at the first assignment; comments and sysvar don't count.
        QCOMPARE(users(ints, 5), QStringList(QStringLiteral("State 200, b@8")));
        QVERIFY(users(ints, 7).isEmpty());
        QVERIFY(users(ints, 1).isEmpty());
        // first 10, last 5 is no range; ranges and named parameters reach the end of each group.
        for (int n = 5; n <= 10; ++n)
            QCOMPARE(users(ints, n).size(), n == 5 ? 1 : 0);
        QCOMPARE(users(floats, 38), QStringList(QStringLiteral("State 200, d@19")));
        QCOMPARE(users(floats, 39), (QStringList{QStringLiteral("State 200, d@19"), QStringLiteral("State 200, f@31")}));
        QCOMPARE(users(floats, 2), QStringList(QStringLiteral("State 200, e@25")));
        QCOMPARE(h.lineOf(h.index(3, 0, ints)), -1);
        QVERIFY(!h.nodeAtLine(9).isValid());

        // A rebuild reuses its nodes and shows the same view.
        removed.clear();
        h.update(QString());
        QCOMPARE(removed.count(), 1);
        QCOMPARE(h.rowCount(), 2);
        QCOMPARE(h.rowCount(h.index(3, 0, h.index(0, 0))), 0);
        QCOMPARE(h.pooledNodes(), pooled);
        h.setView(QMugenSyntaxHierarchy::SectionsView);
        QCOMPARE(h.rowCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestSyntaxTextEditor)
#include "tst_syntaxtexteditor.moc"
