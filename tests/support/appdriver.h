#pragma once

// The program started for a test that drives its window: questions answered
// and recorded by an AskRecorder, actions, panel controls and editors reached
// by their keys, the way the author reaches them.

#include "approot.h"
#include "askrecorder.h"

#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolwidget.h"

#include <QAction>
#include <QTemporaryDir>

namespace TestSupport {

struct AppDriver
{
    QTemporaryDir home;
    AskRecorder ask; // outlives the program, which may still ask while it closes
    std::unique_ptr<QAppRoot> root;

    // An empty size leaves the window hidden.
    explicit AppDriver(QSize size = QSize(1280, 860))
        : root(startProgram(home.path()))
    {
        if (size.isEmpty())
            return;
        root->window()->resize(size);
        root->window()->show();
    }

    QInterface *ui() const { return root->controller(); }
    QEditorRegistry &registry() const { return ui()->registry(); }
    QAction *action(const char *key) const { return registry().actionManager().action(QString::fromLatin1(key)); }
    void trigger(const char *key) const { action(key)->trigger(); }

    // The widget of a preset control ("spr_grp", ...), wherever the preset put it.
    QWidget *control(const char *name) const
    {
        auto *c = dynamic_cast<QInterfaceControlWidget *>(registry().control(QString::fromLatin1(name)));
        return c ? c->widget() : nullptr;
    }
    template <class T> T *control(const char *name) const { return qobject_cast<T *>(control(name)); }

    // Shows the editor `id` through its button and returns it.
    template <class Editor> Editor *showEditor(int id) const
    {
        registry().editorAction(id)->trigger();
        return static_cast<Editor *>(registry().editor(id));
    }
};

} // namespace TestSupport
