#include "soundseditors.h"

#include "qsoundseditor.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerSoundEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    registry.addEditor(std::make_unique<QSoundsEditor>());
}
