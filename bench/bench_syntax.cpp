// The syntax checker from text to issue list: the engine's common states
// (common1.cns, about 2,500 lines) and a whole character, every text file
// of kfm (DEF, states, common states, commands, animations, storyboards).
// Target: a whole character in under 20 ms on one core.
// The outline of a state file, rebuilt after each pause in typing, with the
// variables its states set. Target: common1.cns in under 5 ms.
#include <benchmark/benchmark.h>

#include "code/qmugensyntaxchecker.h"
#include "code/qmugensyntaxhierarchy.h"
#include "code/qsyntaxproperties.h"

#include <QFile>
#include <QStringList>

namespace {

const QMugenSyntaxProperties &syntax()
{
    static QMugenSyntaxProperties s;
    static const bool loaded = s.load(QStringLiteral(BF_SOURCE_DIR "/data/syntax_mugen.xml"));
    Q_UNUSED(loaded);
    return s;
}

QString sample(const char *relative)
{
    QFile f(QStringLiteral(BF_TESTDATA_DIR "/engine-sample/") + QLatin1String(relative));
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

void checkAll(benchmark::State &state, const QStringList &texts)
{
    if (syntax().stateControllers.isEmpty() || texts.contains(QString())) {
        state.SkipWithError("language definition or sample content missing");
        return;
    }
    QMugenSyntaxChecker checker(&syntax());
    qsizetype lines = 0;
    qsizetype issues = 0;
    for (auto _ : state) {
        for (const QString &t : texts) {
            const QVector<QMugenSyntaxChecker::Line> result = checker.checkText(t);
            lines += result.size();
            for (const QMugenSyntaxChecker::Line &l : result)
                issues += l.issues.size();
        }
    }
    benchmark::DoNotOptimize(issues);
    state.counters["lines"] = benchmark::Counter(double(lines), benchmark::Counter::kIsRate);
}

void BM_CheckCommon1(benchmark::State &state)
{
    checkAll(state, {sample("data/common1.cns")});
}

void BM_CheckWholeCharacter(benchmark::State &state)
{
    checkAll(state, {sample("chars/kfm/kfm.def"), sample("chars/kfm/kfm.cns"), sample("chars/kfm/kfm.cmd"),
                     sample("chars/kfm/kfm.air"), sample("data/common1.cns"), sample("chars/kfm/intro.def"),
                     sample("chars/kfm/ending.def")});
}

void BM_OutlineCommon1(benchmark::State &state)
{
    const QString text = sample("data/common1.cns");
    if (text.isEmpty()) {
        state.SkipWithError("sample content missing");
        return;
    }
    QMugenSyntaxHierarchy outline;
    for (auto _ : state)
        outline.update(text);
    state.counters["nodes"] = double(outline.pooledNodes());
}

} // namespace

BENCHMARK(BM_OutlineCommon1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckCommon1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckWholeCharacter)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
