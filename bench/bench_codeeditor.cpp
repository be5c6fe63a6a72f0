// The code editor on the largest text of the engine sample, common1.cns:
// opening it (text set, every line processed, the view laid out and painted)
// and typing a character at its top (the key path with completion, the
// re-processing of the changed line, the repaint). The lines are processed
// by the section processor of the widget tests, a light stand-in for the
// language checker, so the figures are those of the widget and its plumbing.
#include <benchmark/benchmark.h>

#include "code/ui/qtexteditor.h"
#include "testsectionprocessor.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>

namespace {

QString common1()
{
    QFile f(QStringLiteral(BF_TESTDATA_DIR "/engine-sample/data/common1.cns"));
    if (!f.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(f.readAll()).remove(QChar(QChar::ByteOrderMark));
}

QString completionFile()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/completer.xml");
}

void key(QTextEditor &editor, int code, const QString &text)
{
    QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&editor, &press);
    QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&editor, &release);
}

void BM_OpenCommon1(benchmark::State &state)
{
    const QString text = common1();
    if (text.isEmpty()) {
        state.SkipWithError("common1.cns not found");
        return;
    }
    QTextEditor editor;
    editor.resize(1000, 800);
    editor.loadCompletion(completionFile());
    TestSectionProcessor processor(editor.document());
    editor.show();
    QCoreApplication::processEvents();
    for (auto _ : state) {
        editor.setPlainText(text);
        processor.rehighlight();
        editor.viewport()->repaint();
        QCoreApplication::processEvents();
    }
    state.counters["lines"] = editor.blockCount();
    state.counters["lines/s"] =
        benchmark::Counter(double(editor.blockCount()) * double(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_TypeAtTop(benchmark::State &state)
{
    const QString text = common1();
    if (text.isEmpty()) {
        state.SkipWithError("common1.cns not found");
        return;
    }
    QTextEditor editor;
    editor.resize(1000, 800);
    if (state.range(0))
        editor.loadCompletion(completionFile());
    TestSectionProcessor processor(editor.document());
    editor.setPlainText(text);
    processor.rehighlight();
    editor.show();
    editor.setFocus();
    QCoreApplication::processEvents();
    editor.moveCursor(QTextCursor::Start);
    // One keystroke per iteration: a letter, then the backspace that takes it
    // back on the next, so the text stays the same size.
    bool typed = false;
    for (auto _ : state) {
        if (typed)
            key(editor, Qt::Key_Backspace, QStringLiteral("\b"));
        else
            key(editor, Qt::Key_X, QStringLiteral("x"));
        typed = !typed;
        // The repaint of what changed, as the event loop would do it.
        QCoreApplication::processEvents();
    }
}

} // namespace

BENCHMARK(BM_OpenCommon1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TypeAtTop)->Arg(1)->Arg(0)->ArgName("completion")->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen")
                                                                     : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
