#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects,
                              std::function<QPlainTextEdit *(QWidget *)> textViews,
                              std::function<QList<QProject *>()> openProjects)
{
    registry.addWorkspace(std::make_unique<QAnimSpriteWorkspace>(objects));
    auto editor = std::make_unique<QAnimationsEditor>(objects, &registry, std::move(textViews));
    editor->setOpenProjects(std::move(openProjects));
    registry.addEditor(std::move(editor));
}
