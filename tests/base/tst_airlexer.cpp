#include <QtTest>

#include "base/airlexer.h"

class TestAirLexer : public QObject
{
    Q_OBJECT

private:
    static QList<int> kinds(AirLexer &lx, QStringList *texts = nullptr)
    {
        QList<int> out;
        for (int guard = 0; guard < 1000; ++guard) {
            out << lx.kind();
            if (texts)
                *texts << lx.text();
            if (lx.kind() == AirLexer::End)
                break;
            lx.next();
        }
        return out;
    }

private slots:
    void tokenKindsAndTexts()
    {
        QStringList texts;
        AirLexer lx(QStringLiteral("Clsn2[0] = -12, 3.25 .5 : # x_y.z\r\n"));
        const QList<int> got = kinds(lx, &texts);
        const QList<int> want{AirLexer::Identifier, AirLexer::OpenBracket, AirLexer::Integer,
                              AirLexer::CloseBracket, AirLexer::Equals, AirLexer::Integer,
                              AirLexer::Comma, AirLexer::Float, AirLexer::Float, AirLexer::Colon,
                              AirLexer::Other, AirLexer::Identifier, AirLexer::LineEnd, AirLexer::End};
        QCOMPARE(got, want);
        QCOMPARE(texts.at(0), QStringLiteral("Clsn2"));
        QCOMPARE(texts.at(5), QStringLiteral("-12"));
        QCOMPARE(texts.at(7), QStringLiteral("3.25"));
        QCOMPARE(texts.at(8), QStringLiteral("0.5")); // ".5" reads as "0.5"
        QCOMPARE(texts.at(11), QStringLiteral("x_y.z"));

        // A lone minus is a number token; its value is 0, not a crash.
        AirLexer minus(QStringLiteral("- 7"));
        QCOMPARE(minus.kind(), int(AirLexer::Integer));
        QCOMPARE(minus.toInt(), 0);
        minus.next();
        QCOMPARE(minus.toInt(), 7);

        // Token text is capped; the rest of the word is still consumed.
        AirLexer longWord(QString(300, QLatin1Char('a')) + QStringLiteral(" b"));
        QCOMPARE(longWord.text().size(), AirLexer::MaxTokenLength);
        QCOMPARE(longWord.next(), int(AirLexer::Identifier));
        QCOMPARE(longWord.text(), QStringLiteral("b"));

        // The text ends at a NUL, and an empty text is just the end.
        AirLexer nul(QStringLiteral("a") + QChar(0) + QStringLiteral("b"));
        QCOMPARE(nul.next(), int(AirLexer::End));
        QCOMPARE(AirLexer(QString()).kind(), int(AirLexer::End));
    }

    void linesAndComments()
    {
        // Leading blank lines are one dropped line end; lines still count.
        AirLexer lx(QStringLiteral("\n\n; Walk\n[Begin Action 7]\n"));
        QCOMPARE(lx.kind(), int(AirLexer::OpenBracket));
        QCOMPARE(lx.line(), 3);
        QCOMPARE(lx.comment().trimmed(), QStringLiteral("Walk"));
        QCOMPARE(lx.commentLine(), 2);
        QCOMPARE(lx.takeComment().trimmed(), QStringLiteral("Walk"));
        QCOMPARE(lx.commentLine(), -1);

        // A blank line between comment and header drops the name.
        AirLexer blank(QStringLiteral("x\n; Walk\n\n[Begin Action 7]"));
        while (blank.kind() != AirLexer::OpenBracket && blank.kind() != AirLexer::End)
            blank.next();
        QCOMPARE(blank.comment(), QString());
        QCOMPARE(blank.commentLine(), -1);

        // Ruler lines never name anything; a run of four counts three.
        AirLexer ruler(QStringLiteral("x\n;------\n["));
        while (ruler.kind() != AirLexer::OpenBracket)
            ruler.next();
        QCOMPARE(ruler.comment(), QString());
        AirLexer dashes(QStringLiteral("x\n;-- Walk --\n["));
        while (dashes.kind() != AirLexer::OpenBracket)
            dashes.next();
        QCOMPARE(dashes.comment().trimmed(), QStringLiteral("-- Walk --"));

        // With several comment lines the first one names; a ruler above it
        // does not block it.
        AirLexer two(QStringLiteral("x\n;----------\n; Run\n; more\n["));
        while (two.kind() != AirLexer::OpenBracket)
            two.next();
        QCOMPARE(two.comment().trimmed(), QStringLiteral("Run"));

        // A comment cut short by the end of text names nothing.
        AirLexer eof(QStringLiteral("x ; tail"));
        QCOMPARE(eof.next(), int(AirLexer::End));
        QCOMPARE(eof.comment(), QString());
    }

    void skipLineAndReadRest()
    {
        AirLexer lx(QStringLiteral("name = \"A;B\" ; note\r\nspr = stages\\kfm.sff;x\nlast"));
        QCOMPARE(lx.text(), QStringLiteral("name"));
        QCOMPARE(lx.next(), int(AirLexer::Equals));
        QCOMPARE(lx.readRest(QLatin1Char(';'), true).trimmed(), QStringLiteral("\"A;B\""));
        // The comment after the value ends the line.
        QCOMPARE(lx.next(), int(AirLexer::LineEnd));
        QCOMPARE(lx.line(), 1);
        QCOMPARE(lx.next(), int(AirLexer::Identifier));
        lx.next();
        QCOMPARE(lx.readRest(QLatin1Char(';')), QStringLiteral(" stages\\kfm.sff"));
        QCOMPARE(lx.skipLine(), int(AirLexer::Identifier));
        QCOMPARE(lx.text(), QStringLiteral("last"));
        QCOMPARE(lx.line(), 2);
        // Reading past the end stays at the end.
        QCOMPARE(lx.readRest(QLatin1Char(']')), QString());
        QCOMPARE(lx.skipLine(), int(AirLexer::End));
        QCOMPARE(lx.skipLine(), int(AirLexer::End));
    }

    void randomBytesNeverHang()
    {
        // Every call consumes input or ends: the token count is bounded by the length.
        QRandomGenerator rng(7);
        for (int round = 0; round < 200; ++round) {
            QString s;
            for (int i = 0; i < 64; ++i)
                s.append(QChar(char16_t(rng.bounded(1, 128))));
            AirLexer lx(s);
            int steps = 0;
            while (lx.kind() != AirLexer::End && steps <= s.size() + 2) {
                if (steps % 3 == 0)
                    lx.readRest(QLatin1Char(';'), true);
                lx.next();
                ++steps;
            }
            QVERIFY2(steps <= s.size() + 2, qPrintable(s));
        }
    }
};

QTEST_GUILESS_MAIN(TestAirLexer)
#include "tst_airlexer.moc"
