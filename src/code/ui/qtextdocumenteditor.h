#pragma once

#include "code/qsyntaxtexteditor.h"
#include "project/qproject.h"
#include "shell/qinterfaceeditor.h"

#include <QList>
#include <QMetaObject>
#include <QPointer>

class QEditorRegistry;
class QMugenModel;
class QSyntaxTextEditor;
class QTextWorkspace;
class QTreeView;
class QVBoxLayout;
class QWidget;
struct QAppObjects;

// Base of the editors of the project's text documents: it shows the current
// document in the text workspace, keeps the status fields (cursor, encoding,
// error count) up to date, passes the edit commands to the code widget and
// opens, saves and starts documents afresh.
class QTextDocumentEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    // Status fields of the window used by the text editors.
    enum StatusField { CursorField = 0, EncodingField = 1, ErrorsField = 2 };

    QTextDocumentEditor(const QAppObjects &objects, QEditorRegistry &registry, QTextWorkspace *workspace,
                        QObject *parent = nullptr);

    int workspaceId() const override { return 0; }
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;
    // A project whose documents of this editor have unsaved changes closes
    // only when the user agrees to lose them.
    bool canClose(QProject *project) override;

    // The document the editor shows for the current project; null with none.
    virtual QSyntaxTextEditor *document() const = 0;
    // Every document of `project` this editor edits.
    virtual QList<QSyntaxTextEditor *> documentsOf(QProject *project) const = 0;
    // "Do you really want to discard the changes made in the ...?"
    virtual QString discardQuestion() const = 0;
    // The kind of file the editor's documents are, and the captions of its
    // open and save-as dialogs.
    virtual QProjectFile fileKind() const = 0;
    virtual QString openCaption() const = 0;
    virtual QString saveAsCaption() const = 0;
    // Unsaved changes in any of the current project's documents of this editor.
    bool isModified() const override;
    QTextWorkspace *workspace() const { return m_workspace; }

    // The outline of the shown document, in the editor's side panel.
    void setupPanel() override;
    QTreeView *outline() const { return m_outline; }
    // Sections (2) or variables (1), for every document the editor shows.
    int outlineView() const { return m_outlineView; }
    void setOutlineView(int view);

public slots:
    // One document: start it afresh, load another file into it, save it.
    void clear() override;
    void open() override;
    void save() override;
    void saveAs() override;
    void undo() override;
    void redo() override;
    void cut() override;
    void copy() override;
    void paste() override;
    // Search the shown document from its cursor; a miss says "No text found!".
    void find(const QString &text, const QQuickFindOptions &options) override;
    void replace(const QString &text, const QString &with, const QQuickFindOptions &options, bool all) override;
    void refreshStatus();
    // A click on an outline node shows its line at the top of the text.
    void viewSelItem(const QModelIndex &index);
    // The outline's selection follows the cursor's section.
    void currLineChanged(int line);
    void updated();

protected:
    // Room for controls above the outline; the states editor puts its view switch there.
    virtual void addOutlineControls(QVBoxLayout *panel) { Q_UNUSED(panel); }
    // Shows document() and follows its changes; call when it changes.
    void showCurrent();
    // The error line of the status; the commands editor adds to it.
    virtual QString errorStatusText() const;
    QWidget *window() const;
    bool confirmDiscard(const QString &question) const;
    // Loads `file` into `doc` with the configured code page, telling the user on failure.
    bool loadInto(QSyntaxTextEditor *doc, const QString &file) const;
    bool saveTo(QSyntaxTextEditor *doc, const QString &file) const;
    // Asks a file to open or save as, from the project's folder, which then follows the answer.
    QString askOpen(const QString &caption, const QString &filter) const;
    QString askSave(const QString &caption, const QString &filter, const QString &current) const;

    QMugenModel *m_config = nullptr;
    QEditorRegistry &m_registry;
    QTextWorkspace *m_workspace;

private:
    void detachDocument();
    void showOutline(QSyntaxTextEditor *doc);
    // Keeps the outline below the buttons the preset puts on the panel.
    void fitOutline();
    void rememberExpanded();

    QPointer<QSyntaxTextEditor> m_shown;
    QList<QMetaObject::Connection> m_connections;
    QWidget *m_outlinePane = nullptr;
    QTreeView *m_outline = nullptr;
    int m_outlineView = 2;
    // Titles of the expanded outline rows ("parent/child"), put back after each rebuild.
    QStringList m_expanded;
};
