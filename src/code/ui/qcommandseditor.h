#pragma once

#include "project/qproject.h"
#include "qtextdocumenteditor.h"

// The editor of the project's commands (CMD). Its error status also counts the
// distinct command names.
class QCommandsEditor : public QTextDocumentEditor
{
    Q_OBJECT

public:
    using QTextDocumentEditor::QTextDocumentEditor;

    int id() const override { return 3; }
    QString name() const override { return QStringLiteral("editor_cmd"); }
    QString tag() const override { return QStringLiteral("commands"); }
    int layoutFlags() const override { return 3; }
    int projectTypes() const override { return 1; }
    int captionId() const override { return 195; }
    QSyntaxTextEditor *document() const override;
    QProjectFile fileKind() const override { return QProjectFile::Commands; }
    QString openCaption() const override { return tr("Open commands"); }
    QString saveAsCaption() const override { return tr("Save commands as"); }
    QList<QSyntaxTextEditor *> documentsOf(QProject *project) const override { return {project->commands()}; }
    QString discardQuestion() const override
    {
        return tr("Do you really want to discard the changes made in the commands?");
    }
    // Distinct values of "name" in the [Command] sections.
    static int uniqueCommands(const QString &text);

protected:
    QString errorStatusText() const override;

private:
    // The count of the last text counted, by the document's revision.
    mutable const void *m_countedDocument = nullptr;
    mutable int m_countedRevision = -1;
    mutable int m_count = 0;

};
