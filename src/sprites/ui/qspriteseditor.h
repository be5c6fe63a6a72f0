#pragma once

#include "render/qrenderer.h"
#include "render/qrenderframe.h"
#include "shell/qinterfaceeditor.h"

#include <QHash>
#include <QImage>
#include <QPointer>

class QEditorRegistry;
class QMugenModel;
class QPalettesEditor;
class QSprRender;
class QSprites;
struct QAppObjects;
struct QSpriteInfo;

// The editor behind the sprites tab: one sprite of the current project's store
// at a time on the shared stage, with its group, number, axis and link on the
// panel the preset lays out, and the commands that add, replace, export,
// crop, split and delete sprites. Every change goes through the store's
// operations, so it can be undone.
class QSpritesEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    QSpritesEditor(QEditorRegistry &registry, const QAppObjects &objects, QObject *parent = nullptr);
    ~QSpritesEditor() override;

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("editor_sff"); }
    QString tag() const override { return QStringLiteral("sprites"); }
    int layoutFlags() const override { return 7; }
    int workspaceId() const override { return 1; }
    int projectTypes() const override { return 15; }
    int captionId() const override { return 69; }
    bool isModified() const override;
    void setupPanel() override;
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;
    void applyConfig() override;

    // The sprite shown, from 0; 0 with an empty store.
    int position() const { return m_pos; }
    QSprites *sprites() const;
    // The shared stage, once the workspace that holds it is registered.
    QSprRender *stage();
    QWidget *stageHost();
    // The palettes panel: while it is open the stage draws in its palette.
    void setPalettes(QPalettesEditor *palettes);

public slots:
    void clear() override;
    void open() override;
    void save() override;
    void saveAs() override;
    void undo() override;
    void redo() override;
    void cut() override;
    void copy() override;
    void paste() override;
    void find(const QString &text, const QQuickFindOptions &options) override;
    void replace(const QString &text, const QString &with, const QQuickFindOptions &options,
                 bool all) override;

    void add();
    void del();
    void openImg();
    void saveImg();
    void saveImgAlign();
    void crop();
    void cropAll();
    void duplicate();
    void delGroup();
    void renameGroup();
    void splitRGB();

    void selPosChanged(int position);
    void grpChanged(int group);
    void numChanged(int number);
    void xChanged(int x);
    void yChanged(int y);
    void prevSprite();
    void nextSprite();
    void prevGrp();
    void nextGrp();
    void axisLeft();
    void axisUp();
    void axisRight();
    void axisDown();
    void transChanged(bool on);
    void switchPalChanged(bool on);
    void onionSkinChanged(bool on);
    void onionSelPosChanged(int position);
    void alignTopLeft();
    void alignTopRight();
    void alignBotLeft();
    void alignBotRight();
    void alignTopCenter();
    void alignBotCenter();
    void alignCenterCenter();
    void alignCenterLeft();
    void alignCenterRight();

    void definePos(int position);
    void updateSel();
    void redrawStage() { updateStage(); }
    void axisChanged(QRenderMode mode, const QPoint &value);

signals:
    void enabled(bool on);
    void setSelPos(int position);
    void setPosText(const QString &text);
    void setGroup(int group);
    void setNumber(int number);
    void setX(int x);
    void setY(int y);
    void setSwitchPal(bool on);
    void setTrans(bool on);
    void setLinkText(const QString &text);
    void setInfoText(const QString &text);
    void setOnionSkin(bool on);
    void setOnionSelPos(int position);
    void setOnionText(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // What the editor keeps of each project while another tab is current.
    struct ProjectState
    {
        int position = 0;
        bool onion = false;
        int onionPosition = 0;
    };

    QWidget *window() const;
    bool flag(const char *key, bool fallback) const;
    bool isCharacter() const;
    // Changes the shown sprite's info through the store, with undo.
    template <typename F> void editInfo(F change);
    void setAxisPreset(int preset);
    void updateRanges();
    void updateStage();
    void scheduleRefresh();
    void attachStore();
    void detachStore();
    QList<int> askExportSet();
    void exportImages(bool aligned);
    int shownPalette() const;

    QEditorRegistry &m_registry;
    QMugenModel *m_config = nullptr;
    QHash<QProject *, ProjectState> m_states;
    QPointer<QSprRender> m_stage;
    QPointer<QWidget> m_host;
    QPointer<QPalettesEditor> m_palettes;
    QList<QMetaObject::Connection> m_connections;
    int m_pos = 0;
    bool m_onion = false;
    int m_onionPos = 0;
    bool m_updating = false;  // the panel is being filled: its echoes change nothing
    bool m_dragging = false;  // the left button is down on the stage
    int m_dragStart = -1;     // undo index when the drag began
    bool m_refreshPending = false;
};
