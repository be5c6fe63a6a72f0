#include "spriteseditors.h"

#include "qorganizereditor.h"
#include "qpaletteseditor.h"
#include "qspriteseditor.h"
#include "qthumbnailseditor.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerSpriteEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    registry.addEditor(std::make_unique<QSpritesEditor>(registry, objects));
    registry.addExtraEditor(std::make_unique<QOrganizerEditor>());
    registry.addExtraEditor(std::make_unique<QPalettesEditor>());
    registry.addExtraEditor(std::make_unique<QThumbnailsEditor>());
}
