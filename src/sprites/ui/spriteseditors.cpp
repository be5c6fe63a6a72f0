#include "spriteseditors.h"

#include "qorganizereditor.h"
#include "qpaletteseditor.h"
#include "qspriteseditor.h"
#include "qthumbnailseditor.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerSpriteEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    auto sprites = std::make_unique<QSpritesEditor>(registry, objects);
    auto palettes = std::make_unique<QPalettesEditor>(registry, objects);
    QSpritesEditor *spritesEditor = sprites.get();
    QPalettesEditor *palettesEditor = palettes.get();
    registry.addEditor(std::move(sprites));
    registry.addExtraEditor(std::make_unique<QOrganizerEditor>());
    registry.addExtraEditor(std::move(palettes));
    palettesEditor->setupControls();
    spritesEditor->setPalettes(palettesEditor);
    registry.addExtraEditor(std::make_unique<QThumbnailsEditor>());
}
