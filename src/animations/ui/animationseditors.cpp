#include "animationseditors.h"

#include "qanimationseditor.h"
#include "qanimspriteworkspace.h"
#include "shell/qeditorregistry.h"
#include "shell/qwindowlayout.h"

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
