#include "codeeditors.h"

#include "qcommandseditor.h"
#include "qdefinitionseditor.h"
#include "qstateseditor.h"
#include "qtextworkspace.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerCodeEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    auto workspace = std::make_unique<QTextWorkspace>(objects);
    QTextWorkspace *ws = workspace.get();
    registry.addWorkspace(std::move(workspace));
    registry.addEditor(std::make_unique<QDefinitionsEditor>(objects, registry, ws));
    registry.addEditor(std::make_unique<QCommandsEditor>(objects, registry, ws));
    registry.addEditor(std::make_unique<QStatesEditor>(objects, registry, ws));

    // The commands of the code widget, for the three text editors.
    struct Command
    {
        const char *key;
        int caption;
        const char *slot;
    };
    const Command commands[] = {
        {"txt_goto", 58, SLOT(goToLine())},
        {"txt_prev_error", 59, SLOT(prevError())},
        {"txt_next_error", 60, SLOT(nextError())},
        {"txt_prev_deprecation", 61, SLOT(prevDepr())},
        {"txt_next_deprecation", 62, SLOT(nextDepr())},
        {"txt_comment", 63, SLOT(comment())},
    };
    QList<QAction *> actions;
    for (const Command &c : commands)
        actions << registry.actionManager().addAction({0, 3, 4, -1}, QString::fromLatin1(c.key), c.caption, false,
                                                      ws, c.slot);
    ws->setContextActions(actions);
}
