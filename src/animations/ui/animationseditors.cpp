#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    registry.addWorkspace(std::make_unique<QAnimSpriteWorkspace>());
    registry.addEditor(std::make_unique<QAnimationsEditor>());
}
