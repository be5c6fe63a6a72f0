#include "shell/savespr.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QtTest>

class TestSffSaveSpr : public QObject
{
    Q_OBJECT

private slots:
    void choicesAndTexts();
    void cancelGivesZero();
};

void TestSffSaveSpr::choicesAndTexts()
{
    SaveSpr dlg(0x02000000);
    QCOMPARE(dlg.windowTitle(), QString("Format"));
    auto *bt = dlg.findChild<QRadioButton *>("mugenBT");
    auto *v10 = dlg.findChild<QRadioButton *>("mugen10");
    auto *v11 = dlg.findChild<QRadioButton *>("mugen11");
    QVERIFY(bt && v10 && v11);
    QCOMPARE(bt->text(), QString("M.U.G.E.N. Beta"));
    QCOMPARE(v10->text(), QString("M.U.G.E.N. 1.0"));
    QCOMPARE(v11->text(), QString("M.U.G.E.N. 1.1"));
    QVERIFY(v10->isChecked());
    QCOMPARE(dlg.version(), 0x02000000u);

    dlg.setVersion(0x01000100);
    QVERIFY(bt->isChecked());
    QCOMPARE(dlg.version(), 0x01000100u);
    // Unknown versions are offered as the newest one.
    dlg.setVersion(0x12345678);
    QVERIFY(v11->isChecked());
    QCOMPARE(dlg.version(), 0x02000100u);
    v10->click();
    QCOMPARE(dlg.version(), 0x02000000u);

    bool sawLabel = false;
    for (auto *label : dlg.findChildren<QLabel *>())
        sawLabel |= label->text() == "Choose the format to be saved:";
    QVERIFY(sawLabel);

    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const QImage shot = dlg.grab().toImage();
    QVERIFY(!shot.isNull());
    if (qEnvironmentVariableIsSet("BF_GRAB_DIR"))
        shot.save(qEnvironmentVariable("BF_GRAB_DIR") + "/savespr.png");
}

void TestSffSaveSpr::cancelGivesZero()
{
    QTimer::singleShot(0, [] {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *dlg = qobject_cast<SaveSpr *>(w))
                dlg->reject();
    });
    QCOMPARE(SaveSpr::ask(0x01000100), 0u);

    QTimer::singleShot(0, [] {
        for (QWidget *w : QApplication::topLevelWidgets())
            if (auto *dlg = qobject_cast<SaveSpr *>(w)) {
                dlg->findChild<QRadioButton *>("mugen10")->setChecked(true);
                dlg->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
            }
    });
    QCOMPARE(SaveSpr::ask(0x01000100), 0x02000000u);
}

QTEST_MAIN(TestSffSaveSpr)
#include "tst_savespr.moc"
