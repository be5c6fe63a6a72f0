#include "qdefinitionseditor.h"

#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"

QSyntaxTextEditor *QDefinitionsEditor::document() const
{
    return m_project ? m_project->definitions() : nullptr;
}

bool QDefinitionsEditor::isModified() const
{
    const QSyntaxTextEditor *doc = document();
    return doc && doc->isModified();
}

void QDefinitionsEditor::clear()
{
    QSyntaxTextEditor *doc = document();
    if (doc && confirmDiscard(discardQuestion()))
        doc->clear();
}

void QDefinitionsEditor::open()
{
    QSyntaxTextEditor *doc = document();
    if (!doc || !confirmDiscard(discardQuestion()))
        return;
    const QString file = askOpen(tr("Open definitions"), QProject::fileFilter(QProjectFile::Definitions));
    if (!file.isEmpty())
        loadInto(doc, file);
}

void QDefinitionsEditor::save()
{
    QSyntaxTextEditor *doc = document();
    if (!doc)
        return;
    if (doc->fileName().isEmpty())
        saveAs();
    else
        saveTo(doc, doc->fileName());
}

void QDefinitionsEditor::saveAs()
{
    QSyntaxTextEditor *doc = document();
    if (!doc)
        return;
    const QString file = askSave(tr("Save definitions as"), QProject::fileFilter(QProjectFile::Definitions), doc->fileName());
    if (!file.isEmpty())
        saveTo(doc, file);
}
