#pragma once

#include "animations/qanimplayback.h"
#include "render/qrenderframe.h"
#include "shell/qinterfaceeditor.h"

#include <QHash>
#include <QPlainTextEdit>
#include <QPoint>
#include <QPointer>
#include <QSet>

#include <functional>

class QAction;
class QAction2;
class QAnimations;
class QAnimSpriteWorkspace;
class QEditorRegistry;
class QListView;
class QMugenModel;
class QScrollBar;
class QSprRender;
class QTimer;
class QUndoStack;
struct AnimFrameData;
struct QAppObjects;

// The editor of the animations (AIR): the action list and the fields of the
// current frame in the left panel, the frame on the shared stage with its
// collision boxes, and the AIR text of the action under the stage (or the
// whole file instead of the stage in full text mode). Graphic edits rewrite
// the text, edits of the text replace the action. Play follows the clock.
// Every edit is one step of the project's animation undo history.
class QAnimationsEditor : public QInterfaceEditor
{
    Q_OBJECT

public:
    // Makes the text widget of the text views (the program's code widget).
    using TextViewFactory = std::function<QPlainTextEdit *(QWidget *parent)>;
    // Milliseconds of a monotonic clock; play reads it at every timer tick.
    using Clock = std::function<qint64()>;

    QAnimationsEditor(const QAppObjects &objects, QEditorRegistry *registry, TextViewFactory textViews,
                      QObject *parent = nullptr);
    ~QAnimationsEditor() override;

    int id() const override { return 2; }
    QString name() const override { return QStringLiteral("editor_air"); }
    QString tag() const override { return QStringLiteral("animations"); }
    int layoutFlags() const override { return 7; }
    int workspaceId() const override { return 1; }
    int projectTypes() const override { return 7; }
    int captionId() const override { return 136; }
    bool isModified() const override;
    QMenu *menu() const override { return m_menu; }
    void setupPanel() override;
    void activate(bool reload) override;
    void deactivate() override;
    void setProject(QProject *project) override;
    bool canClose(QProject *project) override;
    void retranslate(const QTranslationUnit &translation) override;

    // What the editor shows, for the host and the tests.
    QAnimations *store() const;
    int currentAction() const { return m_anim; }
    int currentFrame() const { return m_frame; }
    bool isPlaying() const { return m_playing; }
    QSprRender *renderer() const;
    QPlainTextEdit *textView() const { return m_text; }
    QUndoStack *undoStack() const;
    QString positionText() const { return m_posText; }
    QString framePositionText() const { return m_framePosText; }
    void setClock(Clock clock);
    // The projects open at the moment, for the import of actions.
    void setOpenProjects(std::function<QList<QProject *>()> projects) { m_openProjects = std::move(projects); }
    QAction *action(const QString &key) const;
    // Shows the action and frame written at `line` (0-based) of the animation
    // text: the jump of an issue line. False when there is no action.
    bool showLine(uint line);

    // The Alignment tool's modes.
    enum AlignMode { AlignOffset = 0, AlignClsnOffset, AlignClsnTopLeft, AlignClsnBottomRight, AlignClsnScale };
    // Applies a mode to every frame of the given actions, as one undo step.
    void align(const QList<int> &actions, int mode, int x, int y);
    // Copies actions `rows` of `source` to the end of the current store, as
    // one undo step; returns how many came.
    int importFrom(const QAnimations &source, const QList<int> &rows);

signals:
    void enabled(bool);
    void enabled2(bool);
    void frameEnabled(bool);
    void transEnabled(bool);
    void setSelPos(int);
    void setPosText(const QString &);
    void setNumber(int);
    void setName(const QString &);
    void setFrameSelPos(int);
    void setFramePosText(const QString &);
    void setFrameGrp(int);
    void setFrameNum(int);
    void setFrameX(int);
    void setFrameY(int);
    void setFrameTime(int);
    void setFrameFlip(int);
    void setFrameTrans(int);
    void setFrameSrc(int);
    void setFrameDst(int);
    void setFrameLoop(bool);
    void setFrameScaleX(double);
    void setFrameScaleY(double);
    void setFrameAngle(double);
    void setFrameIBlend(bool);
    void setFrameIOffset(bool);
    void setFrameIScale(bool);
    void setFrameIAngle(bool);

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
    void forceStop();
    void clsnModeExit();
    void playTimeOut();
    void add();
    void del();
    void duplicate();
    void editText();
    void txtModeChanged(bool full);
    void saveGIF();
    void playChanged(bool on);
    void stopChanged(bool on);
    void frameAdd();
    void frameDel();
    void frameAllTime();
    void frameAllFlip();
    void frameAllTrans();
    void frameAlign();
    void clsnAdd1Changed(bool on);
    void clsnAdd2Changed(bool on);
    void clsnDel();
    void clsnDelAll();
    void clsnDelAllAnim();
    void clsnSwType();
    void clsnSwDef();
    void clsnPrev();
    void clsnAllInst();
    void projImport();
    void selPosChanged(int row);
    void numChanged(int value);
    void nameChanged(const QString &value);
    void frameSelPosChanged(int frame);
    void frameGrpChanged(int value);
    void frameNumChanged(int value);
    void frameXChanged(int value);
    void frameYChanged(int value);
    void axisLeft();
    void axisUp();
    void axisRight();
    void axisDown();
    void frameTimeChanged(int value);
    void frameFlipChanged(int value);
    void frameTransChanged(int value);
    void frameSrcChanged(int value);
    void frameDstChanged(int value);
    void frameLoopChanged(bool value);
    void frameScaleXChanged(double value);
    void frameScaleYChanged(double value);
    void frameAngleChanged(double value);
    void frameIBlendChanged(bool value);
    void frameIOffsetChanged(bool value);
    void frameIScaleChanged(bool value);
    void frameIAngleChanged(bool value);
    void updateFromText(const QString &text);
    void animChanged();

private:
    QAction2 *addAction(const QString &key, int captionId, bool checkable, const char *slot);
    void addControl(const QString &name, int type, int captionId, const char *slot, const char *signal,
                    const QList<int> &captions = {}, double minimum = -99999, double maximum = 99999,
                    double step = 1);
    QWidget *controlWidget(const QString &name) const;
    QAnimSpriteWorkspace *workspace() const;
    QWidget *dialogParent() const;
    void showAction(int row, int frame = 0);
    void showFrame(int frame);
    void refreshList();
    void refreshText();
    void setFrameControlsEnabled(bool on);
    // Writes a field of the current frame through `edit` and records the step.
    void editFrame(const std::function<void(AnimFrameData &)> &edit);
    // Copies fields of the current frame to every frame after it, as one step.
    // Stops playing; false when there are unsaved changes the user keeps.
    bool stopAndConfirmDiscard();
    void applyToFollowingFrames(const std::function<void(AnimFrameData &, const AnimFrameData &)> &copy,
                                const QString &text);
    // Records the store's state after an edit as one undo step, and shows it.
    void beginEdit();
    void commit(const QString &text, int mergeKey = 0, bool rewriteText = true);
    void restore(const QByteArray &state, int anim, int frame);
    void stageBoxesChanged();
    void stageAxisChanged(QRenderMode mode, const QPoint &value);
    void storeModified();
    void attachViews();
    void setPlayActions(bool playing);

    QMugenModel *m_config = nullptr;
    QEditorRegistry *m_registry = nullptr;
    TextViewFactory m_textViews;
    std::function<QList<QProject *>()> m_openProjects;
    QMenu *m_menu = nullptr;
    QHash<QString, QAction2 *> m_actions;
    QStringList m_frameControls;
    QPointer<QPlainTextEdit> m_text;
    QTimer *m_timer;
    QTimer *m_textApply;
    Clock m_clock;
    QAnimPlayback m_playback;
    qint64 m_playStart = 0;
    bool m_playing = false;
    bool m_settingWidgets = false; // the editor sets its widgets: their signals are its own
    bool m_textUpdating = false;
    bool m_fullText = false;
    int m_anim = -1;
    int m_frame = -1;
    QString m_posText;
    QString m_framePosText;
    QHash<QProject *, QUndoStack *> m_undo;
    QHash<QProject *, QByteArray> m_state; // the store as the last step left it
    QSet<QProject *> m_stale; // edited elsewhere since the last step
    bool m_restoring = false;
    bool m_inEdit = false;
    QList<QMetaObject::Connection> m_renderConnections;
};
