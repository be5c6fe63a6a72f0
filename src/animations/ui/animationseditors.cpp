#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qinterface.h"

#include <memory>

void registerAnimationEditors(QInterface &shell, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    shell.addWorkspace(std::make_unique<QAnimSpriteWorkspace>());
    shell.addEditor(std::make_unique<QAnimationsEditor>());
}
