#pragma once

#include "shell/qinterfaceeditor.h"
#include "sounds/qsounds.h"
#include "sounds/ui/qsoundplayer.h"

#include <QMetaObject>
#include <QPointer>

#include <functional>

class QActionGroup;
class QEditorRegistry;
class QInterfaceControlWidget;
class QListView;
class QMugenModel;
class QWidget;
struct QAppObjects;

// The SND page of a project: the list of sounds, their group and number, what
// their WAV headers say, and the commands that add, replace, save, play,
// export and import them. The stage stays locked and empty on this page.
class QSoundsEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    explicit QSoundsEditor(const QAppObjects &objects, QObject *parent = nullptr);
    ~QSoundsEditor() override;

    int id() const override { return 5; }
    QString name() const override { return QStringLiteral("editor_snd"); }
    QString tag() const override { return QStringLiteral("sounds"); }
    int layoutFlags() const override { return 7; }
    int workspaceId() const override { return 1; }
    int projectTypes() const override { return 1; }
    int captionId() const override { return 213; }
    bool isModified() const override;
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;
    bool canClose(QProject *project) override;

    // Makes the editor's actions and panel controls known to the registry,
    // which the preset then lays out.
    void registerControls(QEditorRegistry &registry);

    // The sound selected in the list, -1 with none.
    int current() const { return m_current; }
    QSounds *store() const;
    QSoundPlayer *player() { return &m_player; }
    // The open projects, for the import from another project.
    void setProjectList(std::function<QList<QProject *>()> projects) { m_projects = std::move(projects); }
    // The text of the information box for sound `index` of `store`.
    static QString infoText(const QSounds *store, int index);

public slots:
    void clear() override;
    void open() override;
    void save() override;
    void saveAs() override;
    void undo() override;
    void redo() override;
    void cut() override {}
    void copy() override {}
    void paste() override {}
    void find(const QString &text, const QQuickFindOptions &options) override;
    void replace(const QString &, const QString &, const QQuickFindOptions &, bool) override {}

    void forceStop();
    void add();
    void del();
    void openWav();
    void saveWav();
    void duplicate();
    void delGroup();
    void renameGroup();
    void play(bool on);
    void playLoop(bool on);
    void stop(bool on);
    void fileExport();
    void fileImport();
    void projImport();
    void selPosChanged(int index);
    void prevGrp();
    void grpChanged(int group);
    void nextGrp();
    void numChanged(int number);

signals:
    void enabled(bool on);
    void setPosText(const QString &text);
    void setGroup(int group);
    void setNumber(int number);
    void setInfoText(const QString &text);
    // The page became current: the stage is to be shown locked and empty.
    void stageWanted();

private:
    void attach();
    void detach();
    // Shows `index` (clamped to the list) as the current sound.
    void select(int index);
    void refresh();
    void storeChanged();
    QListView *listView() const;
    QWidget *window() const;
    bool confirmDiscard();
    bool flag(const QString &key) const;
    QString startFolder() const;
    void rememberFolder(const QString &file);
    bool saveTo(const QString &path);

    QMugenModel *m_config = nullptr;
    QSoundPlayer m_player;
    QInterfaceControlWidget *m_listControl = nullptr;
    QActionGroup *m_playGroup = nullptr;
    QAction *m_stopAction = nullptr;
    QPointer<QSounds> m_attached;
    QList<QMetaObject::Connection> m_connections;
    int m_current = -1;
    bool m_updating = false;
    std::function<QList<QProject *>()> m_projects;
};
