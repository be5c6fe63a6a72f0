#include "docseditors.h"

#include "qreferencedocseditor.h"
#include "qwebbrowserworkspace.h"
#include "shell/qeditorregistry.h"

#include <memory>

void registerDocsEditors(QEditorRegistry &registry, const QAppObjects &objects)
{
    registry.addWorkspace(std::make_unique<QWebBrowserWorkspace>(objects));
    registry.addEditor(std::make_unique<QReferenceDocsEditor>());
}
