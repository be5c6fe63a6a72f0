#include "codeeditors.h"

#include "qcommandseditor.h"
#include "qdefinitionseditor.h"
#include "qstateseditor.h"
#include "qtextworkspace.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfaceeditor.h"
#include "project/qproject.h"
#include "base/qmugenmodel.h"
#include "shell/qappobjects.h"

#include <QListView>

#include <QFileInfo>

#include <memory>

void registerCodeEditors(QEditorRegistry &registry, const QAppObjects &objects,
                         const std::function<QList<QProject *>()> &projects)
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

    // Snippets for every text editor; the controller library for the states.
    QActionManager &am = registry.actionManager();
    actions << am.addAction({0, 3, 4, -1}, QStringLiteral("code_snippet_insert"), 315, false, ws, SLOT(snipInsert()));
    QList<QAction *> library;
    library << am.addAction({4, -1}, QStringLiteral("st_sctrl_new"), 210, false, ws, SLOT(sCtrlNew()))
            << am.addAction({4, -1}, QStringLiteral("st_sctrl_edit"), 211, false, ws, SLOT(sCtrlEdit()))
            << am.addAction({4, -1}, QStringLiteral("st_sctrl_delete"), 212, false, ws, SLOT(sCtrlDel()));
    const bool showList = objects.config ? objects.config->flag(QStringLiteral("show_sctrl_list"), true) : true;
    const bool showBar = objects.config ? objects.config->flag(QStringLiteral("show_text_bar"), true) : true;
    am.addAction({4, -1}, QStringLiteral("view_sctrl_list"), 25, true, ws, SLOT(showSctrlListTextBar(bool)))
        ->setChecked(showList);
    QAction *textBar = am.addAction({4, -1}, QStringLiteral("view_text_bar"), 26, true, ws, SLOT(showTextBar(bool)));
    textBar->setChecked(showBar);
    auto *separator = new QAction(ws->sctrlList());
    separator->setSeparator(true);
    library << separator << textBar;
    ws->sctrlList()->addActions(library);
    ws->sctrlList()->setContextMenuPolicy(Qt::ActionsContextMenu);
    if (projects) {
        ws->setDocumentSource([projects] {
            QList<QSyntaxTextEditor *> docs;
            for (QProject *p : projects()) {
                docs << p->definitions() << p->commands();
                for (int i = 0; i < p->statesCount(); ++i)
                    docs << p->state(i);
            }
            return docs;
        });
    }
    ws->setContextActions(actions);

    // Each text editor's own new, open, save and save as, for the action
    // list, the shortcuts and the panels.
    const struct
    {
        int editor;
        const char *prefix;
        int caption;
    } files[] = {{0, "def", 65}, {3, "cmd", 196}, {4, "st", 201}};
    for (const auto &f : files) {
        QInterfaceEditor *editor = registry.editor(f.editor);
        const char *const suffixes[] = {"_new", "_open", "_save", "_saveas"};
        const char *const targets[] = {SLOT(clear()), SLOT(open()), SLOT(save()), SLOT(saveAs())};
        for (int i = 0; editor && i < 4; ++i) {
            const QString key = QString::fromLatin1(f.prefix) + QLatin1String(suffixes[i]);
            QAction2 *a = registry.actionManager().addAction({f.editor, -1}, key, f.caption + i, false, editor, targets[i]);
            registry.addControl(key, std::make_unique<QInterfaceControlAction>(a));
        }
    }
}

bool showTextLine(QEditorRegistry &registry, QProject *project, const QString &file, uint line)
{
    if (!project || file.isEmpty())
        return false;
    const QFileInfo wanted(file);
    const auto from = [&wanted](const QSyntaxTextEditor *doc) {
        const QString name = doc->fileName();
        if (name.isEmpty())
            return false;
        const QFileInfo info(name);
        return wanted.isAbsolute() ? info.absoluteFilePath() == wanted.absoluteFilePath()
                                   : info.fileName() == wanted.fileName();
    };
    int editor = -1;
    if (from(project->definitions()))
        editor = 0;
    else if (from(project->commands()))
        editor = 3;
    for (int i = 0; editor < 0 && i < project->statesCount(); ++i) {
        if (from(project->state(i))) {
            editor = 4;
            static_cast<QStatesEditor *>(registry.editor(4))->setCurrent(i);
        }
    }
    auto *workspace = static_cast<QTextWorkspace *>(registry.workspace(0));
    if (editor < 0 || !registry.editor(editor) || !workspace)
        return false;
    registry.editorSwitch(editor);
    workspace->editor()->gotoLine(line, 2);
    workspace->editor()->setFocus();
    return true;
}
