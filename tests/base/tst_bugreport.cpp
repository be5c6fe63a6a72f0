#include <QBuffer>
#include <QDataStream>
#include <QTemporaryDir>
#include <QtTest>

#include "base/qbugreport.h"
#include "base/qlog.h"
#include "base/qmessages.h"

// Stands in for the animation store: a name and a number.
class FakeAnimations : public QBugReportSection
{
public:
    QString name;
    qint32 frames = 0;
    void writeBugReport(QDataStream &out) const override { out << name << frames; }
    bool readBugReport(QDataStream &in) override
    {
        in >> name >> frames;
        return in.status() == QDataStream::Ok;
    }
};

static QByteArray package(const QBugReport &r, const QBugReportSection *anim)
{
    QBuffer buf;
    buf.open(QIODevice::WriteOnly);
    if (!r.write(buf, anim))
        qFatal("write failed");
    return buf.data();
}

static QString readText(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QStringLiteral("<missing>");
}

class TestBugReport : public QObject
{
    Q_OBJECT
    QTemporaryDir m_dir;

private slots:
    void layout()
    {
        QBugReport r;
        r.log = QByteArray("line one\r\nline two\r\n").repeated(20);
        r.description = QStringLiteral("Crash on save");
        const QByteArray bytes = package(r, nullptr);
        const QByteArray compressed = qCompress(r.log);
        // Log field: 32-bit big-endian length plus bytes; text field: length
        // plus UTF-16; then six flag bytes and nothing else.
        const int logField = 4 + int(compressed.size());
        const int textField = 4 + 2 * 13;
        QCOMPARE(bytes.size(), logField + textField + 6);
        QCOMPARE(bytes.mid(4, compressed.size()), compressed);
        QCOMPARE(bytes.mid(logField, 4), QByteArray("\0\0\0\x1a", 4));
        QCOMPARE(bytes.right(6), QByteArray(6, '\0'));

        // Each set flag but the animations one adds a placeholder int 0.
        r.flags[QBugReport::Definitions] = true;
        r.flags[QBugReport::Sounds] = true;
        const QByteArray two = package(r, nullptr);
        QCOMPARE(two.size(), bytes.size() + 8);
        QCOMPARE(two.mid(logField + textField, 6), QByteArray("\1\0\0\0\0\1", 6));
        QCOMPARE(two.right(8), QByteArray(8, '\0'));

        // The animation flag without a store to write it is written cleared.
        r.flags = {};
        r.flags[QBugReport::Animations] = true;
        QCOMPARE(package(r, nullptr), bytes);
    }

    void roundTrip()
    {
        FakeAnimations source;
        source.name = QStringLiteral("kfm");
        source.frames = 42;
        QBugReport r;
        r.log = "started\r\nloaded kfm.def (2 issues)\r\n";
        r.description = QStringLiteral("Ünïcode and\nlines");
        r.flags = {true, false, true, false, true, true};
        const QByteArray bytes = package(r, &source);

        QBuffer in;
        in.setData(bytes);
        in.open(QIODevice::ReadOnly);
        FakeAnimations target;
        QBugReport back;
        QString error;
        QVERIFY2(back.read(in, &target, &error), qPrintable(error));
        QCOMPARE(back.log, r.log);
        QCOMPARE(back.description, r.description);
        QVERIFY(back.flags == r.flags);
        QCOMPARE(target.name, QStringLiteral("kfm"));
        QCOMPARE(target.frames, 42);
        QVERIFY(in.atEnd());

        // Without an animation store the package cannot be read past that
        // section, but what came before it is there.
        in.seek(0);
        QBugReport partial;
        QVERIFY(!partial.read(in, nullptr, &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(partial.description, r.description);

        // Through files: the log and description land beside the program.
        const QString logPath = m_dir.filePath("log.txt");
        {
            QFile f(logPath);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(r.log);
        }
        const QString target2 = m_dir.filePath("report.bfb");
        QVERIFY(QBugReport::make(target2, logPath, r.description, r.flags, &source, &error));
        const QString restoreDir = m_dir.filePath("restore");
        QVERIFY(QDir().mkpath(restoreDir));
        {
            QFile old(restoreDir + "/bug_descr.txt");
            QVERIFY(old.open(QIODevice::WriteOnly));
            old.write("an older description that is much longer than the new one");
        }
        FakeAnimations restored;
        QBugReport seen;
        QVERIFY2(QBugReport::restore(target2, restoreDir, &restored, &error, &seen), qPrintable(error));
        QCOMPARE(readText(restoreDir + "/log_restore.txt"), QString::fromUtf8(r.log));
        QCOMPARE(readText(restoreDir + "/bug_descr.txt"), r.description);
        QCOMPARE(restored.frames, 42);
        QVERIFY(seen.flags == r.flags);

        // Missing log, missing package, unwritable target: a message, no file.
        QVERIFY(!QBugReport::make(target2, m_dir.filePath("nolog.txt"), "x", {}, nullptr, &error));
        QVERIFY(error.contains("nolog.txt"));
        QVERIFY(QFile::exists(target2)); // the earlier package is untouched
        QVERIFY(!QBugReport::make(m_dir.filePath("no/dir/r.bfb"), logPath, "x", {}, nullptr, &error));
        QVERIFY(!QBugReport::restore(m_dir.filePath("none.bfb"), restoreDir, nullptr, &error));
        QCOMPARE(QBugReport::fileFilter(), QStringLiteral("Brawlforge Bug Report (*.bfb)"));
    }

    void damagedPackages()
    {
        FakeAnimations anim;
        anim.name = QStringLiteral("x");
        QBugReport r;
        r.log = "log";
        r.description = QStringLiteral("text");
        r.flags = {true, true, true, true, true, true};
        const QByteArray bytes = package(r, &anim);

        // Every truncation is refused.
        for (int n = 0; n < bytes.size(); ++n) {
            QBuffer in;
            in.setData(bytes.left(n));
            in.open(QIODevice::ReadOnly);
            QBugReport back;
            FakeAnimations target;
            QString error;
            QVERIFY2(!back.read(in, &target, &error), qPrintable(QString::number(n)));
            QVERIFY(!error.isEmpty());
        }

        // Flipped bytes never crash; lengths that claim gigabytes end the read.
        for (int n = 0; n < bytes.size(); ++n) {
            QByteArray bad = bytes;
            bad[n] = char(bad[n] ^ 0xFF);
            QBuffer in;
            in.setData(bad);
            in.open(QIODevice::ReadOnly);
            QBugReport back;
            FakeAnimations target;
            back.read(in, &target);
        }

        // A damaged compressed log reads as empty.
        QByteArray junk("\0\0\0\x10garbage-garbage", 19);
        QCOMPARE(QBugReport::uncompressLog(junk), QByteArray());
        QCOMPARE(QBugReport::uncompressLog(QByteArray("\x7f\xff\xff\xff\x78\x9c", 6)), QByteArray());
        QCOMPARE(QBugReport::uncompressLog(QByteArray("ab")), QByteArray());
        QCOMPARE(QBugReport::uncompressLog(qCompress("fine")), QByteArray("fine"));
        QBuffer buf;
        buf.open(QIODevice::WriteOnly);
        {
            QDataStream out(&buf);
            out << junk << QStringLiteral("still here");
            for (int i = 0; i < 6; ++i)
                out << false;
        }
        buf.close();
        buf.open(QIODevice::ReadOnly);
        QBugReport back;
        QVERIFY(back.read(buf, nullptr));
        QVERIFY(back.log.isEmpty());
        QCOMPARE(back.description, QStringLiteral("still here"));
    }

    void processLog()
    {
        const QString path = m_dir.filePath("proc/log.txt");
        QVERIFY(QDir().mkpath(m_dir.filePath("proc")));
        QLog log(path, 4096);
        log.append(QStringLiteral("started"));
        log.append(QStringLiteral("two\nlines"));
        QMessages issues;
        issues.addError(QStringLiteral("kfm.cns(3): unknown trigger"));
        issues.addInfo(QStringLiteral("loaded"));
        log.appendMessages(QStringLiteral("Open project - kfm.def"), issues);
        QString text = readText(path);
        QVERIFY(text.contains(QStringLiteral(" started\r\n")));
        QVERIFY(text.contains(QStringLiteral("two | lines\r\n")));
        QVERIFY(text.contains(QStringLiteral("Open project - kfm.def (1 issues)\r\n")));
        QVERIFY(text.contains(QStringLiteral("    error: kfm.cns(3): unknown trigger\r\n")));
        QVERIFY(text.contains(QStringLiteral("    info: loaded\r\n")));

        // Bounded: the oldest lines go, the newest stay, whole lines only.
        for (int i = 0; i < 400; ++i)
            log.append(QStringLiteral("event %1").arg(i));
        text = readText(path);
        QVERIFY(QFileInfo(path).size() <= 4096);
        QVERIFY(text.contains(QStringLiteral("event 399\r\n")));
        QVERIFY(!text.contains(QStringLiteral(" started\r\n")));
        QVERIFY(text.startsWith(QStringLiteral("[older lines dropped]\r\n")) || text.startsWith("20"));

        // Library warnings are logged too, once.
        log.installMessageHandler();
        qWarning("a library warning");
        QVERIFY(readText(path).contains(QStringLiteral("[qt warning] a library warning")));

        log.setEnabled(false);
        log.append(QStringLiteral("not written"));
        QVERIFY(!readText(path).contains(QStringLiteral("not written")));

        // No folder to write into: nothing happens.
        QLog nowhere(m_dir.filePath("missing/dir/log.txt"));
        nowhere.append(QStringLiteral("lost"));
        QVERIFY(!QFile::exists(nowhere.path()));
    }
};

QTEST_GUILESS_MAIN(TestBugReport)
#include "tst_bugreport.moc"
