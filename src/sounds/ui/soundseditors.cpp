#include "soundseditors.h"

#include "qsoundseditor.h"
#include "shell/qinterface.h"

#include <memory>

void registerSoundEditors(QInterface &shell, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    shell.addEditor(std::make_unique<QSoundsEditor>());
}
