#include "codeeditors.h"

#include "qcommandseditor.h"
#include "qdefinitionseditor.h"
#include "qstateseditor.h"
#include "qtextworkspace.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerCodeEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    registry.addWorkspace(std::make_unique<QTextWorkspace>());
    registry.addEditor(std::make_unique<QDefinitionsEditor>());
    registry.addEditor(std::make_unique<QCommandsEditor>());
    registry.addEditor(std::make_unique<QStatesEditor>());
}
