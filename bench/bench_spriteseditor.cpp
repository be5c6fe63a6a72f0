// The sprites tab of the largest sample character: the time from pressing the
// sprites button (the project already open) to the first sprite on the stage,
// and the time of one step while the next-sprite key is held.
// Targets: the first sprite under 50 ms, a step under 5 ms.
#include "base/qapppaths.h"
#include "qapproot.h"
#include "render/qsprrender.h"
#include "shell/mainwindow.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterface.h"
#include "sprites/qsprites.h"
#include "sprites/ui/qspriteseditor.h"

#include <QApplication>
#include <QDir>
#include <QKeyEvent>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

struct Program
{
    QTemporaryDir home;
    std::unique_ptr<QAppRoot> root;
    QSpritesEditor *editor = nullptr;

    Program()
    {
        QStandardPaths::setTestModeEnabled(true);
        QAskUser::setMessageHandler([](QMessageBox::Icon, const QString &, const QString &, QMessageBox::StandardButtons,
                                       QMessageBox::StandardButton) { return QMessageBox::Yes; });
        root = std::make_unique<QAppRoot>(QAppPaths(home.path(), home.path(), {QCoreApplication::applicationDirPath()}));
        root->window()->setCloseQuestion([](QWidget *) { return true; });
        root->window()->resize(1280, 860);
        root->window()->show();
        root->controller()->openProject(QStringLiteral(BF_TESTDATA_DIR "/engine-sample/chars/kfm720/kfm720.def"));
        editor = static_cast<QSpritesEditor *>(root->controller()->registry().editor(1));
    }
    QEditorRegistry &registry() { return root->controller()->registry(); }
};

Program &program()
{
    static Program p;
    return p;
}

void firstSpriteShown(benchmark::State &state)
{
    Program &p = program();
    for (auto _ : state) {
        state.PauseTiming();
        p.registry().editorAction(0)->trigger();
        QApplication::processEvents();
        state.ResumeTiming();
        p.registry().editorAction(1)->trigger();
        p.editor->stageHost()->repaint();
    }
    state.counters["sprites"] = p.editor->sprites()->count();
}

void stepWithTheKey(benchmark::State &state)
{
    Program &p = program();
    p.registry().editorAction(1)->trigger();
    QWidget *host = p.editor->stageHost();
    const int count = p.editor->sprites()->count();
    for (auto _ : state) {
        if (p.editor->position() + 1 >= count)
            p.editor->definePos(0);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier, QString(), true);
        QApplication::sendEvent(host, &key);
        host->repaint();
    }
}

} // namespace

BENCHMARK(firstSpriteShown)->Unit(benchmark::kMillisecond);
BENCHMARK(stepWithTheKey)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    program().root.reset();
    return 0;
}
