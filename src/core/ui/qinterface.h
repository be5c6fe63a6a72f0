#pragma once

#include "code/qquickfindoption.h"
#include "core/qactionmanager.h"
#include "qtoolbarentry.h"

#include <QMap>
#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <memory>

class QAction;
class QActionGroup;
class QDockWidget;
class QListView;
class QMainWindow;
class QMenu;
class QPanelWidget;
class QProject;
class QStackedLayout;
class QTabBar;
class QToolBar;
class QWidget;
class QInterfaceControl;
class QInterfaceEditor;
class QInterfaceExtraEditor;
class QInterfaceWorkspace;
// controller
class ErrorDlg;
class QHistoryManager;
class QLabel;
class QModelIndex;
struct QRGBPal;
enum class QProjectFile : int;

// The controller of the main window: it lays out the central widget, keeps
// the registered editors, workspaces, extra editors and preset controls, and
// routes edit commands to the current editor.
class QInterface : public QObject
{
    Q_OBJECT

public:
    static constexpr int NoEditor = 8;
    static constexpr int NoWorkspace = 3;
    static constexpr int NoExtraEditor = 3;

    QInterface(QMainWindow *window, QDockWidget *actionDock, QListView *actionList);
    ~QInterface() override;

    // The finishing step of start-up, once everything is registered.
    void init();

    // Registration (the registry takes ownership).
    void addWorkspace(std::unique_ptr<QInterfaceWorkspace> workspace);
    void addEditor(std::unique_ptr<QInterfaceEditor> editor);
    void addExtraEditor(std::unique_ptr<QInterfaceExtraEditor> editor);
    void addControl(const QString &name, std::unique_ptr<QInterfaceControl> control);
    void setControlEnabled(const QString &name, bool enabled);

    QActionManager &actionManager() { return m_actions; }
    QMainWindow *window() const { return m_window; }

    // What a preset lays out.
    QMap<QString, QToolBarEntry> &toolbarEntries() { return m_toolbarEntries; }
    QInterfaceControl *control(const QString &name) const;
    QList<QInterfaceControl *> controls() const;
    QWidget *editorPanel(const QString &tag) const { return m_editorPanels.value(tag); }
    QWidget *extraPanel(const QString &name) const { return m_extraPanels.value(name); }
    QPanelWidget *leftPanel() const { return m_leftPanel; }
    QPanelWidget *rightPanel() const { return m_rightPanel; }
    QToolBar *mainToolBar() const { return m_mainToolBar; }
    QToolBar *extraToolBar() const { return m_extraToolBar; }
    QToolBar *editorToolBar() const { return m_editorToolBar; }

    QInterfaceEditor *editor(int id) const;
    QInterfaceWorkspace *workspace(int id) const;
    QInterfaceExtraEditor *extraEditor(int id) const;
    QAction *editorAction(int id) const { return m_editorActions.value(id); }
    QActionGroup *editorGroup() const { return m_editorGroup; }
    int currentEditorId() const { return m_currentEditor; }
    int currentWorkspaceId() const { return m_currentWorkspace; }
    int currentExtraEditorId() const { return m_currentExtra; }
    QProject *currentProject() const { return m_currentProject; }
    QList<QProject *> projects() const { return m_projects; }
    // Asks every editor, each in turn and all of them, whether the project
    // may close; true only if none refuses.
    bool canCloseProject(QProject *project);
    QTabBar *tabBar() const { return m_tabBar; }

    // Shows each editor's button as the project type allows, and moves the
    // current editor to a visible one if it lost its button.
    void applyProjectType(int projectType);

public slots:
    void editorSwitch(QAction *action);
    void editorSwitch(int id);
    void setExtraEditor(int id);
    // Hands a new current project to every extra editor, editor and workspace.
    void setCurrentProject(QProject *project);
    void newProject(bool withTemplate = false);
    void applyConfig();
    void retranslate();
    void updateEditorName();
    void updateExtraEditorName();
    void rebuildToolMenu();
    void toolActivated();
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
    void editReplace(const QString &text, const QString &with, const QQuickFindOptions &options,
                     bool all);

private:
    void buildLayout();
    void buildActions();
    void buildToolBars();
    void restoreState();
    void saveState();
    void connectEditor(QInterfaceEditor *editor);
    void disconnectEditor(QInterfaceEditor *editor);
    void fillToolBar(QToolBar *bar, const QList<const QToolBarEntry *> &entries);
    void showPanels();

    QActionManager m_actions;
    QPointer<QDockWidget> m_actionDock;
    QPointer<QListView> m_actionList;
    QMainWindow *m_window;

    QToolBar *m_mainToolBar = nullptr;
    QToolBar *m_extraToolBar = nullptr;
    QToolBar *m_editorToolBar = nullptr;
    QMap<QString, QToolBarEntry> m_toolbarEntries;

    QPanelWidget *m_leftPanel = nullptr;
    QPanelWidget *m_rightPanel = nullptr;
    QStackedLayout *m_leftStack = nullptr;
    QStackedLayout *m_rightStack = nullptr;
    QMap<QString, QWidget *> m_editorPanels;
    QMap<QString, QWidget *> m_extraPanels;
    QMap<int, QWidget *> m_editorPages;
    QMap<int, QWidget *> m_extraPages;

    QActionGroup *m_editorGroup = nullptr;
    std::map<QString, std::unique_ptr<QInterfaceControl>> m_controls;

    QTabBar *m_tabBar = nullptr;
    QProject *m_currentProject = nullptr;
    QList<QProject *> m_projects;
    int m_projectCounter = 0;

    int m_currentEditor = NoEditor;
    std::map<int, std::unique_ptr<QInterfaceEditor>> m_editors;
    QMap<int, QAction *> m_editorActions;
    int m_currentExtra = NoExtraEditor;
    std::map<int, std::unique_ptr<QInterfaceExtraEditor>> m_extraEditors;
    QStackedLayout *m_centralStack = nullptr;
    int m_currentWorkspace = NoWorkspace;
    std::map<int, std::unique_ptr<QInterfaceWorkspace>> m_workspaces;
    QMap<int, QWidget *> m_workspacePages;

    bool m_showLeftPanel = true;
    bool m_showRightPanel = true;

    // ---- controller: menus, project tabs, file flows, window state ---------
public:
    static constexpr int StatusFieldCount = 4;
    static constexpr int HistorySize = 20;

    int projectCount() const { return int(m_projects.size()); }
    QLabel *statusField(int i) const { return m_statusFields.value(i); }
    // Shows text in a status field; an empty text hides the field, so that
    // the project status keeps its room in a narrow window.
    void setStatusText(int field, const QString &text);
    QLabel *projectStatusLabel() const { return m_projectStatus; }
    QHistoryManager *history() const { return m_history; }
    QMenu *recentMenu() const { return m_recentMenu; }
    ErrorDlg *issuesDialog() const { return m_issues; }
    // The text of the project status field for a type and engine version.
    static QString projectStatusText(int projectType, quint32 version);
    // True for a project nobody has touched: empty DEF, sprites, palettes,
    // animations, commands, states and sounds.
    static bool isUntouched(QProject *project);

    // A jump handler answers true when it took the place of an issue line.
    using JumpHandler = std::function<bool(const QString &file, uint line)>;
    void addJumpHandler(const QString &context, JumpHandler handler);

    // Where shortcuts.xml and history.xml live: beside the program unless a
    // folder is set (tests keep their runs apart this way).
    static void setStateFolder(const QString &folder);
    static QString stateFile(const QString &name);
    // Reads and writes what the controller keeps between runs. Called by
    // init() and the destructor; public so that a reset can run them again.
    void restoreControllerState();
    void saveControllerState();

public slots:
    void fileNew();
    void fileOpen();
    void openProject(const QString &fileName);
    void fileClose();
    void fileCloseAll();
    void fileCloseAllCurr();
    void fileSave();
    void fileSaveAs();
    void fileBackup();
    void fileLoadBackup();
    void fileRunMugen();
    void editFindToggled(bool show);
    void viewLeftPanel(bool show);
    void viewRightPanel(bool show);
    void viewOrganizer(bool show);
    void viewActions(bool show);
    void toolsOptions();
    void toolsScript();
    void helpAbout();
    void helpReportBug();
    void restoreBugReport();
    void actionChanged(const QModelIndex &index);

    QString saveFileName(QProjectFile kind, const QString &folder);
    quint32 spritesVersionToSave(quint32 version);
    bool canSave(QProject *project, QProjectFile kind, quint32 version);
    void charPalette(QRGBPal *palette);
    void changeTabName(QProject *project, const QString &name);
    void projTypeChanged(QProject *project);
    void projVerChanged(QProject *project);
    void itemClicked(const QString &file, uint line);
    void projTabsChanged(int index);
    void projTabsMoved(int from, int to);
    void projTabsClosed(int index);

private:
    void buildControllerUi();
    void buildProjectMenu();
    void buildViewMenu();
    void buildToolsAndHelpMenus();
    void buildStatusBar();
    void releaseProjects();
    QProject *createProject();
    void connectProject(QProject *project);
    void addProjectTab(QProject *project);
    bool closeProject(int index);
    void updateProjectStatus();
    void askPaletteSaves(QProject *project, const QString &title, bool oneByOne);
    // Runs a load, save or copy of `project` under a progress window that
    // hears the project and its sprite store and can cancel both; the store's
    // own error boxes wait, as the project reports its failures as a whole.
    bool runProjectWork(QProject *project, const QString &caption, const std::function<bool()> &work);
    // Tells the user, and the log, which files failed and why; nothing if none did.
    void reportFailures(const QString &title, const QString &intro, const QStringList &failures);
    void spriteOrderWarning(QProject *project, const QList<uint> &sprites);
    void registerDialog(const QString &tag, QWidget *dialog);

    QList<QLabel *> m_statusFields;
    QLabel *m_projectStatus = nullptr;
    QMenu *m_recentMenu = nullptr;
    QHistoryManager *m_history = nullptr; // child of this object
    ErrorDlg *m_issues = nullptr;
    QAction *m_viewQuickFind = nullptr;
    QAction *m_viewLeft = nullptr;
    QAction *m_viewRight = nullptr;
    QAction *m_viewActions = nullptr;
    QAction *m_viewOrganizer = nullptr;
    QMap<QString, QPointer<QWidget>> m_dialogs;
    QMap<QString, JumpHandler> m_jumpHandlers;
    bool m_closingAll = false;
    int m_projectWork = 0; // project loads and saves under way
    // ---- end of controller ---------------------------------------------------
};
