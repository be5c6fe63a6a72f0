#include "spriteseditors.h"

#include "paleditor.h"
#include "qorganizereditor.h"
#include "qpaletteseditor.h"
#include "qspriteseditor.h"
#include "qthumbnailseditor.h"
#include "project/qproject.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qwindowlayout.h"
#include "sprites/qsprites.h"

#include <QMainWindow>

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
    // The advanced palette editor, on the palette the panel shows and the
    // sprite on the stage; it lives while it is open.
    QAction2 *advanced = registry.actionManager().addAction({7, -1}, QStringLiteral("pal_advanced"), 131);
    QObject::connect(advanced, &QAction::triggered, palettesEditor, [&registry, palettesEditor] {
        QSprites *s = palettesEditor->sprites();
        if (!s)
            return;
        const int sprite = s->count() ? qBound(0, int(s->index()), s->count() - 1) : -1;
        PalEditor dialog(palettesEditor->project(), palettesEditor->position(), sprite, registry.layout().window());
        QAskUser::exec(&dialog);
    });
    QObject::connect(palettesEditor, &QPalettesEditor::enabled, advanced, &QAction::setEnabled);
    advanced->setEnabled(false);
    registry.addControl(advanced->key(), std::make_unique<QInterfaceControlAction>(advanced));
    registry.addExtraEditor(std::make_unique<QThumbnailsEditor>());
}
