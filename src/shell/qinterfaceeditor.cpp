#include "qinterfaceeditor.h"

void QInterfaceEditor::activate(bool reload)
{
    if (reload)
        m_active = true;
}

void QInterfaceEditor::deactivate()
{
    m_active = false;
}

bool QInterfaceEditor::canClose(QProject *)
{
    return true;
}

void QInterfaceEditor::retranslate(const QTranslationUnit &)
{
}
