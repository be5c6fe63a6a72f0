#include <QtTest>

#include "code/qmugensyntaxchecker.h"
#include "code/qmugensyntaxprocessor.h"
#include "code/qsyntaxproperties.h"
#include "code/qsyntaxtexteditor.h"
#include "code/syntaxformats.h"
#include "code/ui/qtexteditor.h"
#include "testsupport.h"

#include <QDirIterator>
#include <QTextCursor>
#include <QTextDocument>

namespace {

const QMugenSyntaxProperties &syntax()
{
    static QMugenSyntaxProperties s;
    if (s.stateControllers.isEmpty())
        s.load(QCoreApplication::applicationDirPath() + QStringLiteral("/syntax_mugen.xml"));
    return s;
}

QVector<QMugenSyntaxChecker::Line> check(const QString &text, quint32 version = 0x01010000)
{
    QMugenSyntaxChecker checker(&syntax());
    checker.setEngineVersion(version);
    return checker.checkText(text);
}

// "line: text" of every issue of a kind, lines from 1.
QStringList issues(const QVector<QMugenSyntaxChecker::Line> &lines, int kind)
{
    QStringList out;
    for (int i = 0; i < lines.size(); ++i)
        for (const BlockIssue &b : lines.at(i).issues)
            if (b.kind == kind)
                out << QStringLiteral("%1: %2").arg(i + 1).arg(b.message);
    return out;
}

// Contexts the snippets below are checked in: a [State] block that has a
// controller and a trigger, and the header of a [State] block.
const char *const inState = "[Statedef 200]\n[State 200, 1]\ntype = ChangeState\ntrigger1 = 1\n";
const char *const newState = "[Statedef 200]\n[State 200, 1]\n";

} // namespace

class TestSyntaxChecker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(!syntax().stateControllers.isEmpty()); }

    // Each snippet holds one fault, reported as an error on its line (from 1,
    // counted in the snippet after its context); line 0 marks lines that
    // real characters write and the engine accepts: no error at all.
    void snippets_data()
    {
        QTest::addColumn<QString>("context");
        QTest::addColumn<QString>("snippet");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("message");
        int count = 0;
        auto row = [&count](const char *context, const char *snippet, int line, const char *message = "") {
            QTest::addRow("%d %s", ++count, qPrintable(QString::fromLatin1(snippet).replace(QLatin1Char('\n'), QLatin1String(" / ")))) << QString::fromLatin1(context) << QString::fromLatin1(snippet) << line
                                         << QString::fromLatin1(message);
        };
        // Faults.
        row(inState, "trigger2 = tme = 0", 1, "Unknown trigger 'tme'");
        row(inState, "trigger2 = time ++ 1", 1, "Unknown trigger '+'");
        row(inState, "trigger2 = var(1 = 0", 1, "Unexpected end of line");
        row(inState, "trigger2 = (time = 0))", 1, "code ends before line");
        row(inState, "trigger2 = var 1 = 0", 1, "Unexpected token '1'");
        row(inState, "trigger2 = const(size.xscal) > 0", 1, "Unknown constant");
        row(inState, "trigger2 = vel q > 0", 1, "Unknown value");
        row(inState, "trigger2 = statetype = Q", 1, "Unknown value");
        row(inState, "trigger2 = command = holdfwd", 1, "Unexpected token 'holdfwd'");
        row(inState, "trigger2 = root var(1)", 1, "Unexpected token 'var'");
        row(inState, "trigger2 = time = [0, 10", 1, "Unexpected end of line");
        row(inState, "valeu = 200", 1, "Unknown parameter 'valeu' for the 'changestate' controller");
        row(inState, "value 200", 1, "Unknown parameter 'value200'");
        row(inState, "value = ", 1, "Unexpected end of line");
        row(inState, "value = 1.2.3", 1, "code ends before line");
        row(inState, "ctrl = 1 2", 1, "code ends before line");
        row(inState, "persistent = ", 1, "Unexpected end of line");
        row(inState, "type = ChangeState", 1, "Unknown 'State' type");
        row(newState, "type = ChangeStat\ntrigger1 = 1", 1, "Unknown 'State' type");
        row("[Statedef 200]\n", "[State 200, 1]\ntype = PosAdd\nx = 1", 1, "State controller without a trigger");
        row(newState, "type = HitDef\ntrigger1 = 1\nattr = X, NA", 3, "Unknown parameter value 'x,na'");
        row(newState, "type = HitDef\ntrigger1 = 1\nhitsound = S5", 3, "requires 2 values");
        row(newState, "type = Explod\ntrigger1 = 1\npos = 1, 2, 3", 3, "code ends before line");
        row(newState, "type = Explod\ntrigger1 = 1\npostype = p3", 3, "Unknown parameter value 'p3'");
        row(newState, "type = EnvColor\ntrigger1 = 1\nvalue = 1, 2", 3, "requires 3 values");
        row("", "[Statdef 200]", 1, "Invalid block");
        row("", "[Statedef 200", 1, "Invalid block");
        row("", "[Statedef]", 1, "Invalid block");
        row("", "[State 200, 1", 1, "Wrong State");
        row("", "[Begin Action x]", 1, "Invalid block");
        row("", "[Data] life", 1, "code ends before line");
        row("[Statedef 200]\n", "type = X", 1, "Unknown 'StateDef type' value");
        row("[Statedef 200]\n", "movetype = Q", 1, "Unknown 'StateDef movetype' value");
        row("[Statedef 200]\n", "physics = Z", 1, "Unknown 'StateDef physics' value");
        row("[Statedef 200]\n", "anmi = 200", 1, "Unknown 'StateDef' parameter");
        row("[Command]\n", "nmae = \"x\"", 1, "Unknown 'Command' parameter");
        row("[Command]\n", "name = x", 1, "Unexpected token 'x'");
        row("[Command]\n", "time = x", 1, "Unexpected token 'x'");
        row("[Remap]\n", "x = q", 1, "Unknown 'Remap' value");
        row("[Remap]\n", "w = x", 1, "Unknown 'Remap' parameter");
        row("[Defaults]\n", "command.tim = 15", 1, "Unknown 'Defaults' parameter");
        row("[Quotes]\n", "victory = \"x\"", 1, "Unknown 'Quotes' parameter");
        row("[Palette Keymap]\n", "d = 1", 1, "Unknown 'Palette Keymap' parameter");
        row("[Begin Action 0]\n", "0,0, 0,0", 1, "Unexpected");
        row("[Begin Action 0]\n", "0,0, 0,0, 5, Q", 1, "Unknown flip type");
        row("[Begin Action 0]\n", "0,0, 0,0, 5, , XX", 1, "Unknown transparency");
        row("[Begin Action 0]\n", "Clsn2[0] = 1, 2, 3", 1, "Unexpected end of line");
        row("[Begin Action 0]\n", "Interpolate Rotate", 1, "Unknown interpolation");
        row("[Info]\n", "nmae = \"x\"", 1, "Unknown 'Info'' parameter");
        row("[Info]\n", "localcoord = 320", 1, "Unexpected end of line");
        row("[Files]\n", "sprit = kfm.sff", 1, "Unknown parameter 'sprit' for the 'Files' controller");
        row("[Data]\n", "life = abc", 1, "Unexpected token 'abc'");
        row("[Size]\n", "draw.offset = 1", 1, "requires 2 values");
        row("[Camera]\n", "startx = abc", 1, "Unexpected token 'abc'");
        row("[BG 1]\n", "type = norml", 1, "Unknown 'BG' type");
        row("[BG 1]\ntype = normal\n", "spriteno = 0", 1, "requires 2 values");
        row("[BGCtrl 1]\n", "type = wobble", 1, "Unknown 'BG Ctrl' type");
        row("[FNT v2]\n", "fntversion = 2", 1, "requires 2 values");
        row("[Def]\n", "type = vector", 1, "Unknown 'Def' type");
        // Corners of the language that real characters use.
        row(inState, "trigger2 = root, var(3) = 1 ; and a comment", 0);
        row(inState, "TRIGGER2=Time=[0,10)", 0);
        row(inState, "trigger2 = ifelse(var(1), 1, 0) && cond(time > 1, 1, 0)", 0);
        row(inState, "trigger2 = (var(1) := 3) || !(time % 3) || ~var(2)", 0);
        row(inState, "trigger2 = AnimElemTime(2) >= 0 && IsHelper(1234) && IsHelper", 0);
        row(inState, "trigger2 = projhit1000 = 1, >= 0 || ProjContact = 1 || projguarded1 = 1, < 15", 0);
        row(inState, "trigger2 = enemynear, statetype = A || enemy(1), life < 100", 0);
        row(inState, "trigger2 = helper(1000), var(3) = 1 || playerid(var(5)), alive", 0);
        row(inState, "trigger2 = HitDefAttr = SCA, NA, SA, HA", 0);
        row(inState, "trigger2 = p2bodydist X < 30 && Pos Y >= -20 && Vel Y > .5", 0);
        row(inState, "trigger2 = gethitvar(animtype) = 1 && const(size.xscale) > 0", 0);
        row(inState, "trigger2 = AnimElem = 2, >= 0 && teammode = simul && command != \"x;y\"", 0);
        row(inState, "trigger2 = var(3) = [1, 3] || fvar(0) != (-.5, 2.)", 0);
        row(inState, "value = ifelse(var(0) := 5, -1, 2 ** 3)", 0);
        row(newState, "type = BindToTarget\ntrigger1 = 1\npos = 0, -50, Head", 0);
        row(newState, "type = BindToTarget\ntrigger1 = 1\npos = 10, -40", 0);
        row(newState, "type = HitDef\ntrigger1 = 1\nsparkno = S8000\nhitsound = S5, 0\nguardflag = MA", 0);
        row(newState, "type = VarSet\ntrigger1 = 1\nvar(5) = 1\nfv = 2", 0);
        row(newState, "type = Explod\ntrigger1 = 1\npos = 10, 20,", 0);
        row(newState, "trigger1 = 1\ntype = ChangeState\nvalue = 0", 0);
        row("", "[Begin Action 0]\nClsn2Default: 1\n Clsn2[0] = -10, 0, 10,-79\n0,0, 0,0, 10, , , 1\n0,0, 0,0, 5, H, AS128D64", 0);
        row("", "[BG0Def]\nspr = a.sff\n[BG0 Wall]\ntype = normal\nspriteno = 0, 0\n[BG0Ctrl x]\ntype = null", 0);
        row("", "[Info]\nname = Kung Fu Man\nmugenversion = 04,14,2002\nversiondate = 1.0", 0);
    }

    void snippets()
    {
        QFETCH(QString, context);
        QFETCH(QString, snippet);
        QFETCH(int, line);
        QFETCH(QString, message);
        const int offset = int(context.count(QLatin1Char('\n')));
        const QStringList errors = issues(check(context + snippet), BlockIssue::Error);
        if (line == 0) {
            QVERIFY2(errors.isEmpty(), qPrintable(errors.join(QLatin1String(" | "))));
            return;
        }
        const QString prefix = QStringLiteral("%1: ").arg(line + offset);
        QVERIFY2(!errors.isEmpty(), "no error");
        for (const QString &e : errors)
            QVERIFY2(e.startsWith(prefix), qPrintable(errors.join(QLatin1String(" | "))));
        QVERIFY2(errors.join(QLatin1Char('|')).contains(message), qPrintable(errors.join(QLatin1String(" | "))));
    }

    // Spans and the cases where one error replaces the others.
    void spansAndVersions()
    {
        // An int2 with a trailing comma: one "requires" error over the value.
        auto l = check(QStringLiteral("[Size]\nhead.pos = 1, ; x"));
        QCOMPARE(l.at(1).issues.size(), 1);
        QCOMPARE(l.at(1).issues.at(0).start, 11);
        QCOMPARE(l.at(1).issues.at(0).end, 13);
        // An indented unknown key: the span runs over the key's tokens.
        l = check(QStringLiteral("[Data]\n   lif x = 1"));
        QCOMPARE(l.at(1).issues.at(0).start, 3);
        QCOMPARE(l.at(1).issues.at(0).end, 6);
        // exp3nil (no parameter of the engine has it yet): -1 alone, or three values.
        QMugenSyntaxProperties custom;
        QVERIFY(custom.load(QCoreApplication::applicationDirPath() + QStringLiteral("/syntax_mugen.xml")));
        SyntaxParam nil;
        nil.type = SyntaxExp3Nil;
        custom.stateControllers.at(QMugenSyntaxProperties::indexOfController(custom.stateControllers, QStringLiteral("posadd")))
            ->params.insert(QStringLiteral("reach"), nil);
        QMugenSyntaxChecker withNil(&custom);
        const QString posAdd = QString::fromLatin1(newState) + QStringLiteral("type = PosAdd\ntrigger1 = 1\nreach = ");
        QCOMPARE(issues(withNil.checkText(posAdd + QStringLiteral("-1")), BlockIssue::Error), QStringList());
        QCOMPARE(issues(withNil.checkText(posAdd + QStringLiteral("-1, 2, 3")), BlockIssue::Error), QStringList());
        QCOMPARE(issues(withNil.checkText(posAdd + QStringLiteral("1")), BlockIssue::Error),
                 QStringList{QStringLiteral("5: This parameter requires 3 values(s)")});
        // Version gates and deprecations.
        const QString top = QString::fromLatin1(inState) + QStringLiteral("trigger2 = topedge > 0\n");
        QVERIFY(issues(check(top), BlockIssue::Error).isEmpty());
        QCOMPARE(issues(check(top, 0x01000000), BlockIssue::Error),
                 QStringList{QStringLiteral("5: Trigger invalid for the M.U.G.E.N. version of the current project")});
        QCOMPARE(issues(check(QString::fromLatin1(inState) + QStringLiteral("trigger2 = timemod = 4, 0")), BlockIssue::Warning),
                 QStringList{QStringLiteral("5: Trigger deprecated in the M.U.G.E.N 1.0")});
        // reportErrors off keeps the warnings only.
        QMugenSyntaxChecker quiet(&syntax());
        quiet.setReportErrors(false);
        const auto q = quiet.checkText(QStringLiteral("[Data]\nvolume = 1\nlif = 2\n[Foo]"));
        QCOMPARE(issues(q, BlockIssue::Error), QStringList());
        QCOMPARE(issues(q, BlockIssue::Warning), QStringList{QStringLiteral("2: Parameter deprecated in the M.U.G.E.N 1.0")});
    }

    // The editor's highlighter: folds, brackets, colours and underlines.
    void processorInADocument()
    {
        SyntaxFormats formats;
        const QColor colors[] = {Qt::darkGreen, Qt::darkMagenta, Qt::darkRed, Qt::darkBlue, Qt::blue,
                                 Qt::darkCyan, QColor(128, 64, 0), Qt::darkYellow, Qt::darkGray};
        QMap<QString, SyntaxFormats::Record> roles;
        for (int i = 0; i < SyntaxFormats::Count; ++i)
            roles.insert(SyntaxFormats::roleName(i), {colors[i], i == QMugenSyntaxChecker::Block, false});
        formats.applyColors(roles);
        QTextDocument doc;
        doc.setPlainText(QStringLiteral("; states\n[Statedef 200]\ntype = S\n\n[State 200, 1]\ntype = ChangeState\n"
                                        "trigger1 = var(1) = 1\nvalue = 0\n\n[Statedef 300]\nctrl = 1\n[Foo]\nlif = 1"));
        auto *processor = new QMugenSyntaxProcessor(const_cast<QMugenSyntaxProperties *>(&syntax()), &formats, &doc);
        processor->rehighlight();
        QList<int> folds;
        for (QTextBlock b = doc.begin(); b.isValid(); b = b.next())
            folds << QTextEditorBlockData::foldingIndent(b);
        QCOMPARE(folds, (QList<int>{0, 0, 1, 1, 1, 2, 2, 2, 0, 0, 1, 0, 1}));
        QCOMPARE(QTextEditorBlockData::parentheses(doc.findBlockByNumber(6)).size(), 2);
        const QTextBlock foo = doc.findBlockByNumber(11);
        QCOMPARE(QTextEditorBlockData::issuesOf(foo).size(), 1);
        const auto underlined = [](const QTextBlock &b, const QColor &color) {
            const QList<QTextLayout::FormatRange> ranges = b.layout()->formats();
            return std::any_of(ranges.begin(), ranges.end(), [&](const QTextLayout::FormatRange &r) {
                return r.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline && r.format.underlineColor() == color;
            });
        };
        QVERIFY(underlined(foo, Qt::red));
        const QTextBlock trigger = doc.findBlockByNumber(6);
        QCOMPARE(trigger.layout()->formats().constFirst().format, formats.charFormat(QMugenSyntaxChecker::Keyword));
        processor->setReportErrors(false);
        QVERIFY(QTextEditorBlockData::issuesOf(foo).isEmpty());

        // A project's document checks its M.U.G.E.N. text with its engine version.
        QSyntaxTextEditor document;
        document.setMugenSyntax(const_cast<QMugenSyntaxProperties *>(&syntax()), &formats);
        document.setSyntax(QSyntaxTextEditor::Mugen);
        QTextEditor view; // edits reach the highlighter through a laid-out document
        view.setDocument(document.document());
        QCoreApplication::processEvents(); // the highlighter's first pass is queued
        document.setText(QString::fromLatin1(inState) + QStringLiteral("trigger2 = topedge"));
        const QTextBlock top = document.document()->findBlockByNumber(4);
        QVERIFY(QTextEditorBlockData::issuesOf(top).isEmpty());
        document.setEngineVersion(0x01000000);
        QCOMPARE(QTextEditorBlockData::issuesOf(top).size(), 1);
        // A [State] block without a trigger is marked at its header, until a trigger comes.
        document.setText(QStringLiteral("[Statedef 1]\n[State 1, a]\ntype = Null\n[State 1, b]\ntype = Null\ntrigger1 = 1"));
        const QTextBlock header = document.document()->findBlockByNumber(1);
        QCOMPARE(QTextEditorBlockData::issuesOf(header).size(), 1);
        QTextCursor(document.document()->findBlockByNumber(3)).insertText(QStringLiteral("trigger1 = 1\n"));
        QTRY_VERIFY(QTextEditorBlockData::issuesOf(header).isEmpty());

        const QString shots = qEnvironmentVariable("BF_SCREENSHOT_DIR");
        if (shots.isEmpty())
            return;
        QTextDocument cns;
        cns.setPlainText(QStringLiteral(
            "; Kick, with a few slips\n[Statedef 210]\ntype = S\nmovetype = A\nphysics = S\nanim = 210\n\n"
            "[State 210, Sound]\ntype = PlaySnd\ntrigger1 = AnimElem = 2\nvalue = S0, 1\n\n"
            "[State 210, Hit]\ntype = HitDef\ntrigger1 = Tme = 0\nattr = S, NA\ndamage = 30, 2\n"
            "hitflag = MAF\nsparkno = S8000\nhitsound = S5, 1\nground.velocity = -4\n\n"
            "[State 210, Spark]\ntype = Explod\ntrigger1 = MoveHit = 1 && (var(3) := 2\nanim = F8000\n"
            "postype = p1\npos = 30, -60\n\n[State 210, End]\ntype = ChangeState\ntrigger1 = AnimTime = 0\n"
            "value = 0\nctrl = 1\nsprpriority = 2\n"));
        QTextEditor editor;
        editor.setDocument(&cns);
        editor.setFont(formats.font());
        new QMugenSyntaxProcessor(const_cast<QMugenSyntaxProperties *>(&syntax()), &formats, &cns);
        editor.resize(720, 640);
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        QTest::qWait(100);
        QVERIFY(editor.grab().save(QDir(shots).filePath(QStringLiteral("syntax-checker.png"))));
    }

    // The engine's own files: no error anywhere.
    void engineSampleHasNoErrors()
    {
        BF_REQUIRE_SAMPLE();
        QDirIterator it(TestSupport::sampleDir(), {QStringLiteral("*.cns"), QStringLiteral("*.cmd"), QStringLiteral("*.air"),
                                                   QStringLiteral("*.st")},
                        QDir::Files, QDirIterator::Subdirectories);
        int files = 0;
        while (it.hasNext()) {
            const QString path = it.next();
            const QString text = QString::fromUtf8(TestSupport::readAll(path));
            QVERIFY2(issues(check(text), BlockIssue::Error).isEmpty(),
                     qPrintable(path + QLatin1String(": ") + issues(check(text), BlockIssue::Error).join(QLatin1String(" | "))));
            ++files;
        }
        QVERIFY(files >= 8);
    }

    // The shipped controller library: one template per controller of the
    // syntax, each checking clean inside a state.
    void shippedControllersCheckClean()
    {
        QSet<QString> missing;
        for (const SyntaxController *c : syntax().stateControllers)
            missing.insert(c->name.toLower());
        QDirIterator it(QCoreApplication::applicationDirPath() + QStringLiteral("/sctrls"), {QStringLiteral("*.sctrl")});
        while (it.hasNext()) {
            const QString path = it.next();
            const QString text = QString::fromUtf8(TestSupport::readAll(path));
            const QStringList errors = issues(check(QStringLiteral("[Statedef 200]\n") + text), BlockIssue::Error);
            QVERIFY2(errors.isEmpty(), qPrintable(path + QLatin1String(": ") + errors.join(QLatin1String(" | "))));
            QVERIFY2(text.contains(QLatin1String("type = ") + it.fileInfo().completeBaseName()), qPrintable(path));
            missing.remove(it.fileInfo().completeBaseName().toLower());
        }
        QVERIFY2(missing.isEmpty(), qPrintable(QStringList(missing.values()).join(QLatin1Char(' '))));
    }
};

QTEST_MAIN(TestSyntaxChecker)
#include "tst_syntaxchecker.moc"
