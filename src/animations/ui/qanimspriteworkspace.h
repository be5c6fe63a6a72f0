#pragma once

#include "shell/qinterfaceworkspace.h"

#include <QHash>
#include <QList>
#include <QPointer>

class QAction;
class QActionManager;
class QLabel;
class QMenu;
class QSprRender;
class QToolButton;

// The stage shared by the sprites, animations and sounds editors: the
// renderer, its host widget (native, or OpenGL with use_opengl) and the view
// actions. View settings are read at creation and written back at the end.
struct QAppObjects;
class QColorsetManager;
class QMugenModel;

class QAnimSpriteWorkspace : public QInterfaceWorkspace
{
    Q_OBJECT

public:
    // `objects` gives the settings and the colour set; both may be absent.
    explicit QAnimSpriteWorkspace(const QAppObjects &objects, QObject *parent = nullptr);
    ~QAnimSpriteWorkspace() override;

    int id() const override { return 1; }
    QString name() const override { return QStringLiteral("animsprites"); }
    void applyConfig() override;
    void retranslate(const QTranslationUnit &translation) override;

    QSprRender *renderer() const { return m_renderer; }
    // The widget that hosts the renderer (inside widget()).
    QWidget *host() const { return m_host; }
    bool isOpenGL() const { return m_openGL; }
    // "Native mode" or "OpenGL mode".
    QString statusText() const;

    // The view actions by key (view_zoomin, view_rulers ...), in menu order.
    QAction *action(const QString &key) const { return m_actions.value(key); }
    const QList<QAction *> &viewActions() const { return m_actionList; }
    // Gives each view action a twin in the action manager, for the sprites and
    // animations editors, so that it can carry a shortcut and stand in `menu`
    // (which may be null). Twin and action keep one check state.
    void registerViewActions(QActionManager &manager, QMenu *menu);

    // The stage as each editor uses it: sprite mode for the sprites editor,
    // animation mode for the animations editor, an inert sprite stage for the
    // sounds editor.
    void showForSprites();
    void showForAnimations();
    void showForSounds();

    // A view of the current editor under the stage (the animation's text),
    // or null for none; with `replacesStage` it takes the stage's place.
    // The workspace never owns the view.
    void setAttachedView(QWidget *view, bool replacesStage);
    QWidget *attachedView() const { return m_attached; }

    // The selected boxes as Clsn text on the clipboard; false with none selected.
    bool copyClsn();
    // Clsn text on the clipboard, or an empty string (it must name a Clsn block).
    static QString clipboardClsn();

public slots:
    void statusClicked() override;
    void centerAxis();
    void showCLSN(bool);
    void showCross(bool);
    void showExtraCross(bool on);
    void showGuideLns(bool on);
    void zoomActual();
    void zoomOut();
    void zoomIn();
    void extraCrossClosed();

signals:
    // The status field was clicked in sprite mode: the sprite store's settings.
    void spriteSettingsWanted();

private:
    QAction *addAction(const QString &key, int captionId, bool checkable, bool checked = false);
    void updateStatus();
    void readViewSettings();
    void writeViewSettings() const;

    QMugenModel *m_config = nullptr;
    QColorsetManager *m_colorsets = nullptr;
    QSprRender *m_renderer;
    QWidget *m_host = nullptr;
    bool m_openGL = false;
    QToolButton *m_status = nullptr;
    QLabel *m_position = nullptr;
    QHash<QString, QAction *> m_actions;
    QList<QAction *> m_actionList;
    QHash<QAction *, int> m_captions;
    QPointer<QWidget> m_attached;
};
