#include <QtTest>

#include "core/qproject.h"
#include "testsupport.h"


Q_DECLARE_METATYPE(QProjectType)

namespace {

bool hasInfo(QProject &p, const QString &part)
{
    for (const QMessages::Message &m : p.messages()->messages())
        if (m.kind == QMessages::Information && m.text.contains(part))
            return true;
    return false;
}

} // namespace

// Every DEF of the engine's sample content opens as what it is.
class TestProjectSample : public QObject
{
    Q_OBJECT

private slots:
    void sampleDefinitions_data()
    {
        QTest::addColumn<QString>("def");
        QTest::addColumn<QProjectType>("type");
        QTest::addColumn<quint32>("version");
        QTest::addColumn<QSize>("local");
        QTest::addColumn<QString>("sprite");

        const auto C = QProjectType::Character;
        const auto B = QProjectType::Storyboard;
        const auto S = QProjectType::Stage;
        const auto F = QProjectType::Font;
        const QSize low(320, 240);
        const QSize high(1280, 720);
        QTest::newRow("kfm") << "chars/kfm/kfm.def" << C << 0x01000000u << low << "kfm.sff";
        QTest::newRow("kfm720") << "chars/kfm720/kfm720.def" << C << 0x01000000u << high << "kfm720.sff";
        QTest::newRow("kfm intro") << "chars/kfm/intro.def" << B << 0u << low << "intro.sff";
        QTest::newRow("kfm ending") << "chars/kfm/ending.def" << B << 0u << low << "ending.sff";
        QTest::newRow("kfm720 intro") << "chars/kfm720/intro.def" << B << 0u << low << "intro.sff";
        QTest::newRow("kfm720 ending") << "chars/kfm720/ending.def" << B << 0u << low << "ending.sff";
        QTest::newRow("stage kfm") << "stages/kfm.def" << S << 0x01010000u << low << "kfm.sff";
        QTest::newRow("stage0") << "stages/stage0.def" << S << 0x01000000u << low << "stage0.sff";
        QTest::newRow("stage0-720") << "stages/stage0-720.def" << S << 0x01000000u << high << "stage0-720.sff";
        for (const char *font : {"arcade", "enter48", "f-4x6", "f-6x9", "name14", "num1", "num48", "num72"})
            QTest::newRow(font) << QStringLiteral("font/%1.def").arg(QLatin1String(font)) << F << 0u << low
                                << QStringLiteral("%1.sff").arg(QLatin1String(font));
        for (const char *font : {"infofont", "mssansserif-tt36", "options"})
            QTest::newRow(font) << QStringLiteral("font/%1.def").arg(QLatin1String(font)) << F << 0u << low
                                << QStringLiteral("arial.ttf");
        QTest::newRow("msgothic-tt36") << "font/msgothic-tt36.def" << F << 0u << low << "msgothic.ttc";
    }

    void sampleDefinitions()
    {
        BF_REQUIRE_SAMPLE();
        QFETCH(QString, def);
        QFETCH(QProjectType, type);
        QFETCH(quint32, version);
        QFETCH(QSize, local);
        QFETCH(QString, sprite);

        QProject p;
        QVERIFY(p.fromFile(TestSupport::samplePath(def), 0, false, false));
        QCOMPARE(p.type(), type);
        QCOMPARE(p.version(), version);
        QCOMPARE(QSize(p.localWidth(), p.localHeight()), local);
        QCOMPARE(p.defFiles().sprite, sprite);
        if (sprite.endsWith(QLatin1String(".sff"))) {
            QVERIFY2(p.sprites()->count() > 0, qPrintable(def));
            QCOMPARE(p.sprites()->fileName, TestSupport::samplePath(QFileInfo(def).path() + QLatin1Char('/') + sprite));
        } else {
            // A TrueType font isn't a sprite file of the project: noted, not an error.
            QVERIFY(hasInfo(p, sprite));
        }
        if (type != QProjectType::Character) {
            QVERIFY(p.commands()->isEmpty());
            QCOMPARE(p.statesCount(), 0);
        }
    }

    void sampleCharacterFiles()
    {
        BF_REQUIRE_SAMPLE();
        QProject p;
        QVERIFY(p.fromFile(TestSupport::samplePath(QStringLiteral("chars/kfm720/kfm720.def")), 0, false, false));
        const QProjectDefFiles &f = p.defFiles();
        QCOMPARE(f.command, QStringLiteral("kfm720.cmd"));
        QCOMPARE(f.animation, QStringLiteral("kfm720.air"));
        QCOMPARE(f.sound, QStringLiteral("kfm.snd"));
        QCOMPARE(f.states, (QStringList{QStringLiteral("kfm720.cns"), QStringLiteral("common1.cns")}));
        QVERIFY(f.palettes.isEmpty());
        QCOMPARE(p.name(), QStringLiteral("Kung Fu Man 720"));
        QCOMPARE(p.statesCount(), 1);
        QCOMPARE(p.state(0)->objectName(), QStringLiteral("kfm720.cns"));
        QVERIFY(p.commands()->sectionExists(QStringLiteral("command")) || !p.commands()->isEmpty());
        // The engine's common states are not beside the character: information only.
        QVERIFY(hasInfo(p, QStringLiteral("common1.cns")));
        QCOMPARE(p.messages()->issueCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestProjectSample)
#include "tst_projectsample.moc"
