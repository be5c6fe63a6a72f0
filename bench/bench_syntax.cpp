// The syntax checker from text to issue list: the engine's common states
// (common1.cns, about 2,500 lines) and a whole character, every text file
// of kfm (DEF, states, common states, commands, animations, storyboards).
// Target: a whole character in under 20 ms on one core.
#include <benchmark/benchmark.h>

#include "code/qmugensyntaxchecker.h"
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

} // namespace

BENCHMARK(BM_CheckCommon1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckWholeCharacter)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
