#include "shell/savespr.h"
#include "sprites/qsffversion.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QtTest>

// The sprite-version question: it starts at the store's version, answers the
// one chosen, and 0 when cancelled.
class TestSaveSpr : public QObject
{
    Q_OBJECT

private slots:
    void choices()
    {
        for (quint32 v : QSffVersion::All) {
            SaveSpr dlg(v);
            QCOMPARE(dlg.version(), v);
        }
        // Anything else is offered as the newest, which holds every kind of sprite.
        SaveSpr dlg(0x12345678);
        QCOMPARE(dlg.version(), QSffVersion::V201);
        dlg.findChild<QRadioButton *>("mugen10")->click();
        QCOMPARE(dlg.version(), QSffVersion::V200);
    }

    void answers()
    {
        auto answer = [](bool accept) {
            QTimer::singleShot(0, [accept] {
                for (QWidget *w : QApplication::topLevelWidgets())
                    if (auto *dlg = qobject_cast<SaveSpr *>(w)) {
                        dlg->findChild<QRadioButton *>("mugen10")->setChecked(true);
                        if (accept)
                            dlg->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
                        else
                            dlg->reject();
                    }
            });
        };
        answer(false);
        QCOMPARE(SaveSpr::ask(QSffVersion::V101), 0u);
        answer(true);
        QCOMPARE(SaveSpr::ask(QSffVersion::V101), QSffVersion::V200);
    }
};

QTEST_MAIN(TestSaveSpr)
#include "tst_savespr.moc"
