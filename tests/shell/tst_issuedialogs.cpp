#include <QCheckBox>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTimer>
#include <QtTest>

#include "base/qmessages.h"
#include "shell/bugdlg.h"
#include "shell/errordlg.h"
#include "shell/qprogress.h"

// Emits progress the way stores do, and stops when told to.
class Worker : public QObject
{
    Q_OBJECT
public:
    uint done = 0;
    void run(uint total)
    {
        for (uint i = 0; i <= total; ++i) {
            bool allow = true;
            emit progress(i, total, allow);
            if (!allow)
                return;
            done = i;
        }
    }
signals:
    void progress(uint position, uint maximum, bool &allow);
};

class TestIssueDialogs : public QObject
{
    Q_OBJECT

private slots:
    void jumpPattern()
    {
        QString file;
        uint line = 99;
        QVERIFY(ErrorDlg::jumpTarget(QStringLiteral("stage.def(12): unknown parameter"), &file, &line));
        QCOMPARE(file, QStringLiteral("stage.def"));
        QCOMPARE(line, 11u);
        QVERIFY(ErrorDlg::jumpTarget(QStringLiteral("chars/kfm/kfm.cns(1)"), &file, &line));
        QCOMPARE(file, QStringLiteral("chars/kfm/kfm.cns"));
        QCOMPARE(line, 0u);
        // The load message, names without a dot, no bracketed line, line 0.
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("Open project - %1"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("Open project - kfm.def"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("states(12): bad"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("see stage.def, line 12"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("stage.def(0)"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QStringLiteral("stage.def(99999999999)"), &file, &line));
        QVERIFY(!ErrorDlg::jumpTarget(QString(), &file, &line));

        // Through the dialog: a double click emits the place, or nothing.
        QMessages issues;
        issues.addError(QStringLiteral("stage.def(12): unknown parameter"));
        issues.addInfo(QStringLiteral("Open project - %1"));
        ErrorDlg dlg;
        dlg.setModel(&issues);
        QSignalSpy jumps(&dlg, &ErrorDlg::itemClicked);
        dlg.doubleClicked(issues.index(1));
        dlg.doubleClicked(QModelIndex());
        QCOMPARE(jumps.count(), 0);
        dlg.doubleClicked(issues.index(0));
        QCOMPARE(jumps.count(), 1);
        QCOMPARE(jumps.at(0).at(0).toString(), QStringLiteral("stage.def"));
        QCOMPARE(jumps.at(0).at(1).toUInt(), 11u);

        // The view's own double click goes the same way.
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        auto *view = dlg.findChild<QListView *>(QStringLiteral("listView"));
        const QRect r = view->visualRect(issues.index(0));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, r.center());
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, r.center());
        QCOMPARE(jumps.count(), 2);

        // A new project hands over a new model.
        QMessages other;
        other.addWarning(QStringLiteral("kfm.air(3): frame without sprite"));
        dlg.setModel(&other);
        QCOMPARE(dlg.model(), &other);
        dlg.setModel(&issues);
        auto *close = dlg.findChild<QPushButton *>(QStringLiteral("closeButton"));
        QVERIFY(close);
        close->click();
        QVERIFY(!dlg.isVisible());
    }

    void bugDialog()
    {
        // Each box stands for its editor in the package, whatever the order on screen.
        BugDlg dlg;
        const QBugReport::Flags some{false, true, false, true, false, true};
        dlg.setFlags(some);
        QVERIFY(dlg.flags() == some);
        for (int editor = 0; editor < QBugReport::EditorCount; ++editor) {
            QBugReport::Flags one{};
            one[size_t(editor)] = true;
            dlg.setFlags(one);
            QVERIFY(dlg.flags() == one);
            const QList<QCheckBox *> boxes = dlg.findChildren<QCheckBox *>();
            QCOMPARE(std::count_if(boxes.begin(), boxes.end(), [](QCheckBox *b) { return b->isChecked(); }), 1);
        }
        auto *edit = dlg.findChild<QPlainTextEdit *>();
        QTest::keyClicks(edit, QStringLiteral("Crash when saving"));
        QCOMPARE(dlg.description(), QStringLiteral("Crash when saving"));
    }

    void progressWindow()
    {
        Worker worker;
        QProgress progress(QStringLiteral("Loading project..."));
        QVERIFY(progress.attach(&worker));
        QVERIFY(!progress.attach(nullptr));
        worker.run(50);
        QCOMPARE(worker.done, 50u);
        QCOMPARE(progress.maximum(), 50);
        QCOMPARE(progress.value(), 50);
        QVERIFY(progress.isVisible());

        // A click on Cancel, delivered while the work pumps events, stops it.
        Worker slow;
        QProgress p2(QStringLiteral("Saving palettes..."));
        p2.attach(&slow);
        auto *cancel = p2.findChild<QPushButton *>();
        QVERIFY(cancel);
        connect(&slow, &Worker::progress, &p2, [&](uint pos, uint, bool &) {
            if (pos == 10)
                QTimer::singleShot(0, cancel, &QPushButton::click);
            QTest::qWait(1); // let the pump see the click soon
        });
        slow.run(100000);
        QVERIFY(p2.wasCancelled());
        QVERIFY(slow.done < 100000u);

        // Totals beyond int stay in range.
        Worker big;
        QProgress p3(QStringLiteral("Big"));
        p3.attach(&big);
        bool allow = true;
        emit big.progress(4000000000u, 4000000000u, allow);
        QVERIFY(allow);
        QVERIFY(p3.value() > 0 && p3.value() == p3.maximum());
    }

    void messagesModel()
    {
        QMessages m;
        QSignalSpy inserted(&m, &QAbstractItemModel::rowsInserted);
        m.addError(QStringLiteral("a.cns(1): bad"));
        m.addWarning(QStringLiteral("a.cns(2): odd"));
        m.addInfo(QStringLiteral("loaded"));
        QCOMPARE(inserted.count(), 3);
        QCOMPARE(m.data(m.index(2), Qt::DisplayRole).toString(), QStringLiteral("loaded"));
        for (int row = 0; row < 3; ++row)
            QVERIFY(!m.data(m.index(row), Qt::DecorationRole).value<QIcon>().isNull());
        QVERIFY(!m.data(m.index(0), Qt::ToolTipRole).isValid());
        QVERIFY(!m.data(m.index(5), Qt::DisplayRole).isValid());
        QCOMPARE(m.rowCount(m.index(0)), 0);

        // Loader threads add while the main thread reads.
        QList<QThread *> threads;
        for (int t = 0; t < 4; ++t)
            threads << QThread::create([&m] {
                for (int i = 0; i < 250; ++i)
                    (i % 2 ? m.addWarning(QStringLiteral("w")) : m.addInfo(QStringLiteral("i")));
            });
        for (QThread *t : threads)
            t->start();
        for (int i = 0; i < 100; ++i)
            m.rowCount();
        for (QThread *t : threads) {
            t->wait();
            delete t;
        }
        QCOMPARE(m.rowCount(), 1003);
        QCOMPARE(m.issueCount(), 2 + 500);
        m.clear();
        QCOMPARE(m.issueCount(), 502);
    }
};

QTEST_MAIN(TestIssueDialogs)
#include "tst_issuedialogs.moc"
