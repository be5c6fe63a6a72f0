#include "spriteseditors.h"

#include "qorganizereditor.h"
#include "qpaletteseditor.h"
#include "qspriteseditor.h"
#include "qthumbnailseditor.h"
#include "shell/qinterface.h"

#include <memory>

void registerSpriteEditors(QInterface &shell, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    shell.addEditor(std::make_unique<QSpritesEditor>());
    shell.addExtraEditor(std::make_unique<QOrganizerEditor>());
    shell.addExtraEditor(std::make_unique<QPalettesEditor>());
    shell.addExtraEditor(std::make_unique<QThumbnailsEditor>());
}
