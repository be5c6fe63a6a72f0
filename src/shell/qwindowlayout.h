#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QDockWidget;
class QLabel;
class QMainWindow;
class QMugenModel;
class QPanelWidget;
class QStackedLayout;
class QTabBar;
class QToolBar;
class QVBoxLayout;
class QWidget;

// The main window around the editors: the project tabs; the left and right
// panels, each a stack with a page per editor or extra editor; the central
// stack of workspaces; the toolbars and the status fields. It also keeps the
// window's place, its toolbars and the action list's side in the
// configuration between runs.
class QWindowLayout : public QObject
{
    Q_OBJECT

public:
    static constexpr int StatusFieldCount = 4;

    QWindowLayout(QMainWindow *window, QDockWidget *actionDock, QObject *parent = nullptr);

    QMainWindow *window() const { return m_window; }
    QDockWidget *actionDock() const;
    QTabBar *tabBar() const { return m_tabBar; }
    QPanelWidget *leftPanel() const { return m_leftPanel; }
    QPanelWidget *rightPanel() const { return m_rightPanel; }
    QStackedLayout *leftStack() const { return m_leftStack; }
    QStackedLayout *rightStack() const { return m_rightStack; }
    QStackedLayout *centralStack() const { return m_centralStack; }
    QToolBar *mainToolBar() const { return m_mainToolBar; }
    QToolBar *extraToolBar() const { return m_extraToolBar; }
    QToolBar *editorToolBar() const { return m_editorToolBar; }
    // Puts a bar (the search bar) right below the central stack.
    void addBelowCentre(QWidget *bar);

    QLabel *statusField(int i) const { return m_statusFields.value(i); }
    // Shows text in a status field; an empty text hides the field, so that
    // the project status keeps its room in a narrow window.
    void setStatusText(int field, const QString &text);
    QLabel *projectStatusLabel() const { return m_projectStatus; }

    // What the View menu asks for; an editor's flags decide the rest.
    bool leftPanelWanted() const { return m_wantLeft; }
    bool rightPanelWanted() const { return m_wantRight; }
    void setPanelsWanted(bool left, bool right);

    // Geometry, window state, panels, toolbars and the action list, from the
    // configuration and back into it.
    void restore(const QMugenModel &config);
    void save(QMugenModel &config) const;

    void retranslate();

private:
    void buildCentre();
    void buildToolBars();
    void buildStatusBar();

    QMainWindow *m_window;
    QPointer<QDockWidget> m_actionDock;
    QTabBar *m_tabBar = nullptr;
    QPanelWidget *m_leftPanel = nullptr;
    QPanelWidget *m_rightPanel = nullptr;
    QStackedLayout *m_leftStack = nullptr;
    QStackedLayout *m_rightStack = nullptr;
    QStackedLayout *m_centralStack = nullptr;
    QVBoxLayout *m_centre = nullptr;
    QToolBar *m_mainToolBar = nullptr;
    QToolBar *m_extraToolBar = nullptr;
    QToolBar *m_editorToolBar = nullptr;
    QList<QLabel *> m_statusFields;
    QLabel *m_projectStatus = nullptr;
    bool m_wantLeft = true;
    bool m_wantRight = true;
};
