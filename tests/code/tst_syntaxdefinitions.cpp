#include <QtTest>

#include "code/qsyntaxproperties.h"
#include "testsupport.h"

#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

QString readText(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
}

QString stripTags(QString html)
{
    html.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    return html.replace(QLatin1String("&quot;"), QLatin1String("\"")).simplified();
}

// The names of the reference's entries: the first word of each heading.
QStringList headings(const QString &html)
{
    static const QRegularExpression re(QStringLiteral("<h2><a class=\"toc-backref\"[^>]*>([^<]*)</a></h2>"));
    QStringList names;
    for (const QRegularExpressionMatch &m : re.globalMatch(html))
        names << m.captured(1).trimmed().section(QRegularExpression(QStringLiteral("[\\s(]")), 0, 0);
    return names;
}

QString shippedFile(const char *name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

bool writeText(const QString &path, const QByteArray &text)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(text) == text.size();
}

} // namespace

class TestSyntaxDefinitions : public QObject
{
    Q_OBJECT

private slots:
    // The shipped definition against the engine's own reference: every
    // trigger and controller it names, and every parameter it requires with
    // a value type.
    void coversTheEngineReference()
    {
        const QString docs = TestSupport::engineDocsDir();
        if (docs.isEmpty())
            QSKIP("engine documentation not found (../shared/engine-docs): skipped");
        QMugenSyntaxProperties syntax;
        QVERIFY(syntax.load(shippedFile("syntax_mugen.xml")));

        const QString triggerHtml = readText(docs + QStringLiteral("/trigger.html"));
        QStringList triggers = headings(triggerHtml);
        // Entries that document several names in one ("Win", "WinKO", ...).
        static const QRegularExpression variants(QStringLiteral("\\b(?:Win|Lose)(?:KO|Time|Perfect)\\b"));
        for (const QRegularExpressionMatch &m : variants.globalMatch(triggerHtml))
            triggers << m.captured(0);
        triggers.removeDuplicates();
        QVERIFY(triggers.size() > 100);
        for (const QString &t : triggers)
            QVERIFY2(syntax.findTrigger(t), qPrintable(t));

        const QString sctrlHtml = readText(docs + QStringLiteral("/sctrls.html"));
        const QStringList controllers = headings(sctrlHtml);
        QVERIFY(controllers.size() > 80);
        for (const QString &c : controllers)
            QVERIFY2(QMugenSyntaxProperties::indexOfController(syntax.stateControllers, c) >= 0, qPrintable(c));

        // Required parameters: the entries under each "Required ..." heading
        // up to the next heading of that level (a term ending with ":").
        static const QRegularExpression section(QStringLiteral("<div class=\"section\" id=\"[^\"]*\">"));
        static const QRegularExpression term(QStringLiteral("<dt>(.*?)</dt>"),
                                             QRegularExpression::DotMatchesEverythingOption);
        int required = 0;
        for (const QString &part : sctrlHtml.split(section)) {
            const QStringList name = headings(part);
            if (name.isEmpty())
                continue;
            const int index = QMugenSyntaxProperties::indexOfController(syntax.stateControllers, name.first());
            QVERIFY2(index >= 0, qPrintable(name.first()));
            const SyntaxController *controller = syntax.stateControllers.at(index);
            bool inRequired = false;
            for (const QRegularExpressionMatch &m : term.globalMatch(part)) {
                const QString text = stripTags(m.captured(1));
                if (text.endsWith(QLatin1Char(':'))) {
                    inRequired = text.startsWith(QLatin1String("Required"));
                    continue;
                }
                if (!inRequired || !text.contains(QLatin1Char('=')))
                    continue;
                for (const QString &alternative : text.split(QStringLiteral(" OR "))) {
                    const QString param = alternative.section(QLatin1Char('='), 0, 0).simplified().toLower();
                    const SyntaxParam *p = syntax.findParam(controller->params, param);
                    QVERIFY2(p && p->type != SyntaxUnknown, qPrintable(name.first() + QLatin1Char('.') + param));
                    ++required;
                }
            }
        }
        QVERIFY(required > 30);
        qInfo("reference: %d triggers, %d controllers, %d required parameters, all present and typed",
              int(triggers.size()), int(controllers.size()), required);
    }

    // The shipped files as data: lower-case names within the state ranges,
    // every parameter typed, every pattern valid.
    void shippedFilesAreWellFormed()
    {
        QMugenSyntaxProperties syntax;
        QVERIFY(syntax.load(shippedFile("syntax_mugen.xml")));
        QVERIFY(syntax.stateControllers.size() <= 167);
        QVERIFY(syntax.bgControllers.size() <= 10);
        QVERIFY(syntax.bgCtrlControllers.size() <= 40);
        QVERIFY(!syntax.defControllers.isEmpty());
        QVERIFY(!syntax.consts.value(QStringLiteral("const")).isEmpty());
        QVERIFY(syntax.consts.value(QStringLiteral("gethitvar")).contains(QStringLiteral("fall.envshake.time")));

        int params = 0;
        const auto checkMap = [&](const ParamMap &map, const QString &owner) {
            for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
                const QString where = owner + QLatin1Char('.') + it.key();
                QVERIFY2(it.key() == it.key().toLower(), qPrintable(where));
                QVERIFY2(it->type != SyntaxUnknown, qPrintable(where));
                if (it.key().contains(QLatin1Char('\\')))
                    QVERIFY2(QRegularExpression(it.key()).isValid(), qPrintable(where));
                QVERIFY2(QRegularExpression(it->pattern).isValid(), qPrintable(where));
                ++params;
            }
        };
        for (const auto *list : {&syntax.stateControllers, &syntax.bgControllers, &syntax.bgCtrlControllers,
                                 &syntax.defControllers}) {
            for (const SyntaxController *c : *list) {
                QVERIFY2(c->name == c->name.toLower(), qPrintable(c->name));
                checkMap(c->params, c->name);
            }
        }
        for (const ParamMap *map : {&syntax.files, &syntax.arcade, &syntax.data, &syntax.size, &syntax.velocity,
                                    &syntax.movement, &syntax.camera, &syntax.playerinfo, &syntax.bound,
                                    &syntax.stageinfo, &syntax.shadow, &syntax.music, &syntax.bgdef,
                                    &syntax.bgctrldef, &syntax.fnt, &syntax.scenedef, &syntax.scene}) {
            QVERIFY(!map->isEmpty());
            checkMap(*map, QStringLiteral("section"));
        }
        for (auto it = syntax.triggers.constBegin(); it != syntax.triggers.constEnd(); ++it) {
            QVERIFY2(it.key() == it.key().toLower(), qPrintable(it.key()));
            if (it->type == SyntaxConst)
                QVERIFY2(syntax.consts.contains(it->pattern), qPrintable(it.key()));
        }

        // Version gates and deprecations the engine's history names.
        QCOMPARE(syntax.findTrigger(QStringLiteral("CameraPos"))->minVersion, 0x01010000u);
        QCOMPARE(syntax.findTrigger(QStringLiteral("StageVar"))->minVersion, 0x01000000u);
        QCOMPARE(syntax.findTrigger(QStringLiteral("TimeMod"))->deprecated, QStringLiteral("1.0"));
        const SyntaxController *explod =
            syntax.stateControllers.at(QMugenSyntaxProperties::indexOfController(syntax.stateControllers,
                                                                                 QStringLiteral("Explod")));
        QCOMPARE(explod->params.value(QStringLiteral("space")).minVersion, 0x01010000u);
        QCOMPARE(explod->params.value(QStringLiteral("postype")).deprecated, QStringLiteral("1.1"));
        qInfo("%d typed parameters", params);

        QLuaSyntaxProperties lua;
        QVERIFY(lua.load(shippedFile("syntax_lua.xml")));
        for (const char *name : {"string.format", "pcall", "projectCount", "insertText", "sectionExists"})
            QVERIFY2(lua.functions.contains(QLatin1String(name)), name);
        for (const char *name : {"Project", "TextDocument", "Dialog", "Slider", "math"})
            QVERIFY2(lua.classes.contains(QLatin1String(name)), name);
    }

    // The reading rules of the file format, on small files.
    void readingRules()
    {
        QCOMPARE(QMugenSyntaxProperties::parseVersion(QStringLiteral("1.1")), 0x01010000u);
        QCOMPARE(QMugenSyntaxProperties::parseVersion(QStringLiteral("1.0")), 0x01000000u);
        QCOMPARE(QMugenSyntaxProperties::parseVersion(QStringLiteral("1.0.2.3")), 0x01000203u);
        QCOMPARE(QMugenSyntaxProperties::parseVersion(QStringLiteral("1")), 0u);
        QCOMPARE(QMugenSyntaxProperties::parseVersion(QString()), 0u);

        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("s.xml"));
        QVERIFY(writeText(path, R"xml(<!DOCTYPE ORVSyntaxML>
<syntax>
    <consts name="g"><const name="a"/></consts>
    <consts name="g"><const name="b"/></consts>
    <trigger name="time"/>
    <trigger name="projhit(\d*)" type="op2int2"/>
    <trigger name="projhittime" type="exp"/>
    <trigger name="odd" type="int3"/>
    <trigger name="pos" type="value" reg_exp="x|y"/>
    <state_controller name="varset">
        <param name="v" type="exp"/>
        <param name="var\(\d+\)" type="exp" minver="1.0"/>
        <param name="n" type="intn"/>
        <param name="m" type="intn" max="3"/>
        <param name="loose"/>
        <param name="w" type="value" reg_exp="s|c"/>
    </state_controller>
    <state_controller name="old" deprecated="1.0"/>
    <bg_controller name="normal"/>
    <data name="life" type="int"/>
    <data name="life" type="float"/>
    <unknown name="x"/>
</syntax>
)xml"));
        QMugenSyntaxProperties s;
        QVERIFY(s.load(path));
        QCOMPARE(s.consts.value(QStringLiteral("g")), (QStringList{"a", "b"}));
        QCOMPARE(s.findTrigger(QStringLiteral("TIME"))->type, SyntaxUnknown);
        QCOMPARE(s.findTrigger(QStringLiteral("ProjHit1234"))->type, SyntaxOp2Int2);
        QCOMPARE(s.findTrigger(QStringLiteral("projhittime"))->type, SyntaxExp);
        QVERIFY(!s.findTrigger(QStringLiteral("projhitx")));
        QCOMPARE(s.findTrigger(QStringLiteral("odd"))->type, SyntaxUnknown); // not a trigger type
        QVERIFY(s.matches(s.findTrigger(QStringLiteral("pos"))->pattern, QStringLiteral("x")));
        QVERIFY(!s.matches(s.findTrigger(QStringLiteral("pos"))->pattern, QStringLiteral("xy")));

        QCOMPARE(s.stateControllers.size(), 2);
        QCOMPARE(QMugenSyntaxProperties::indexOfController(s.stateControllers, QStringLiteral("VarSet")), 0);
        QCOMPARE(s.stateControllers.at(1)->deprecated, QStringLiteral("1.0"));
        QCOMPARE(s.stateControllers.at(1)->minVersion, 0u);
        const ParamMap &p = s.stateControllers.at(0)->params;
        QCOMPARE(s.findParam(p, QStringLiteral("var(12)"))->minVersion, 0x01000000u);
        QVERIFY(!s.findParam(p, QStringLiteral("var(x)")));
        QVERIFY(!s.findParam(p, QStringLiteral("V"))); // parameter names keep their case
        QCOMPARE(p.value(QStringLiteral("n")).pattern, QStringLiteral("1"));
        QCOMPARE(p.value(QStringLiteral("m")).pattern, QStringLiteral("3"));
        QCOMPARE(p.value(QStringLiteral("loose")).type, SyntaxUnknown);
        QVERIFY(s.matches(p.value(QStringLiteral("w")).pattern, QStringLiteral("c")));
        QVERIFY(!s.matches(p.value(QStringLiteral("w")).pattern, QStringLiteral("sc")));
        QCOMPARE(s.data.value(QStringLiteral("life")).type, SyntaxFloat); // the later entry wins
        QCOMPARE(s.bgControllers.size(), 1);

        // A foreign root, a malformed file and a missing one leave empty tables.
        QVERIFY(writeText(path, "<other><trigger name=\"time\"/></other>"));
        QVERIFY(!s.load(path));
        QVERIFY(s.triggers.isEmpty() && s.stateControllers.isEmpty());
        QVERIFY(!s.load(dir.filePath(QStringLiteral("none.xml"))));
        QVERIFY(writeText(path, "<syntax><function name=\"f\"/><class name=\"C\"/></syntax>"));
        QLuaSyntaxProperties lua;
        QVERIFY(lua.load(path));
        QCOMPARE(lua.functions, QStringList{"f"});
        QCOMPARE(lua.classes, QStringList{"C"});
    }
};

QTEST_GUILESS_MAIN(TestSyntaxDefinitions)
#include "tst_syntaxdefinitions.moc"
