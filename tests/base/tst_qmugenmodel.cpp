#include <QtTest>

#include "base/qmugenmodel.h"
#include "base/qxmlhelper.h"
#include "testsupport.h"

#include <QDomDocument>
#include <QSignalSpy>
#include <QTemporaryDir>

// The configuration store's behaviour of record: old files must keep loading
// the way they always did, quirks included.
class TestQMugenModel : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QStringList m_xmlFailures;

    QString write(const QString &name, const QByteArray &body)
    {
        return TestSupport::writeAll(m_dir.filePath(name), body) ? m_dir.filePath(name) : QString();
    }
    static QByteArray configDoc(const QByteArray &entries)
    {
        return "<!DOCTYPE ORVConfigML>\n<configuration>\n" + entries + "</configuration>\n";
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QXmlHelper::setFailureHandler([this](const QString &m) { m_xmlFailures << m; });
    }
    void init() { m_xmlFailures.clear(); }

    void defaultsAndValueConversions()
    {
        QMugenModel m;

        // Values from a file are strings; "true" and "1" both read as true,
        // a missing value as false/0/empty, and unknown keys survive.
        const QString path = write("conv.xml", configDoc(
            "<config name=\"confirm_close\" value=\"1\"/>\n"
            "<config name=\"use_opengl\" value=\"true\"/>\n"
            "<config name=\"show_rulers\"/>\n"
            "<config name=\"zoom_level\" value=\"5\"/>\n"
            "<other name=\"preset\" value=\"Skipped\"/>\n"
            "<config name=\"my_own\" value=\"x\"/>\n"));
        QVERIFY(m.load(path));
        QCOMPARE(m.map.value("confirm_close").toBool(), true);
        QCOMPARE(m.map.value("use_opengl").toBool(), true);
        QCOMPARE(m.map.value("show_rulers").toString(), QString());
        QCOMPARE(m.map.value("show_rulers").toBool(), false);
        QCOMPARE(m.map.value("show_rulers").toInt(), 0);
        QCOMPARE(m.map.value("zoom_level").toInt(), 5);
        QCOMPARE(m.map.value("preset").toString(), QStringLiteral("Classic"));
        QCOMPARE(m.map.value("my_own").toString(), QStringLiteral("x"));

        // The typed reads take strings from a file and values set in code
        // alike; one rule decides what a switch is.
        for (const char *on : {"true", "TRUE", "1", "yes", " on "})
            QVERIFY2(QMugenModel::toFlag(QString::fromLatin1(on)), on);
        for (const char *off : {"false", "0", "no", "off"})
            QVERIFY2(!QMugenModel::toFlag(QString::fromLatin1(off), true), off);
        QVERIFY(QMugenModel::toFlag(QString(), true) && QMugenModel::toFlag(QStringLiteral("maybe"), true));
        QVERIFY(QMugenModel::toFlag(true) && !QMugenModel::toFlag(false, true));
        QVERIFY(m.flag("use_opengl") && !m.flag("show_rulers") && m.flag("missing_key", true));
        QCOMPARE(m.number("zoom_level"), 5);
        QCOMPARE(m.number("show_rulers", 7), 7);
        QCOMPARE(m.text("preset"), QStringLiteral("Classic"));
        QVERIFY(!m.map.contains("missing_key")); // a typed read creates nothing

        // A load resets what the file doesn't name, and forgets keys without a default.
        m.map["zoom_level"] = 9;
        m.map["scratch"] = 1;
        const QString other = write("other.xml", configDoc("<config name=\"font_size\" value=\"12\"/>\n"));
        QVERIFY(m.load(other));
        QCOMPARE(m.map.value("zoom_level").toInt(), 2);
        QVERIFY(!m.map.contains("scratch"));
        QVERIFY(!m.map.contains("my_own"));
        QVERIFY(m_xmlFailures.isEmpty());
    }

    void engineSlots()
    {
        // A gap: only slot 3 gives one row; slot 50 never makes a row.
        const QString path = TestSupport::fixturesDir() + "/config/gap.xml";
        QMugenModel m;
        QSignalSpy inserted(&m, &QAbstractItemModel::rowsInserted);
        QVERIFY(m.load(path));
        QCOMPARE(m.rowCount(), 2);
        QCOMPARE(inserted.count(), 2);
        QCOMPARE(m.data(m.index(0)).toString(), QStringLiteral("Three"));
        QCOMPARE(m.engines.at(0).exe, QStringLiteral("/opt/m/mugen"));
        QCOMPARE(m.engines.at(0).params, QStringLiteral("-p1 %1"));
        QCOMPARE(m.data(m.index(1)).toString(), QStringLiteral("Last"));
        QVERIFY(!m.data(m.index(2)).isValid());
        QVERIFY(!m.data(m.index(0), Qt::EditRole).isValid());
        QVERIFY(m.map.contains("mugen_50_name"));

        // Saved back as slots 0 and 1, while the old slot-3, -49 and -50 keys
        // stay, so the next start shows four rows.
        const QString saved = m_dir.filePath("gap-saved.xml");
        QVERIFY(m.save(saved));
        QMugenModel next;
        QVERIFY(next.load(saved));
        QCOMPARE(next.rowCount(), 4);
        QCOMPARE(next.engines.at(0).name, QStringLiteral("Three"));
        QCOMPARE(next.engines.at(1).name, QStringLiteral("Last"));
        QCOMPARE(next.engines.at(2).name, QStringLiteral("Three"));
        QCOMPARE(next.engines.at(3).name, QStringLiteral("Last"));
        QCOMPARE(next.map.value("mugen_50_name").toString(), QStringLiteral("Fifty"));

        // Two engines, the second deleted: it comes back at the next start.
        QMugenModel two;
        QVERIFY(two.insertRows(0, 2));
        two.engines[0].name = "A";
        two.engines[1].name = "B";
        const QString twoPath = m_dir.filePath("two.xml");
        QVERIFY(two.save(twoPath));
        QVERIFY(two.removeRows(1, 1));
        QCOMPARE(two.rowCount(), 1);
        QVERIFY(two.save(twoPath));
        QMugenModel again;
        QVERIFY(again.load(twoPath));
        QCOMPARE(again.rowCount(), 2);
        QCOMPARE(again.engines.at(1).name, QStringLiteral("B"));

        // A second load in the same run appends its engines to the list.
        QVERIFY(again.load(twoPath));
        QCOMPARE(again.rowCount(), 4);

        // More than 50 rows are all written, those past slot 49 are lost on reading.
        QMugenModel many;
        QVERIFY(many.insertRows(0, 55));
        for (int i = 0; i < 55; ++i)
            many.engines[i].name = QString::number(i);
        const QString manyPath = m_dir.filePath("many.xml");
        QVERIFY(many.save(manyPath));
        QMugenModel fifty;
        QVERIFY(fifty.load(manyPath));
        QCOMPARE(fifty.rowCount(), 50);
        QCOMPARE(fifty.map.value("mugen_54_name").toString(), QStringLiteral("54"));

        QVERIFY(!m.insertRows(-1, 1));
        QVERIFY(!m.removeRows(0, 99));
    }

    void fileFormatAndFailures()
    {
        // Reading an unset key creates it; it is written with an empty value.
        QMugenModel m;
        QCOMPARE(m["enable_file_watcher"].toBool(), false);
        const QString path = m_dir.filePath("config.xml");
        QVERIFY(m.save(path));
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(f.readAll());
        f.close();
        QVERIFY(text.startsWith("<!DOCTYPE ORVConfigML>\n<configuration>\n    <config "));
        // Every entry, in map order (keys ascending); unset-but-read keys with an empty value.
        QDomDocument doc;
        QVERIFY(doc.setContent(text));
        QStringList keys;
        for (QDomElement e = doc.documentElement().firstChildElement("config"); !e.isNull();
             e = e.nextSiblingElement("config")) {
            keys << e.attribute("name");
            if (keys.last() == "enable_file_watcher") {
                QVERIFY(e.hasAttribute("value"));
                QCOMPARE(e.attribute("value"), QString());
            }
            if (keys.last() == "confirm_close")
                QCOMPARE(e.attribute("value"), QStringLiteral("true"));
        }
        QCOMPARE(keys, m.map.keys());
        QVERIFY(keys.contains("enable_file_watcher"));

        // Missing file: false, defaults, no message.
        m.map["zoom_level"] = 7;
        QVERIFY(!m.load(m_dir.filePath("absent.xml")));
        QCOMPARE(m.map.value("zoom_level").toInt(), 2);
        QVERIFY(m_xmlFailures.isEmpty());

        // Malformed: false, defaults kept, one report through the helper.
        const QString bad = write("bad.xml", "<configuration><config name=\"zoom_level\" value=\"4\">");
        QVERIFY(!m.load(bad));
        QCOMPARE(m.map.value("zoom_level").toInt(), 2);
        QCOMPARE(m_xmlFailures.size(), 1);
        QVERIFY(m_xmlFailures.first().contains("bad.xml"));
        QVERIFY(!m.load(write("bin.xml", QByteArray("\x00\xff\xfe garbage", 12))));
        QCOMPARE(m_xmlFailures.size(), 2);

        // Wrong root: false, defaults, silent.
        const QString wrong = write("wrong.xml", "<shortcuts><config name=\"zoom_level\" value=\"4\"/></shortcuts>");
        QVERIFY(!m.load(wrong));
        QCOMPARE(m.map.value("zoom_level").toInt(), 2);
        QCOMPARE(m_xmlFailures.size(), 2);

        // An unwritable target fails without touching the previous file.
        QVERIFY(!m.save(m_dir.filePath("no/such/dir/config.xml")));
        QVERIFY(m.save(path));
        QVERIFY(QFile::exists(path));
    }
};

QTEST_GUILESS_MAIN(TestQMugenModel)
#include "tst_qmugenmodel.moc"
