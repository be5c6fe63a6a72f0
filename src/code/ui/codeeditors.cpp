#include "codeeditors.h"

#include "qcommandseditor.h"
#include "qdefinitionseditor.h"
#include "qstateseditor.h"
#include "qtextworkspace.h"
#include "shell/qinterface.h"

#include <memory>

void registerCodeEditors(QInterface &shell, const QAppObjects &objects)
{
    Q_UNUSED(objects);
    shell.addWorkspace(std::make_unique<QTextWorkspace>());
    shell.addEditor(std::make_unique<QDefinitionsEditor>());
    shell.addEditor(std::make_unique<QCommandsEditor>());
    shell.addEditor(std::make_unique<QStatesEditor>());
}
