#include "soundseditors.h"

#include "qsoundseditor.h"
#include "shell/qeditorregistry.h"

#include <memory>

QSoundsEditor *registerSoundEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    auto editor = std::make_unique<QSoundsEditor>(objects);
    QSoundsEditor *e = editor.get();
    e->registerControls(registry);
    registry.addEditor(std::move(editor));
    return e;
}
