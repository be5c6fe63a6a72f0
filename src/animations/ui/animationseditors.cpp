#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"
#include "shell/qwindowlayout.h"

#include <QMainWindow>
#include <QMenu>

#include <memory>

void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    auto stage = std::make_unique<QAnimSpriteWorkspace>(objects);
    QMainWindow *window = registry.layout().window();
    stage->registerViewActions(registry.actionManager(), window ? window->findChild<QMenu *>(QStringLiteral("menuView")) : nullptr);
    registry.addWorkspace(std::move(stage));
    registry.addEditor(std::make_unique<QAnimationsEditor>());
}
