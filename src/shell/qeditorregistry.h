#pragma once

#include "code/qquickfindoption.h"
#include "qtoolbarentry.h"

#include <QMap>
#include <QObject>

#include <map>
#include <memory>

class QAction;
class QActionGroup;
class QActionManager;
class QInterfaceControl;
class QInterfaceEditor;
class QInterfaceExtraEditor;
class QInterfaceWorkspace;
class QProject;
class QToolBar;
class QTranslationUnit;
class QWidget;
class QWindowLayout;

// The editors, workspaces, extra editors and preset controls, each filed by
// its number or name, and which of them is current. Registration may come in
// any order: pages and buttons stand in the order of the numbers. Edit
// commands reach the current editor through the signals below; the registry
// owns everything registered with it.
class QEditorRegistry : public QObject
{
    Q_OBJECT

public:
    static constexpr int NoEditor = 8;
    static constexpr int NoWorkspace = 3;
    static constexpr int NoExtraEditor = 3;

    QEditorRegistry(QWindowLayout &layout, QActionManager &actions, QObject *parent = nullptr);
    ~QEditorRegistry() override;

    void addWorkspace(std::unique_ptr<QInterfaceWorkspace> workspace);
    void addEditor(std::unique_ptr<QInterfaceEditor> editor);
    void addExtraEditor(std::unique_ptr<QInterfaceExtraEditor> editor);
    void addControl(const QString &name, std::unique_ptr<QInterfaceControl> control);
    void setControlEnabled(const QString &name, bool enabled);
    // Lets the current project go and deletes everything registered.
    void clear();

    QActionManager &actionManager() { return m_actions; }
    QWindowLayout &layout() { return m_layout; }

    // What a preset lays out.
    QMap<QString, QToolBarEntry> &toolbarEntries() { return m_toolbarEntries; }
    QInterfaceControl *control(const QString &name) const;
    QList<QInterfaceControl *> controls() const;
    QWidget *editorPanel(const QString &tag) const { return m_editorPanels.value(tag); }
    QWidget *extraPanel(const QString &name) const { return m_extraPanels.value(name); }

    QInterfaceEditor *editor(int id) const;
    QInterfaceWorkspace *workspace(int id) const;
    QInterfaceExtraEditor *extraEditor(int id) const;
    QAction *editorAction(int id) const { return m_editorActions.value(id); }
    QList<int> editorIds() const { return m_editorActions.keys(); }
    QActionGroup *editorGroup() const { return m_editorGroup; }
    int currentEditorId() const { return m_currentEditor; }
    int currentWorkspaceId() const { return m_currentWorkspace; }
    int currentExtraEditorId() const { return m_currentExtra; }

    // Asks every editor, each in turn and all of them, whether the project
    // may close; true only if none refuses.
    bool canCloseProject(QProject *project);
    // Shows each editor's button as the project type allows, and moves the
    // current editor to a visible one if it lost its button.
    void applyProjectType(int projectType);
    // Hands a project to every extra editor, editor and workspace.
    void setCurrentProject(QProject *project);
    void applyConfig();
    void retranslate(const QTranslationUnit &translation);
    // Shows the panels as the current editor's flags and the view switches allow.
    void showPanels();

public slots:
    void editorSwitch(QAction *action);
    void editorSwitch(int id);
    void setExtraEditor(int id);
    void updateEditorName();
    void updateExtraEditorName();
    void editorNew();
    void editorOpen();
    void editorSave();
    void editorSaveAs();

signals:
    void editUndo();
    void editRedo();
    void editCut();
    void editCopy();
    void editPaste();
    void editFind(const QString &text, const QQuickFindOptions &options);
    void editReplace(const QString &text, const QString &with, const QQuickFindOptions &options, bool all);

private:
    void connectEditor(QInterfaceEditor *editor);
    void disconnectEditor(QInterfaceEditor *editor);
    void fillToolBar(QToolBar *bar, const QList<const QToolBarEntry *> &entries);

    QWindowLayout &m_layout;
    QActionManager &m_actions;
    QMap<QString, QToolBarEntry> m_toolbarEntries;
    QMap<QString, QWidget *> m_editorPanels;
    QMap<QString, QWidget *> m_extraPanels;
    QMap<int, QWidget *> m_editorPages;
    QMap<int, QWidget *> m_extraPages;
    QMap<int, QWidget *> m_workspacePages;
    QActionGroup *m_editorGroup = nullptr;
    std::map<QString, std::unique_ptr<QInterfaceControl>> m_controls;

    int m_currentEditor = NoEditor;
    std::map<int, std::unique_ptr<QInterfaceEditor>> m_editors;
    QMap<int, QAction *> m_editorActions;
    int m_currentExtra = NoExtraEditor;
    std::map<int, std::unique_ptr<QInterfaceExtraEditor>> m_extraEditors;
    int m_currentWorkspace = NoWorkspace;
    std::map<int, std::unique_ptr<QInterfaceWorkspace>> m_workspaces;
};
