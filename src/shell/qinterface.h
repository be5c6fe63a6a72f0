#pragma once

#include "qactionmanager.h"
#include "qappobjects.h"

#include <QMap>
#include <QObject>
#include <QPointer>

#include <functional>

class ErrorDlg;
class FindDlgMlt;
class QQuickFind;
class QDockWidget;
class QEngineRun;
class QFileWatchObject;
class QEditorRegistry;
class QHistoryManager;
class QListView;
class QMainWindow;
class QMenu;
class QMessages;
class QModelIndex;
class QProject;
class QWindowLayout;
struct QRGBPal;
enum class QProjectFile : int;

// The controller of the main window: the menus and their commands, the tabs
// of open projects and the flows that open, save, back up and close them,
// the answers to the questions projects ask, and what is kept between runs.
// The window's layout and the registry of editors are its two helpers.
class QInterface : public QObject
{
    Q_OBJECT

public:
    static constexpr int HistorySize = 20;

    QInterface(QMainWindow *window, QDockWidget *actionDock, QListView *actionList, const QAppObjects &objects);
    ~QInterface() override;

    // The finishing step of start-up, once everything is registered.
    void init();

    QActionManager &actionManager() { return m_actions; }
    const QAppObjects &objects() const { return m_objects; }
    QMainWindow *window() const { return m_window; }
    QWindowLayout &layout() { return *m_layout; }
    QEditorRegistry &registry() { return *m_registry; }

    QProject *currentProject() const { return m_currentProject; }
    QList<QProject *> projects() const { return m_projects; }
    int projectCount() const { return int(m_projects.size()); }
    QHistoryManager *history() const { return m_history; }
    QMenu *recentMenu() const { return m_recentMenu; }
    ErrorDlg *issuesDialog() const { return m_issues; }
    QQuickFind *quickFind() const { return m_quickFind; }
    FindDlgMlt *findDialog() const { return m_findDialog; }
    // The text of the project status field for a type and engine version.
    static QString projectStatusText(int projectType, quint32 version);
    // True for a project nobody has touched: empty DEF, sprites, palettes,
    // animations, commands, states and sounds.
    static bool isUntouched(QProject *project);

    // A jump handler answers true when it took the place of an issue line.
    using JumpHandler = std::function<bool(const QString &file, uint line)>;
    void addJumpHandler(const QString &context, JumpHandler handler);
    // Another program changed a file open here: asks before reading it again.
    void watchedFileChanged(const QString &path, const QList<QFileWatchObject *> &objects);

    // The run in an engine under way, or null.
    QEngineRun *engineRun() const { return m_engineRun; }
    // How many backups beside a project are kept, the newest (0: all).
    static constexpr const char *BackupKeepKey = "backup_keep";

    // Reads and writes what the controller keeps between runs. Called by
    // init() and the destructor; public so that a reset can run them again.
    void restoreControllerState();
    void saveControllerState();

public slots:
    // Makes a project current: the registry hands it to every editor.
    void setCurrentProject(QProject *project);
    void newProject(bool withTemplate = false);
    void applyConfig();
    void retranslate();
    void rebuildToolMenu();
    void toolActivated();

    void fileNew();
    void fileOpen();
    void openProject(const QString &fileName);
    // Opens what the command line or the desktop names: a DEF as it is, any
    // other file through the DEF beside it that names it.
    void openFiles(const QStringList &fileNames);
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
    void toolsEngines();
    void helpAbout();
    void helpReportBug();
    void restoreBugReport();
    void actionChanged(const QModelIndex &index);

signals:
    // A run in an engine has ended, or could not start; its copies are gone.
    void engineRunEnded();

public slots:

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
    QString configString(const char *key) const;
    bool configFlag(const char *key, bool fallback) const;
    QString shortcutsFile() const;
    void buildActions();
    void buildControllerUi();
    void buildProjectMenu();
    void buildViewMenu();
    void buildToolsAndHelpMenus();
    // The search bar, the multi-line find dialog and their switches and commands.
    void buildFind();
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
    // The current editor shows the current project again.
    void refreshCurrentEditor();
    // Removes the backups of a project beyond the number the user keeps.
    void pruneBackups(QProject *project);
    bool writeTestCopies(QEngineRun *run, QMap<int, QString> *names);
    void engineRunDone(const QString &failure);
    void spriteOrderWarning(QProject *project, const QList<uint> &sprites);
    void registerDialog(const QString &tag, QWidget *dialog);
    // Lines for the program's log, when it has one.
    void log(const QString &line) const;
    void logMessages(const QString &title, const QMessages &messages) const;

    QAppObjects m_objects;
    QActionManager m_actions;
    QPointer<QDockWidget> m_actionDock;
    QPointer<QListView> m_actionList;
    QMainWindow *m_window;
    QWindowLayout *m_layout = nullptr;     // children of this object
    QEditorRegistry *m_registry = nullptr;

    QProject *m_currentProject = nullptr;
    QList<QProject *> m_projects;
    int m_projectCounter = 0;

    QMenu *m_recentMenu = nullptr;
    QHistoryManager *m_history = nullptr; // child of this object
    ErrorDlg *m_issues = nullptr;
    QAction *m_viewQuickFind = nullptr;
    QQuickFind *m_quickFind = nullptr;     // child of the window
    FindDlgMlt *m_findDialog = nullptr;   // child of the window
    QPointer<QWidget> m_findReturn;       // where the focus goes when the bar closes
    QAction *m_viewLeft = nullptr;
    QAction *m_viewRight = nullptr;
    QAction *m_viewActions = nullptr;
    QAction *m_viewOrganizer = nullptr;
    QMap<QString, QPointer<QWidget>> m_dialogs;
    QMap<QString, JumpHandler> m_jumpHandlers;
    int m_projectWork = 0; // project loads and saves under way
    int m_fixedToolEntries = 0; // Tools menu entries of the program itself, before the scripts
    QEngineRun *m_engineRun = nullptr; // child of this object
};
