// The animation store: what the AIR reader makes of real and damaged text, the
// writer's exact bytes, text edits, the clipboard, the bug-report image, the
// record pools, and the project's animation slot for characters and for the
// actions inside a stage's DEF.
#include <QtTest>

#include "animations/airformat.h"
#include "animations/qanimationparser.h"
#include "animations/qanimations.h"
#include "base/qbugreport.h"
#include "base/qmessages.h"
#include "project/qanimationsfile.h"
#include "project/qproject.h"
#include "testsupport.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextDocument>

namespace {

using TestSupport::readAll;
using TestSupport::writeAll;

// "kind text" lines of the errors and warnings, in order.
QStringList issues(const QMessages &messages)
{
    QStringList out;
    for (const QMessages::Message &m : messages.messages()) {
        if (m.kind != QMessages::Information)
            out << (m.kind == QMessages::Error ? QStringLiteral("E ") : QStringLiteral("W ")) + m.text;
    }
    return out;
}

// A store read from AIR text, with its messages.
struct Air
{
    QMessages messages;
    QAnimations store;
    explicit Air(const QString &text)
    {
        store.setMessages(&messages);
        store.loadText(text, QStringLiteral("t.air"), false);
    }
    QString line(int anim, int frame) const { return AirFormat::frameLine(store.frame(anim, frame)); }
    QList<QRect> boxes(int anim, int frame, int kind) const { return store.clsnInForce(anim, frame, kind); }
};

QRect box(int x1, int y1, int x2, int y2)
{
    return QRect(QPoint(x1, y1), QPoint(x2, y2));
}

bool sameActions(const QAnimations &a, const QAnimations &b)
{
    if (a.count() != b.count())
        return false;
    for (int i = 0; i < a.count(); ++i) {
        if (!a.action(i)->sameContent(*b.action(i)))
            return false;
    }
    return true;
}

} // namespace

class TestAnimations : public QObject
{
    Q_OBJECT

private slots:
    void frameLinesAndNames()
    {
        // The writer's own lines read back to themselves.
        const QStringList golden{"0,0, 0,0, 10", "5,1, -3,0, 6, H", "5,1, 0,0, -1, , AS128D128",
                                 "5,1, 0,0, 4, , , 2,2 , 45", "5,1, 0,0, 4, , , , , 45"};
        for (const QString &g : golden) {
            Air air(QStringLiteral("[Begin Action 1]\n") + g + QLatin1Char('\n'));
            QCOMPARE(air.line(0, 0), g);
            QVERIFY(air.messages.messages().isEmpty());
        }

        // What authors write, and the writer's form of it.
        const QList<QPair<QString, QString>> written{
            {"5,1, 0,0, 4, , as5d128", "5,1, 0,0, 4, , AS5D128"},
            {"5,1, 0,0, 4, , a1", "5,1, 0,0, 4, , A1"},
            {"5,1, 0,0, 4, , AS256D256", "5,1, 0,0, 4, , A"},
            {"5,1, 0,0, 4, hv, s", "5,1, 0,0, 4, VH, S"},
            {"5,1, 0,0, 4, vh", "5,1, 0,0, 4, VH"},
            {"5,1, 0,0, 4,, S", "5,1, 0,0, 4, , S"},
            {"15,4, 0,0, 5, ,A, 1.5,2", "15,4, 0,0, 5, , A, 1.5,2"},
            {"5,1, 0,0, 4, , , .5", "5,1, 0,0, 4, , , 0.5"},
            // Never an exponent, which no reader takes for one number.
            {"5,1, 0,0, 4, , , 0.0000001,1234567", "5,1, 0,0, 4, , , 0.0000001,1234570"},
        };
        for (const auto &[in, out] : written) {
            Air air(QStringLiteral("[Begin Action 1]\n") + in + QLatin1Char('\n'));
            QCOMPARE(air.line(0, 0), out);
        }
        Air flips(QStringLiteral("[Begin Action 1]\n5,1, 0,0, 4,, S\n"));
        QCOMPARE(flips.store.frame(0, 0).flip, quint8(0));
        // Only 1 to 3 digits make an alpha value.
        Air tooLong(QStringLiteral("[Begin Action 1]\n5,1, 0,0, 4, , AS1000D0\n"));
        QCOMPARE(tooLong.line(0, 0), QStringLiteral("5,1, 0,0, 4"));
        QCOMPARE(issues(tooLong.messages), QStringList{"W t.air(2): Invalid transparency 'AS1000D0'"});
        // A transparency the parser never makes is lost in the text.
        AnimFrameData odd = flips.store.frame(0, 0);
        odd.trans = 3;
        QCOMPARE(AirFormat::frameLine(odd), QStringLiteral("5,1, 0,0, 4, "));

        // Names: the comment right above the header, never a ruler, never
        // across a blank line or from the end of a line of code.
        const QList<QPair<QString, QString>> names{
            {"; Walk\n[Begin Action 7]\n", "Walk"},
            {"; Walk\n\n[Begin Action 7]\n", ""},
            {";------\n[Begin Action 7]\n", ""},
            {";-- Walk --\n[Begin Action 7]\n", "-- Walk --"},
            {";-----------\n;  Run \n; more words\n[Begin Action 7]\n", "Run"},
            {"[Begin Action 6]\n0,0, 0,0, 1 ; step\n[Begin Action 7]\n", ""},
            {"[Begin Action 6]\n; first step\n0,0, 0,0, 1\n; Jump\n[Begin Action 7]\n", "Jump"},
        };
        for (const auto &[text, name] : names) {
            Air air(text);
            QCOMPARE(air.store.action(air.store.count() - 1)->name, name);
        }
        // An empty name is written as "; " alone, and reads back empty.
        Air unnamed(QStringLiteral("[Begin Action 3]\n0,0, 0,0, 1\n"));
        QCOMPARE(unnamed.store.actionText(0), QStringLiteral("; \r\n[Begin Action 3]\r\n0,0, 0,0, 1\r\n"));
        Air back(unnamed.store.actionText(0));
        QCOMPARE(back.store.action(0)->name, QString());
    }

    void messagesCarryTheirLines()
    {
        Air air(QStringLiteral("[Begin Action 1]\n"              // 1
                               "0,0, 0,0, 10, X\n"               // 2
                               "0,0, 0,0, 10, , Q\n"             // 3
                               "Interpolate Spin\n"              // 4
                               "Wobble = 2\n"                    // 5
                               "0,0, 0,0, 10 7\n"                // 6
                               "0,0, 0,0, 10, , , 1,1, 0, 9\n"   // 7
                               "\n; comment\n"                   // 8, 9
                               "0,0, 0,0\n"                      // 10
                               "0,0, 2.5,99999999999, 1\n"       // 11
                               "Clsn2: 3\n"                      // 12
                               " Clsn2[0] = 1,2,3\n"             // 13
                               "0,0, 0,0, 1\n"                   // 14
                               "[Begin Action 1]\n"              // 15
                               "[Begin Action]\n"                // 16
                               "[Begin Fun 3]\n"                 // 17
                               "Loopstart\n"));                  // 18
        QCOMPARE(issues(air.messages),
                 QStringList({"W t.air(2): Invalid flip type 'X'",
                              "W t.air(3): Invalid transparency 'Q'",
                              "W t.air(4): Invalid interpolation type 'Spin'",
                              "W t.air(5): Unknown identifier 'Wobble'",
                              "E t.air(6): Unexpected token '7'",
                              "E t.air(7): Unexpected token '9' - code ends before line",
                              "W t.air(10): The line has no time",
                              "W t.air(11): '2.5' is not a whole number: 2 is used",
                              "W t.air(11): Number out of range '99999999999'",
                              "W t.air(13): The line has no y2",
                              "W t.air(12): The block announces 3 boxes but holds 1",
                              "W t.air(15): Action 1 is already defined at line 1; only one of them can play",
                              "W t.air(15): Action 1 has no frames",
                              "E t.air(16): Unexpected token ']'",
                              "W t.air(16): Action 0 has no frames",
                              "E t.air(17): Unexpected token 'Fun'",
                              "W t.air(18): No frame follows: the lines up to the next action have no effect",
                              "W t.air(17): Action 3 has no frames"}));
        // The damaged lines still gave their frames, with defaults where unreadable.
        QCOMPARE(air.store.frameCount(0), 7);
        QCOMPARE(air.line(0, 4), QStringLiteral("0,0, 0,0, 0"));
        QCOMPARE(air.line(0, 5), QStringLiteral("0,0, 2,0, 1"));
        QCOMPARE(air.boxes(0, 6, 1), QList<QRect>{box(1, 2, 3, -1)});
        // Text lines (from 0) of a frame's parts, for the text view.
        const AnimFrame *f = air.store.action(0)->frames.at(6);
        QCOMPARE(f->lines[AnimFrame::FirstLine], 11);
        QCOMPARE(f->lines[AnimFrame::ClsnHeadLine + AnimFrame::Clsn2], 11);
        QCOMPARE(f->lines[AnimFrame::ClsnEndLine + AnimFrame::Clsn2], 12);
        QCOMPARE(f->lines[AnimFrame::DataLine], 13);
        QCOMPARE(air.store.action(0)->frames.at(2)->lines[AnimFrame::InterpAngleLine], -1);
    }

    void realFilesReadAsTheEngineDoes()
    {
        const QString text = QStringLiteral(
            "; Fast palm\r\n"
            "[Begin Action 1020]\r\n"
            "Clsn2Default: 1\r\n"
            " Clsn2[0] = -10, 0, 10,-79\r\n"
            "0,0, 0,0, 1\r\n"
            "Clsn1: 1\r\n"
            " Clsn2[0] =  66,-66,  9,-44 ; the engine keeps it a Clsn1 box\r\n"
            "0,1, 0,0, 1\r\n"
            "Clsn2: 1\r\n"
            " Clsn2[0] = 1,2,3,4\r\n"
            "0,2, 0,0, 1\r\n"
            "0,3, 0,0, 1\r\n"
            "CLSN2DEFAULT : 1\r\n"
            "  clsn2 [ 0 ] = 5 , 6 , 7 , 8 ,\r\n"
            "0,4, 0,0, 1,\r\n"
            "Clsn2: 0\r\n"
            "0,5, 0,0, 1 ; no box here\r\n"
            "   LoopStart\r\n"
            "0,6,0,0,2,,,,,\r\n"
            "\r\n"
            "[begin  action 1020]\r\n"
            "0,0, 0,0, -1\r\n"
            "[Begin Action 1021]\r\n"
            "0,0, 0,0, 1\r\n");
        Air air(text);
        QCOMPARE(issues(air.messages),
                 QStringList{"W t.air(21): Action 1020 is already defined at line 2; only one of them can play"});
        QCOMPARE(air.store.count(), 3); // both 1020 are kept
        const QList<QRect> first{box(-10, 0, 10, -79)};
        const QList<QRect> second{box(5, 6, 7, 8)};
        QCOMPARE(air.boxes(0, 0, 1), first);
        QCOMPARE(air.boxes(0, 1, 0), QList<QRect>{box(66, -66, 9, -44)}); // corners as written
        QCOMPARE(air.boxes(0, 1, 1), first);
        QCOMPARE(air.boxes(0, 2, 1), QList<QRect>{box(1, 2, 3, 4)});  // its own block, this frame only
        QCOMPARE(air.boxes(0, 3, 1), first);
        QCOMPARE(air.boxes(0, 4, 1), second);                          // the next default takes over
        QCOMPARE(air.boxes(0, 4, 0), QList<QRect>());
        QCOMPARE(air.boxes(0, 5, 1), QList<QRect>());                  // "Clsn2: 0": none of its own
        QCOMPARE(air.boxes(0, 6, 1), second);
        QVERIFY(air.store.frame(0, 6).loopstart);
        QCOMPARE(air.boxes(2, 0, 1), QList<QRect>());                  // defaults end with their action

        // Saved and read again, nothing of it changes; saved twice, the same bytes.
        QTemporaryDir dir;
        const QString once = dir.filePath(QStringLiteral("once.air"));
        const QString twice = dir.filePath(QStringLiteral("twice.air"));
        QVERIFY(QAnimationsFile::save(air.store, once, false, true));
        QAnimations reread;
        QVERIFY(QAnimationsFile::load(reread, once));
        QVERIFY(sameActions(air.store, reread));
        QVERIFY(QAnimationsFile::save(reread, twice));
        QCOMPARE(readAll(twice), readAll(once));
        QVERIFY(readAll(once).contains("Clsn2:0\r\n0,5, 0,0, 1\r\nLoopstart\r\n0,6, 0,0, 2\r\n"));
    }

    void savedBytesAndSafeSaves()
    {
        Air air(QStringLiteral("; Walk\n[Begin Action 7]\nClsn2Default: 1\n Clsn2[0] = -10, 0, 10,-79\n"
                               "Interpolate Angle\nInterpolate offset\n0,0, 0,0, 10\n[Begin Action 8]\n5,1, -3,0, 6, H\n"));
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("walk.air"));
        QSignalSpy changed(&air.store, &QAnimations::changed);
        air.store.setAction(1, QString(), 8);
        QVERIFY(air.store.isModified());

        // A copy changes nothing in the store.
        QVERIFY(QAnimationsFile::save(air.store, path, false, true));
        QVERIFY(air.store.isModified());
        QCOMPARE(air.store.path(), QString());
        const QByteArray expected = "\xEF\xBB\xBF"
                                    ";--------------------------------------------------------------------------;\r\n"
                                    ";----------------------  Made in  Brawlforge 3  ----------------------;\r\n"
                                    ";-----------------  https://brawlforge.orvane.org/  ------------------;\r\n"
                                    ";--------------------------------------------------------------------------;\r\n"
                                    "\r\n"
                                    "; Walk\r\n"
                                    "[Begin Action 7]\r\n"
                                    "Interpolate Offset\r\n"
                                    "Interpolate Angle\r\n"
                                    "Clsn2Default:1\r\n"
                                    "  Clsn2[0] = -10, 0, 10, -79\r\n"
                                    "0,0, 0,0, 10\r\n"
                                    "\r\n"
                                    "\r\n"
                                    "; \r\n"
                                    "[Begin Action 8]\r\n"
                                    "5,1, -3,0, 6, H\r\n"
                                    "\r\n";
        QCOMPARE(readAll(path), expected);

        // A failed save leaves the store as it was.
        QString error;
        QVERIFY(!QAnimationsFile::save(air.store, dir.filePath(QStringLiteral("missing/walk.air")), false, false, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(air.store.isModified());
        QCOMPARE(air.store.path(), QString());

        // A real save clears the flag and takes the name; saveCurrent needs a file.
        QVERIFY(QAnimationsFile::save(air.store, path));
        QVERIFY(!air.store.isModified());
        QCOMPARE(air.store.fileName(), QStringLiteral("walk.air"));
        QCOMPARE(readAll(path), expected);
        QVERIFY(QAnimationsFile::saveCurrent(air.store));
        QFile::remove(path);
        QVERIFY(!QAnimationsFile::saveCurrent(air.store));
        QVERIFY(!QFileInfo::exists(path));
        QVERIFY(changed.count() >= 2);
    }

    void editsTextAndClipboard()
    {
        Air air(QStringLiteral("; Stand\n[Begin Action 5]\n0,0, 0,0, 10\n[Begin Action 2]\n2,0, 0,0, 3\n"));
        QAnimations &s = air.store;
        QSignalSpy changed(&s, &QAnimations::changed);
        s.add();
        QCOMPARE(s.action(2)->number, 2);
        QCOMPARE(AirFormat::frameLine(s.frame(2, 0)), QStringLiteral("-1,0, 0,0, 10"));
        s.duplicate(0, 99);
        QCOMPARE(s.action(1)->number, 99);
        QVERIFY(s.action(1)->sameContent(*s.action(0)) == false && s.frameCount(1) == 1);
        s.autoOrganize();
        QList<int> numbers;
        for (int i = 0; i < s.count(); ++i)
            numbers << s.action(i)->number;
        QCOMPARE(numbers, (QList<int>{2, 2, 5, 99}));
        QCOMPARE(s.data(s.index(2)).toString(), QStringLiteral("5 - Stand"));
        s.insertFrame(2, 0);
        s.setFrame(2, 0, AnimFrameData{true, 7, 1, 2, 3, 4, AnimFrame::FlipH, 0, 256, 256, 0, 0, 0, false, false, false, false});
        QCOMPARE(s.actionText(2), QStringLiteral("; Stand\r\n[Begin Action 5]\r\nLoopstart\r\n7,1, 2,3, 4, H\r\n0,0, 0,0, 10\r\n"));
        QVERIFY(changed.count() >= 5);
        QVERIFY(s.isModified());

        // The text view: an edited action replaces the old one at its row.
        air.messages.clear();
        QVERIFY(s.updateFromText(2, QStringLiteral("junk before\n; Run\n[Begin Action 6]\n6,0, 0,0, 2\n")));
        QCOMPARE(s.action(2)->name, QStringLiteral("Run"));
        QCOMPARE(s.action(2)->number, 6);
        QCOMPARE(air.messages.messages().first().text, QStringLiteral("Update animation 2 from text"));
        QVERIFY(s.updateFromText(2, QStringLiteral("no header at all\n")));
        QCOMPARE(s.action(2)->number, 0);
        QCOMPARE(s.frameCount(2), 0);

        // The clipboard carries the action text.
        s.copyAction(0);
        QCOMPARE(QGuiApplication::clipboard()->text(), s.actionText(0));
        QVERIFY(s.pasteAction(100));
        QVERIFY(s.action(s.count() - 1)->sameContent(*s.action(0)));
        QGuiApplication::clipboard()->clear();
        QVERIFY(!s.pasteAction(0));

        // Pasted boxes: each box line reports itself and is stored all the same.
        air.messages.clear();
        QVERIFY(s.addClsnFromText(0, 0, QStringLiteral("Clsn2: 1\r\n  Clsn2[0] = 1, 2, 3, 4\r\nClsn1Default: 1\r\n"
                                                        "  Clsn2[0] = 5, 6, 7, 8\r\nLoopstart\r\n")));
        QCOMPARE(*s.clsnList(0, 0, AnimFrame::Clsn2), QList<QRect>{box(1, 2, 3, 4)});
        QCOMPARE(*s.clsnList(0, 0, AnimFrame::Clsn1Default), QList<QRect>{box(5, 6, 7, 8)});
        QCOMPARE(air.messages.messages().first().text, QStringLiteral("Add CLSNs to the animation 0, frame 0 from text"));
        QCOMPARE(issues(air.messages), (QStringList{"E t.air(2): Unexpected token 'Clsn2'",
                                                     "W t.air(5): Invalid flip type 'Loopstart'"}));
        QVERIFY(!s.addClsnFromText(0, 9, QStringLiteral("Clsn2: 0")));

        // Text updates take their records back from the pool.
        s.updateFromText(1, s.actionText(0));
        const AnimPool::Counts before = AnimPool::counts();
        for (int i = 0; i < 200; ++i)
            s.updateFromText(1, s.actionText(0));
        QCOMPARE(AnimPool::counts().framesMade, before.framesMade);
        QCOMPARE(AnimPool::counts().actionsMade, before.actionsMade);
        s.remove(1);
        s.clearFrames(0);
        QCOMPARE(s.frameCount(0), 0);
    }

    void bugReportImage()
    {
        Air air(QStringLiteral("; Hit\n[Begin Action 5000]\nClsn1: 1\n Clsn1[0] = 1,2,3,4\nInterpolate Blend\n"
                               "5000,0, 1,2, 3, V, AS64D192, 1.5, 2, 30\n"));
        QByteArray image;
        air.store.writeStream(&image);
        QAnimations copy;
        QVERIFY(copy.readStream(image));
        QVERIFY(sameActions(air.store, copy));
        QCOMPARE(copy.action(0)->frames.at(0)->lines[AnimFrame::DataLine], 5);
        // A damaged image leaves the store as it was.
        QVERIFY(!copy.readStream(image.left(image.size() - 3)));
        QVERIFY(sameActions(air.store, copy));
        QDataStream claims(&image, QIODevice::WriteOnly);
        claims << QByteArray() << qint32(0x7FFFFFFF);
        QVERIFY(!copy.readStream(image.left(8)));

        // In a package, the store writes and reads its own section.
        QBugReport report;
        report.log = "log";
        report.flags[QBugReport::Animations] = true;
        QBuffer buffer;
        buffer.open(QIODevice::ReadWrite);
        QVERIFY(report.write(buffer, &air.store));
        buffer.seek(0);
        QBugReport back;
        QAnimations restored;
        QVERIFY(back.read(buffer, &restored));
        QVERIFY(sameActions(air.store, restored));
    }

    void badInputStaysBounded()
    {
        // Numbers past every range, a count that claims millions, thousands of
        // boxes, NULs and noise: messages, capped, and memory by the text.
        QString text = QStringLiteral("[Begin Action 99999999999999999999]\n") + QString(5000, QLatin1Char('9'))
                       + QStringLiteral(",1, 0,0, 10\nClsn2: 99999999\n");
        for (int i = 0; i < 5000; ++i)
            text += QStringLiteral(" Clsn2[%1] = %1, 0, 5, 5\n").arg(i);
        text += QStringLiteral("0,0, 0,0, 1\n") + QChar(0) + QStringLiteral("\x01\x02[[[]]]\n");
        for (int i = 0; i < 500; ++i)
            text += QStringLiteral("0,0, 0,0, 1, Z\n");
        Air air(text);
        QCOMPARE(air.store.count(), 1);
        QCOMPARE(air.store.frameCount(0), 503);
        QCOMPARE(air.boxes(0, 1, 1).size(), 5000);
        const QStringList found = issues(air.messages);
        QCOMPARE(found.size(), QAnimationParser::MaxIssues + 1);
        QCOMPARE(found.at(0), QStringLiteral("W t.air(5005): The text holds NUL characters: they are read as blanks"));
        QCOMPARE(found.at(1), QStringLiteral("W t.air(1): Number out of range '99999999999999999999'"));
        QVERIFY(found.at(2).startsWith(QStringLiteral("W t.air(2): Number out of range '999")));
        QCOMPARE(found.at(3), QStringLiteral("W t.air(3): Number out of range '99999999'"));
        QCOMPARE(found.at(4), QStringLiteral("E t.air(5005): Unexpected token '\x02'"));
        QCOMPARE(found.last(), QStringLiteral("W t.air(5096): Further issues in this text are not listed"));
    }

    void projectSlots()
    {
        QTemporaryDir dir;
        // A character: its own AIR, read and written by the project.
        const QString def = dir.filePath(QStringLiteral("hero.def"));
        const QString air = dir.filePath(QStringLiteral("hero.air"));
        QVERIFY(writeAll(def, "[Info]\r\nname = \"Hero\"\r\n[Files]\r\nanim = hero.air\r\n"));
        QVERIFY(writeAll(air, "; Stand\r\n[Begin Action 0]\r\n0,0, 0,0, -1\r\n"));
        QProject hero;
        QVERIFY(hero.fromFile(def, 0, false, false));
        QCOMPARE(hero.animations()->count(), 1);
        QCOMPARE(hero.animations()->path(), air);
        QList<QProjectFile> checked;
        connect(&hero, &QProject::canSave, this, [&](QProject *, QProjectFile kind, quint32) {
            checked << kind;
            return true;
        });
        QTemporaryDir run;
        QVERIFY(hero.toTemporary(run.path(), QStringLiteral("bf3_hero")));
        QVERIFY(readAll(run.filePath(QStringLiteral("hero.air"))).contains("[Begin Action 0]\r\n0,0, 0,0, -1\r\n"));
        QVERIFY(hero.toFile()); // unchanged: nothing written
        QCOMPARE(readAll(air), QByteArray("; Stand\r\n[Begin Action 0]\r\n0,0, 0,0, -1\r\n"));
        hero.animations()->add();
        QVERIFY(hero.toFile());
        QCOMPARE(checked, QList<QProjectFile>{QProjectFile::Animations});
        QVERIFY(!hero.animations()->isModified());
        QAnimations saved;
        QVERIFY(QAnimationsFile::load(saved, air));
        QVERIFY(sameActions(saved, *hero.animations()));

        // A stage: the actions live in its DEF and stay in step with it.
        const QString stage = dir.filePath(QStringLiteral("stage.def"));
        QVERIFY(writeAll(stage, "[BGdef]\r\nspr = stage.sff\r\n\r\n;Sky\r\n[Begin Action 10]\r\n10,0, 0,0, 8\r\n"
                                "\r\n[BG sky]\r\ntype = anim\r\nactionno = 10\r\n\r\n[Begin Action 11]\r\n11,0, 0,0, -1\r\n"));
        QProject p;
        QVERIFY(p.fromFile(stage, 0, false, false));
        QCOMPARE(p.type(), QProjectType::Stage);
        QAnimations *s = p.animations();
        QCOMPARE(s->count(), 2);
        QCOMPARE(s->action(0)->name, QStringLiteral("Sky"));
        QVERIFY(!p.definitions()->isModified());
        // A store edit becomes a text edit of the DEF, touching that action only.
        AnimFrameData f = s->frame(1, 0);
        f.time = 20;
        s->setFrame(1, 0, f);
        s->add();
        QCOMPARE(p.definitions()->text(),
                 QStringLiteral("[BGdef]\nspr = stage.sff\n\n;Sky\n[Begin Action 10]\n10,0, 0,0, 8\n\n[BG sky]\n"
                                "type = anim\nactionno = 10\n\n; \n[Begin Action 11]\n11,0, 0,0, 20\n\n; \n"
                                "[Begin Action 2]\n-1,0, 0,0, 10\n"));
        QVERIFY(p.definitions()->isModified());
        QVERIFY(p.toFile());
        QVERIFY(readAll(stage).startsWith("\xEF\xBB\xBF[BGdef]\r\n"));
        QVERIFY(readAll(stage).endsWith("\r\n[Begin Action 2]\r\n-1,0, 0,0, 10\r\n"));
        // A text edit of the DEF reloads the store.
        p.definitions()->document()->undo();
        p.definitions()->document()->undo();
        p.definitions()->updateHierarchy();
        QCOMPARE(s->count(), 2);
        QCOMPARE(s->frameLength(1, 0), -1);
        QVERIFY(!s->isModified());
    }
};

QTEST_MAIN(TestAnimations)
#include "tst_animations.moc"
