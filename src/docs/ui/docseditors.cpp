#include "docseditors.h"

#include "qreferencedocseditor.h"
#include "qwebbrowserworkspace.h"
#include "shell/qinterface.h"

#include <memory>

void registerDocsEditors(QInterface &shell, const QAppObjects &objects)
{
    shell.addWorkspace(std::make_unique<QWebBrowserWorkspace>(objects));
    shell.addEditor(std::make_unique<QReferenceDocsEditor>());
}
