#include <QAction>
#include <QtTest>

#include "shell/qtranslationunit.h"

// Every caption id has a text; commands explain themselves, field labels
// don't; an action takes all its texts at once.
class TestTranslationUnit : public QObject
{
    Q_OBJECT

private slots:
    void everyIdHasItsTexts()
    {
        QTranslationUnit tu;
        for (int id = 0; id < QTranslationUnit::Count; ++id) {
            const QString t = tu.text(id);
            QVERIFY2(!t.isEmpty() && t == t.trimmed(), qPrintable(QString::number(id)));
            // A field label ends in a colon and has no tool tip.
            if (t.endsWith(QLatin1Char(':')))
                QVERIFY(tu.toolTip(id).isEmpty());
            // A command with a tool tip has a What's This as well.
            QVERIFY(tu.toolTip(id).isEmpty() || !tu.whatsThis(id).isEmpty());
        }
        for (int id : {-1, QTranslationUnit::Count, INT_MIN, INT_MAX})
            QVERIFY(tu.text(id).isEmpty() && tu.toolTip(id).isEmpty() && tu.whatsThis(id).isEmpty());
        // Repeated captions are told apart by their tool tips, which the action list shows.
        QCOMPARE(tu.text(65), tu.text(70));
        QVERIFY(tu.toolTip(65) != tu.toolTip(70));

        QAction a;
        tu.retranslate(&a, 5, "Ctrl+S");
        QCOMPARE(a.text(), tu.text(5) + " (Ctrl+S)");
        QCOMPARE(a.toolTip(), tu.toolTip(5));
        QCOMPARE(a.statusTip(), tu.toolTip(5));
        QCOMPARE(a.whatsThis(), tu.whatsThis(5));
        tu.retranslate(nullptr, 5);
        tu.retranslate(&a, 4000);
        QVERIFY(a.text().isEmpty());
    }
};

QTEST_MAIN(TestTranslationUnit)
#include "tst_translationunit.moc"
