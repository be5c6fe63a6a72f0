#pragma once

#include "project/qproject.h"
#include "qtextdocumenteditor.h"

// The editor of the project's DEF text.
class QDefinitionsEditor : public QTextDocumentEditor
{
    Q_OBJECT

public:
    using QTextDocumentEditor::QTextDocumentEditor;

    int id() const override { return 0; }
    QString name() const override { return QStringLiteral("editor_def"); }
    QString tag() const override { return QStringLiteral("definitions"); }
    int layoutFlags() const override { return 3; }
    int projectTypes() const override { return 15; }
    int captionId() const override { return 64; }
    QSyntaxTextEditor *document() const override;
    QProjectFile fileKind() const override { return QProjectFile::Definitions; }
    QString openCaption() const override { return tr("Open definitions"); }
    QString saveAsCaption() const override { return tr("Save definitions as"); }
    QList<QSyntaxTextEditor *> documentsOf(QProject *project) const override { return {project->definitions()}; }
    QString discardQuestion() const override
    {
        return tr("Do you really want to discard the changes made in the definitions?");
    }
};
