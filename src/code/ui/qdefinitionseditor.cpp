#include "qdefinitionseditor.h"

#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"

QSyntaxTextEditor *QDefinitionsEditor::document() const
{
    return m_project ? m_project->definitions() : nullptr;
}

