#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"
#include "shell/qwindowlayout.h"
#include "project/qproject.h"

#include <QFileInfo>

#include <QMainWindow>
#include <QMenu>

#include <memory>

void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects,
                              std::function<QPlainTextEdit *(QWidget *)> textViews,
                              std::function<QList<QProject *>()> openProjects)
{
    auto stage = std::make_unique<QAnimSpriteWorkspace>(objects);
    QMainWindow *window = registry.layout().window();
    stage->registerViewActions(registry.actionManager(), window ? window->findChild<QMenu *>(QStringLiteral("menuView")) : nullptr);
    registry.addWorkspace(std::move(stage));
    auto editor = std::make_unique<QAnimationsEditor>(objects, &registry, std::move(textViews));
    editor->setOpenProjects(std::move(openProjects));
    registry.addEditor(std::move(editor));
}

bool showAnimationLine(QEditorRegistry &registry, QProject *project, const QString &file, uint line)
{
    auto *editor = qobject_cast<QAnimationsEditor *>(registry.editor(2));
    if (!project || !editor || file.isEmpty())
        return false;
    const QString name = QFileInfo(file).fileName();
    const QString def = project->definitions()->fileName();
    if (!def.isEmpty() && QFileInfo(def).fileName().compare(name, Qt::CaseInsensitive) == 0)
        return false;
    if (project->animations()->fileName().compare(name, Qt::CaseInsensitive) != 0)
        return false;
    registry.editorSwitch(2);
    return editor->showLine(line);
}
