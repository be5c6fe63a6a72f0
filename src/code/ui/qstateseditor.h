#pragma once

#include "qtextdocumenteditor.h"

class QToolButton;

// The editor of the state files (CNS and ST), one tab each, named "States %1"
// after the file. New and open add a tab; save and save as act on the
// current one.
class QStatesEditor : public QTextDocumentEditor
{
    Q_OBJECT

public:
    using QTextDocumentEditor::QTextDocumentEditor;

    int id() const override { return 4; }
    QString name() const override { return QStringLiteral("editor_st"); }
    QString tag() const override { return QStringLiteral("states"); }
    int layoutFlags() const override { return 11; }
    int projectTypes() const override { return 1; }
    int captionId() const override { return 200; }
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;
    QSyntaxTextEditor *document() const override;
    QProjectFile fileKind() const override { return QProjectFile::States; }
    QString openCaption() const override { return tr("Open states"); }
    QString saveAsCaption() const override { return tr("Save states as"); }
    QList<QSyntaxTextEditor *> documentsOf(QProject *project) const override;
    QString discardQuestion() const override
    {
        return tr("Do you really want to discard the changes made in the states?");
    }

    // The state document shown, -1 with none.
    int current() const { return m_current; }
    void setCurrent(int index);

public slots:
    void clear() override;
    void open() override;
    void saveAs() override;
    void tabChanged(int index);
    // The outline lists the variables the states set instead of the sections.
    void varList(bool on);

protected:
    void addOutlineControls(QVBoxLayout *panel) override;

private:
    void fillTabs();

    int m_current = -1;
    bool m_filling = false;
    QToolButton *m_sectionsButton = nullptr;
    QToolButton *m_variablesButton = nullptr;
};
