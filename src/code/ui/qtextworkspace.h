#pragma once

#include "code/qsyntaxtexteditor.h"
#include "code/ui/qtexteditor.h"
#include "shell/qinterfaceworkspace.h"

#include <QListView>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTimer>

#include <functional>

class QAction;
class QComboBox;
class QMugenModel;
class QSCtrlManager;
class QSnippetManager;
class QSplitter;
class QColorsetManager;
class SyntaxFormats;
class QMugenSyntaxProperties;
class QTabBar;
class QTextDocument;
struct QAppObjects;

// The central page of the text editors: the code widget showing one of the
// project's documents, the tabs of the state files above it and the list of
// the shown document's syntax issues below it. Each document keeps its own
// cursor and scroll position while another one is shown.
class QTextWorkspace : public QInterfaceWorkspace
{
    Q_OBJECT

public:
    explicit QTextWorkspace(const QAppObjects &objects, QObject *parent = nullptr);
    ~QTextWorkspace() override;

    int id() const override { return 0; }
    QString name() const override { return QStringLiteral("text"); }
    void applyConfig() override;

    QTextEditor *editor() const { return m_editor; }
    // The tabs of the state files; hidden unless an editor shows some.
    QTabBar *tabBar() const { return m_tabs; }
    QComboBox *issueBox() const { return m_issues; }
    // The document shown, null when the page is empty.
    QSyntaxTextEditor *document() const { return m_document; }
    // Shows `document` (null: an empty, read-only page), keeping the place
    // of the one shown before for its next showing.
    void showDocument(QSyntaxTextEditor *document);

    // Issues of a kind (BlockIssue::Kind) in the whole document.
    static int issueCount(const QTextDocument *document, int kind);
    // The commands the editor's context menu offers after the standard ones.
    void setContextActions(const QList<QAction *> &actions) { m_contextActions = actions; }

    // Snippets and the state-controller library (qtextworkspace_library.cpp).
    QComboBox *snippetBox() const { return m_snippetBox; }
    QListView *sctrlList() const { return m_sctrlList; }
    QPlainTextEdit *textBar() const { return m_textBar; }
    // Inserts `code` at the cursor as one undo step; a "CURSOR" in it is
    // taken out and marks where the caret ends.
    void insertCode(const QString &code);
    // The library belongs to the states editor: the others hide it.
    void setSCtrlPanelAllowed(bool allowed);
    // Every text document of the open projects, for applying options to all.
    void setDocumentSource(std::function<QList<QSyntaxTextEditor *>()> source) { m_documentSource = std::move(source); }

public slots:
    void updateErrorList();
    void errorActivated(int row);
    void goToLine();
    void nextError() { findIssue(1, true); }
    void prevError() { findIssue(1, false); }
    void nextDepr() { findIssue(0, true); }
    void prevDepr() { findIssue(0, false); }
    void comment();

    void showSctrlListTextBar(bool on);
    void showTextBar(bool on);
    void snipInsert();
    void snipActivated(int row);
    void insertSCtrl(const QModelIndex &index);
    void selectSCtrl(const QModelIndex &index);
    void sCtrlNew();
    void sCtrlEdit();
    void sCtrlDel();

signals:
    // The issues of the shown document were counted again.
    void issuesUpdated();

private:
    // Moves the cursor to the next (or previous) issue of `kind`, without
    // wrapping at either end; false when there is none.
    bool findIssue(int kind, bool forward);
    void savePosition();
    void showContextMenu(const QPoint &pos);

    QMugenModel *m_config = nullptr;
    QPointer<QTextEditor> m_editor;
    QTabBar *m_tabs = nullptr;
    QComboBox *m_issues = nullptr;
    QTextDocument *m_empty = nullptr;
    QPointer<QSyntaxTextEditor> m_document;
    QTimer m_issueTimer;
    QMetaObject::Connection m_contentsConnection;
    QMetaObject::Connection m_hierarchyConnection;
    QList<QAction *> m_contextActions;

    // Snippets and the state-controller library.
    void buildLibrary(const QAppObjects &objects);
    void updateLibraryVisibility();
    void rehighlightAll(QWidget *parent);
    // Edits the controller `name` (empty: a new one) and saves it under a
    // name the user gives; true when a file was written.
    bool editSCtrl(const QString &name);
    QSnippetManager *m_snippets = nullptr;
    QSCtrlManager *m_sctrls = nullptr;
    QColorsetManager *m_colorsets = nullptr;
    SyntaxFormats *m_formats = nullptr;
    QMugenSyntaxProperties *m_mugenSyntax = nullptr;
    QString m_userSCtrls; // where the user's own controllers are written
    QComboBox *m_snippetBox = nullptr;
    QSplitter *m_libraryPanel = nullptr;
    QListView *m_sctrlList = nullptr;
    QPlainTextEdit *m_textBar = nullptr;
    bool m_sctrlAllowed = false;
    std::function<QList<QSyntaxTextEditor *>()> m_documentSource;
};
