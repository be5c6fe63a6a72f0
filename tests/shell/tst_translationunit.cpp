#include <QAction>
#include <QtTest>

#include "shell/qtranslationunit.h"

class TestTranslationUnit : public QObject
{
    Q_OBJECT

private slots:
    void captionsKeepTheirExactWording();
    void toolTipsAndWhatsThis();
    void retranslateFillsEveryTextOfAnAction();
};

void TestTranslationUnit::captionsKeepTheirExactWording()
{
    QTranslationUnit tu;
    // Samples across the table, including repeated words and the odd spellings
    // translators already have in their files.
    const QList<QPair<int, QString>> samples = {
        {0, "New"}, {6, "Save as..."}, {9, "Run in M.U.G.E.N"}, {17, "Find/Replace (multi-line)"},
        {42, "Open recent"}, {63, "Comment/Uncomment selection"}, {78, "Save image (aligned)..."},
        {111, "Align with the guides (center, center)"}, {134, "Previous group"}, {135, "Previous group"},
        {163, "Use these CLSNs in all other instances of this frame"}, {185, "Interpolate:"},
        {212, "Delete selected"}, {242, "Organize automatically"}, {277, "Send selectied colors to the right palette"},
        {284, "Remap pen"}, {318, "All supported"}, {319, "Discard changes"}, {325, "Run"},
    };
    for (const auto &[id, text] : samples)
        QCOMPARE(tu.text(id), text);

    int nonEmpty = 0;
    for (int id = 0; id < QTranslationUnit::Count; ++id) {
        const QString t = tu.text(id);
        QVERIFY2(!t.isEmpty(), qPrintable(QString::number(id)));
        QCOMPARE(t, t.trimmed());
        ++nonEmpty;
    }
    QCOMPARE(nonEmpty, 326);

    for (int id : {-1, -1000, 326, 100000, INT_MIN, INT_MAX}) {
        QVERIFY(tu.text(id).isEmpty());
        QVERIFY(tu.toolTip(id).isEmpty());
        QVERIFY(tu.whatsThis(id).isEmpty());
    }
}

void TestTranslationUnit::toolTipsAndWhatsThis()
{
    QTranslationUnit tu;
    // Field labels have no tool tip; commands always do.
    for (int label : {91, 92, 93, 94, 132, 133, 165, 176, 185, 231, 232, 318})
        QVERIFY2(tu.toolTip(label).isEmpty(), qPrintable(tu.text(label)));
    for (int id = 0; id < QTranslationUnit::Count; ++id) {
        if (tu.text(id).endsWith(QLatin1Char(':')))
            QVERIFY(tu.toolTip(id).isEmpty());
    }
    // Repeated captions are told apart by their tool tips, which the action list shows.
    QVERIFY(tu.toolTip(65) != tu.toolTip(70));
    QVERIFY(tu.toolTip(72) != tu.toolTip(139));
    QCOMPARE(tu.text(65), tu.text(70));

    // A long explanation where one exists, the tool tip otherwise.
    QVERIFY(tu.whatsThis(1).size() > tu.toolTip(1).size());
    QCOMPARE(tu.whatsThis(75), tu.toolTip(75));
}

void TestTranslationUnit::retranslateFillsEveryTextOfAnAction()
{
    QTranslationUnit tu;
    QAction a;
    tu.retranslate(&a, 5);
    QCOMPARE(a.text(), QString("Save"));
    QCOMPARE(a.toolTip(), tu.toolTip(5));
    QCOMPARE(a.statusTip(), tu.toolTip(5));
    QCOMPARE(a.whatsThis(), tu.whatsThis(5));

    tu.retranslate(&a, 5, "Ctrl+S");
    QCOMPARE(a.text(), QString("Save (Ctrl+S)"));

    tu.retranslate(nullptr, 5); // no crash
    tu.retranslate(&a, 4000);
    QVERIFY(a.text().isEmpty());
}

QTEST_MAIN(TestTranslationUnit)
#include "tst_translationunit.moc"
