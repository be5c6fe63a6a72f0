#pragma once

#include "code/qquickfindoption.h"

#include <QObject>
#include <QString>

class QMenu;
class QProject;
class QTranslationUnit;

// An editor the user picks with the editor buttons. It works on one slot of
// the current project and drives a workspace. One instance serves every
// project: switching tabs hands it another project.
class QInterfaceEditor : public QObject
{
    Q_OBJECT

public:
    enum LayoutFlag {
        MainToolbarButtons = 1, // the main toolbar shows the editor's buttons
        LeftPanel = 2,          // the left panel is shown
        RightPanel = 4,         // the right panel is allowed
        StatesOnly = 8,         // carried by state files only
    };

    using QObject::QObject;

    virtual int id() const = 0;
    virtual QString name() const = 0;
    virtual QString tag() const = 0;
    virtual bool isModified() const { return false; }
    virtual QMenu *menu() const { return nullptr; }
    virtual int layoutFlags() const = 0;
    virtual int workspaceId() const = 0;
    virtual void setupPanel() {}
    // reload: the editor becomes current for real (not just a refresh).
    virtual void activate(bool reload);
    virtual void deactivate();
    virtual void applyConfig() {}
    virtual int projectTypes() const = 0;
    virtual void setProject(QProject *project) { m_project = project; }
    virtual bool canClose(QProject *project);
    virtual int captionId() const = 0;
    virtual void retranslate(const QTranslationUnit &translation);

    bool isActive() const { return m_active; }
    QProject *project() const { return m_project; }

public slots:
    virtual void clear() = 0;
    virtual void open() = 0;
    virtual void save() = 0;
    virtual void saveAs() = 0;
    virtual void undo() = 0;
    virtual void redo() = 0;
    virtual void cut() = 0;
    virtual void copy() = 0;
    virtual void paste() = 0;
    virtual void find(const QString &text, const QQuickFindOptions &options) = 0;
    virtual void replace(const QString &text, const QString &with, const QQuickFindOptions &options,
                         bool all) = 0;

signals:
    // The modified state changed: the panel title shows a "*".
    void modifiedChanged();

protected:
    bool m_active = false;
    QProject *m_project = nullptr;
};
