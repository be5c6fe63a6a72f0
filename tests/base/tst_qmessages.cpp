#include <QtTest>

#include "base/qmessages.h"

class TestQMessages : public QObject
{
    Q_OBJECT
private slots:
    void countSurvivesClear()
    {
        QMessages m;
        m.addError(QStringLiteral("a.cns(1): bad"));
        m.addWarning(QStringLiteral("a.cns(2): odd"));
        m.addInfo(QStringLiteral("a.cns: missing"));
        QCOMPARE(m.rowCount(), 3);
        QCOMPARE(m.issueCount(), 2);
        m.clear();
        QCOMPARE(m.rowCount(), 0);
        QCOMPARE(m.issueCount(), 2);
        QVERIFY(!m.data(m.index(0), Qt::DisplayRole).isValid());
    }
};

QTEST_GUILESS_MAIN(TestQMessages)
#include "tst_qmessages.moc"
