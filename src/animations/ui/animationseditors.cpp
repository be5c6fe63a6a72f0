#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects,
                              std::function<QPlainTextEdit *(QWidget *)> textViews)
{
    registry.addWorkspace(std::make_unique<QAnimSpriteWorkspace>(objects));
    registry.addEditor(std::make_unique<QAnimationsEditor>(objects, &registry, std::move(textViews)));
}
