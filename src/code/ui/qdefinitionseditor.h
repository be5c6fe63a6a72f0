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
    bool isModified() const override;
    QSyntaxTextEditor *document() const override;
    QList<QSyntaxTextEditor *> documentsOf(QProject *project) const override { return {project->definitions()}; }
    QString discardQuestion() const override
    {
        return tr("Do you really want to discard the changes made in the definitions?");
    }

public slots:
    void clear() override;
    void open() override;
    void save() override;
    void saveAs() override;
};
