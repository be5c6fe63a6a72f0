#include "qanimationseditor.h"
#include "qanimationseditor_p.h"

#include "animations/qanimations.h"
#include "animations/ui/qanimspriteworkspace.h"
#include "base/qmugenmodel.h"
#include "project/qanimationsfile.h"
#include "project/qproject.h"
#include "render/qanimationframe.h"
#include "render/qgifwriter.h"
#include "render/qsprrender.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>

using namespace AnimEditor;

namespace {

// One edit of the animations: the store's image before and after. The store
// records itself compactly, so a step costs about what its text does. Steps
// of one kind on one frame (dragging the offset, typing a name) merge.
class AnimSnapshotCommand : public QUndoCommand
{
public:
    using Restore = std::function<void(const QByteArray &, int, int)>;

    AnimSnapshotCommand(const QString &text, QByteArray before, QByteArray after, int anim, int frame,
                        int mergeKey, Restore restore)
        : QUndoCommand(text)
        , m_before(std::move(before))
        , m_after(std::move(after))
        , m_anim(anim)
        , m_frame(frame)
        , m_mergeKey(mergeKey)
        , m_restore(std::move(restore))
    {
    }

    int id() const override { return m_mergeKey > 0 ? 0x41495200 + m_mergeKey : -1; }
    bool mergeWith(const QUndoCommand *other) override
    {
        const auto *o = static_cast<const AnimSnapshotCommand *>(other);
        if (o->m_anim != m_anim || o->m_frame != m_frame)
            return false;
        m_after = o->m_after;
        return true;
    }
    void undo() override { m_restore(m_before, m_anim, m_frame); }
    void redo() override
    {
        // The edit is already done when the step is recorded.
        if (m_first) {
            m_first = false;
            return;
        }
        m_restore(m_after, m_anim, m_frame);
    }

private:
    QByteArray m_before;
    QByteArray m_after;
    int m_anim;
    int m_frame;
    int m_mergeKey;
    Restore m_restore;
    bool m_first = true;
};

qint64 monotonicMs()
{
    static QElapsedTimer timer;
    if (!timer.isValid())
        timer.start();
    return timer.elapsed();
}

} // namespace

QAnimationsEditor::QAnimationsEditor(const QAppObjects &objects, QEditorRegistry *registry,
                                     TextViewFactory textViews, QObject *parent)
    : QInterfaceEditor(parent)
    , m_config(objects.config)
    , m_registry(registry)
    , m_textViews(std::move(textViews))
    , m_timer(new QTimer(this))
    , m_textApply(new QTimer(this))
    , m_clock(monotonicMs)
{
    m_timer->setSingleShot(true);
    m_timer->setTimerType(Qt::PreciseTimer);
    connect(m_timer, &QTimer::timeout, this, &QAnimationsEditor::playTimeOut);
    // The text is read back a moment after the typing stops, not at every key.
    m_textApply->setSingleShot(true);
    m_textApply->setInterval(500);
    connect(m_textApply, &QTimer::timeout, this, [this] {
        if (m_text)
            updateFromText(m_text->toPlainText());
    });
}

QAnimationsEditor::~QAnimationsEditor()
{
    m_timer->stop();
    delete m_menu;
    delete m_text;
    qDeleteAll(m_undo);
}

// ------------------------------------------------------------------ set-up

QAction2 *QAnimationsEditor::addAction(const QString &key, int captionId, bool checkable, const char *slot)
{
    QAction2 *a = m_registry->actionManager().addAction({id(), -1}, key, captionId, checkable, this, slot);
    m_actions.insert(key, a);
    m_registry->addControl(key, std::make_unique<QInterfaceControlAction>(a));
    if (m_menu)
        m_menu->addAction(a);
    return a;
}

void QAnimationsEditor::addControl(const QString &name, int type, int captionId, const char *slot,
                                   const char *signal, const QList<int> &captions, double minimum,
                                   double maximum, double step)
{
    QInterfaceControlOptions options;
    options.captions = captions;
    options.minimum = minimum;
    options.maximum = maximum;
    options.step = step;
    m_registry->addControl(name, std::make_unique<QInterfaceControlWidget>(type, captionId, &options, this, slot, signal,
                                                                           m_registry->actionManager().translation()));
}

QWidget *QAnimationsEditor::controlWidget(const QString &name) const
{
    auto *c = m_registry ? dynamic_cast<QInterfaceControlWidget *>(m_registry->control(name)) : nullptr;
    return c ? c->widget() : nullptr;
}

QAction *QAnimationsEditor::action(const QString &key) const
{
    return m_actions.value(key);
}

void QAnimationsEditor::setupPanel()
{
    if (!m_registry)
        return;
    m_menu = new QMenu;
    m_menu->setObjectName(QStringLiteral("menuAnimations"));
    addAction(QStringLiteral("air_new"), 137, false, SLOT(clear()));
    addAction(QStringLiteral("air_open"), 138, false, SLOT(open()));
    addAction(QStringLiteral("air_save"), 139, false, SLOT(save()));
    addAction(QStringLiteral("air_saveas"), 140, false, SLOT(saveAs()));
    addAction(QStringLiteral("air_save_gif"), 146, false, SLOT(saveGIF()));
    m_menu->addSeparator();
    addAction(QStringLiteral("air_text_full"), 141, true, SLOT(txtModeChanged(bool)));
    addAction(QStringLiteral("air_edit_text"), 145, false, SLOT(editText()));
    m_menu->addSeparator();
    addAction(QStringLiteral("air_play"), 147, true, SLOT(playChanged(bool)));
    addAction(QStringLiteral("air_stop"), 148, true, SLOT(stopChanged(bool)));
    m_actions.value(QStringLiteral("air_stop"))->setChecked(true);
    m_menu->addSeparator();
    addAction(QStringLiteral("air_add"), 142, false, SLOT(add()));
    addAction(QStringLiteral("air_delete"), 143, false, SLOT(del()));
    addAction(QStringLiteral("air_duplicate"), 144, false, SLOT(duplicate()));
    m_menu->addSeparator();
    addAction(QStringLiteral("air_frame_add"), 149, false, SLOT(frameAdd()));
    addAction(QStringLiteral("air_frame_delete"), 150, false, SLOT(frameDel()));
    addAction(QStringLiteral("air_frameall_time"), 151, false, SLOT(frameAllTime()));
    addAction(QStringLiteral("air_frameall_flip"), 152, false, SLOT(frameAllFlip()));
    addAction(QStringLiteral("air_frameall_trans"), 153, false, SLOT(frameAllTrans()));
    addAction(QStringLiteral("air_frame_align"), 154, false, SLOT(frameAlign()));
    m_menu->addSeparator();
    addAction(QStringLiteral("air_clsn_add1"), 155, true, SLOT(clsnAdd1Changed(bool)));
    addAction(QStringLiteral("air_clsn_add2"), 156, true, SLOT(clsnAdd2Changed(bool)));
    addAction(QStringLiteral("air_clsn_del"), 157, false, SLOT(clsnDel()));
    addAction(QStringLiteral("air_clsn_delall"), 158, false, SLOT(clsnDelAll()));
    addAction(QStringLiteral("air_clsn_delall_anim"), 159, false, SLOT(clsnDelAllAnim()));
    addAction(QStringLiteral("air_clsn_type"), 160, false, SLOT(clsnSwType()));
    addAction(QStringLiteral("air_clsn_default"), 161, false, SLOT(clsnSwDef()));
    addAction(QStringLiteral("air_clsn_prev"), 162, false, SLOT(clsnPrev()));
    addAction(QStringLiteral("air_clsn_allinst"), 163, false, SLOT(clsnAllInst()));
    m_menu->addSeparator();
    addAction(QStringLiteral("air_import_proj"), 164, false, SLOT(projImport()));

    using T = QInterfaceControlWidgetBase;
    addControl(QStringLiteral("air_sel"), T::ListView, 136, nullptr, nullptr);
    addControl(QStringLiteral("air_sel_lb"), T::Label, 136, nullptr, SIGNAL(setPosText(QString)));
    addControl(QStringLiteral("air_number"), T::SpinBox, 165, SLOT(numChanged(int)), SIGNAL(setNumber(int)), {}, 0,
               2147483647);
    addControl(QStringLiteral("air_number_lb"), T::Label, 165, nullptr, nullptr);
    addControl(QStringLiteral("air_name"), T::LineEdit, 166, SLOT(nameChanged(QString)), SIGNAL(setName(QString)));
    addControl(QStringLiteral("air_name_lb"), T::Label, 166, nullptr, nullptr);
    addControl(QStringLiteral("air_frame_sel"), T::ScrollBar, 167, SLOT(frameSelPosChanged(int)),
               SIGNAL(setFrameSelPos(int)));
    addControl(QStringLiteral("air_frame_sel_lb"), T::Label, 167, nullptr, nullptr);
    addControl(QStringLiteral("air_frame_lb"), T::Label, -1, nullptr, SIGNAL(setFramePosText(QString)));
    const struct
    {
        const char *name;
        int type;
        int caption;
        const char *slot;
        const char *signal;
        double minimum, maximum, step;
    } fields[] = {
        {"air_frame_grp", T::SpinBox, 168, SLOT(frameGrpChanged(int)), SIGNAL(setFrameGrp(int)), -1, 65535, 1},
        {"air_frame_num", T::SpinBox, 169, SLOT(frameNumChanged(int)), SIGNAL(setFrameNum(int)), 0, 65535, 1},
        {"air_frame_xaxis", T::SpinBox, 170, SLOT(frameXChanged(int)), SIGNAL(setFrameX(int)), -99999, 99999, 1},
        {"air_frame_yaxis", T::SpinBox, 171, SLOT(frameYChanged(int)), SIGNAL(setFrameY(int)), -99999, 99999, 1},
        {"air_frame_time", T::SpinBox, 176, SLOT(frameTimeChanged(int)), SIGNAL(setFrameTime(int)), -1, 99999, 1},
        {"air_frame_transsrc", T::SpinBox, 179, SLOT(frameSrcChanged(int)), SIGNAL(setFrameSrc(int)), 0, 256, 1},
        {"air_frame_transdst", T::SpinBox, 180, SLOT(frameDstChanged(int)), SIGNAL(setFrameDst(int)), 0, 256, 1},
        {"air_frame_xscale", T::DoubleSpinBox, 182, SLOT(frameScaleXChanged(double)), SIGNAL(setFrameScaleX(double)),
         0, 1000, 0.1},
        {"air_frame_yscale", T::DoubleSpinBox, 183, SLOT(frameScaleYChanged(double)), SIGNAL(setFrameScaleY(double)),
         0, 1000, 0.1},
        {"air_frame_angle", T::DoubleSpinBox, 184, SLOT(frameAngleChanged(double)), SIGNAL(setFrameAngle(double)),
         -360, 360, 1},
    };
    for (const auto &f : fields) {
        const QString name = QString::fromLatin1(f.name);
        addControl(name, f.type, f.caption, f.slot, f.signal, {}, f.minimum, f.maximum, f.step);
        addControl(name + QStringLiteral("_lb"), T::Label, f.caption, nullptr, nullptr);
        m_frameControls << name << name + QStringLiteral("_lb");
    }
    // An id beyond the table reads as an empty text: the first entry is named below.
    constexpr int None = 100000;
    addControl(QStringLiteral("air_frame_flip"), T::ComboBox, 177, SLOT(frameFlipChanged(int)),
               SIGNAL(setFrameFlip(int)), {None, 190, 191, 192});
    addControl(QStringLiteral("air_frame_flip_lb"), T::Label, 177, nullptr, nullptr);
    addControl(QStringLiteral("air_frame_trans"), T::ComboBox, 178, SLOT(frameTransChanged(int)),
               SIGNAL(setFrameTrans(int)), {None, 193, 194});
    addControl(QStringLiteral("air_frame_trans_lb"), T::Label, 178, nullptr, nullptr);
    addControl(QStringLiteral("air_frame_loop"), T::CheckBox, 181, SLOT(frameLoopChanged(bool)),
               SIGNAL(setFrameLoop(bool)));
    addControl(QStringLiteral("air_frame_intp"), T::Label, 185, nullptr, nullptr);
    addControl(QStringLiteral("air_frame_intp_offset"), T::CheckBox, 186, SLOT(frameIOffsetChanged(bool)),
               SIGNAL(setFrameIOffset(bool)));
    addControl(QStringLiteral("air_frame_intp_blend"), T::CheckBox, 187, SLOT(frameIBlendChanged(bool)),
               SIGNAL(setFrameIBlend(bool)));
    addControl(QStringLiteral("air_frame_intp_scale"), T::CheckBox, 188, SLOT(frameIScaleChanged(bool)),
               SIGNAL(setFrameIScale(bool)));
    addControl(QStringLiteral("air_frame_intp_angle"), T::CheckBox, 189, SLOT(frameIAngleChanged(bool)),
               SIGNAL(setFrameIAngle(bool)));
    const struct
    {
        const char *name;
        int caption;
        const char *slot;
        Qt::ArrowType arrow;
    } moves[] = {{"air_pos_left", 172, SLOT(axisLeft()), Qt::LeftArrow},
                 {"air_pos_up", 173, SLOT(axisUp()), Qt::UpArrow},
                 {"air_pos_right", 174, SLOT(axisRight()), Qt::RightArrow},
                 {"air_pos_down", 175, SLOT(axisDown()), Qt::DownArrow}};
    for (const auto &m : moves) {
        addControl(QString::fromLatin1(m.name), T::ToolButton, m.caption, m.slot, nullptr);
        if (auto *b = qobject_cast<QToolButton *>(controlWidget(QString::fromLatin1(m.name)))) {
            b->setArrowType(m.arrow);
            b->setToolButtonStyle(Qt::ToolButtonIconOnly);
        }
        m_frameControls << QString::fromLatin1(m.name);
    }
    m_frameControls << QStringLiteral("air_frame_flip") << QStringLiteral("air_frame_flip_lb")
                    << QStringLiteral("air_frame_trans") << QStringLiteral("air_frame_trans_lb")
                    << QStringLiteral("air_frame_loop") << QStringLiteral("air_frame_intp")
                    << QStringLiteral("air_frame_intp_offset") << QStringLiteral("air_frame_intp_blend")
                    << QStringLiteral("air_frame_intp_scale") << QStringLiteral("air_frame_intp_angle");
    // The source and destination follow the transparency combo alone.
    m_frameControls.removeAll(QStringLiteral("air_frame_transsrc"));
    m_frameControls.removeAll(QStringLiteral("air_frame_transdst"));
    connect(this, &QAnimationsEditor::transEnabled, this, [this](bool on) {
        for (const char *name : {"air_frame_transsrc", "air_frame_transdst", "air_frame_transsrc_lb",
                                 "air_frame_transdst_lb"})
            m_registry->setControlEnabled(QString::fromLatin1(name), on);
    });
    connect(this, &QAnimationsEditor::frameEnabled, this, &QAnimationsEditor::setFrameControlsEnabled);

    if (auto *list = qobject_cast<QListView *>(controlWidget(QStringLiteral("air_sel"))))
        list->setUniformItemSizes(true);
    for (const char *name : {"air_frame_xscale", "air_frame_yscale", "air_frame_angle"}) {
        if (auto *spin = qobject_cast<QDoubleSpinBox *>(controlWidget(QString::fromLatin1(name))))
            spin->setDecimals(2);
    }
    for (const char *name : {"air_frame_grp", "air_frame_num", "air_frame_xaxis", "air_frame_yaxis",
                             "air_frame_time", "air_frame_transsrc", "air_frame_transdst", "air_number"}) {
        if (auto *spin = qobject_cast<QSpinBox *>(controlWidget(QString::fromLatin1(name))))
            spin->setKeyboardTracking(false);
    }
    retranslate(m_registry->actionManager().translation());

    QWidget *textParent = nullptr;
    m_text = m_textViews ? m_textViews(textParent) : new QPlainTextEdit;
    m_text->setObjectName(QStringLiteral("airText"));
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->hide();
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_textUpdating)
            m_textApply->start();
    });
    showAction(-1);
}

void QAnimationsEditor::retranslate(const QTranslationUnit &translation)
{
    QInterfaceEditor::retranslate(translation);
    if (m_menu)
        translation.retranslateMenu(m_menu, 136);
    for (const char *name : {"air_frame_flip", "air_frame_trans"}) {
        if (auto *combo = qobject_cast<QComboBox *>(controlWidget(QString::fromLatin1(name))); combo && combo->count())
            combo->setItemText(0, tr("None"));
    }
}

QAnimSpriteWorkspace *QAnimationsEditor::workspace() const
{
    return m_registry ? qobject_cast<QAnimSpriteWorkspace *>(m_registry->workspace(workspaceId())) : nullptr;
}

QSprRender *QAnimationsEditor::renderer() const
{
    QAnimSpriteWorkspace *ws = workspace();
    return ws ? ws->renderer() : nullptr;
}

QWidget *QAnimationsEditor::dialogParent() const
{
    QAnimSpriteWorkspace *ws = workspace();
    return ws && ws->widget() ? ws->widget()->window() : nullptr;
}

QAnimations *QAnimationsEditor::store() const
{
    return m_project ? m_project->animations() : nullptr;
}

QUndoStack *QAnimationsEditor::undoStack() const
{
    return m_undo.value(m_project);
}

void QAnimationsEditor::setClock(Clock clock)
{
    m_clock = clock ? std::move(clock) : Clock(monotonicMs);
}

bool QAnimationsEditor::isModified() const
{
    QAnimations *s = store();
    return s && s->isModified();
}

// ------------------------------------------------------------------ project and activation

void QAnimationsEditor::setProject(QProject *project)
{
    if (project == m_project)
        return;
    forceStop();
    // Typing not yet read back belongs to the project it was typed in.
    if (m_textApply->isActive() && m_text)
        updateFromText(m_text->toPlainText());
    if (QAnimations *old = store())
        disconnect(old, nullptr, this, nullptr);
    QInterfaceEditor::setProject(project);
    if (project && !m_undo.contains(project)) {
        m_undo.insert(project, new QUndoStack);
        m_stale.insert(project);
        connect(project, &QObject::destroyed, this, [this, project] {
            delete m_undo.take(project);
            m_state.remove(project);
            m_stale.remove(project);
        });
    }
    QAnimations *s = store();
    if (auto *list = qobject_cast<QListView *>(controlWidget(QStringLiteral("air_sel")))) {
        list->setModel(s);
        if (s)
            connect(list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
                    [this](const QModelIndex &current) {
                        if (!m_settingWidgets && current.isValid())
                            selPosChanged(current.row());
                    });
    }
    if (s) {
        connect(s, &QAnimations::changed, this, &QAnimationsEditor::storeModified);
        connect(s, &QAnimations::updateFinished, this, &QAnimationsEditor::storeModified);
        connect(s, &QAbstractItemModel::modelReset, this, &QAnimationsEditor::storeModified);
    }
    m_anim = -1;
    m_frame = -1;
    if (m_active)
        activate(false);
    else
        showAction(s && s->count() ? 0 : -1);
}

void QAnimationsEditor::storeModified()
{
    if (!m_inEdit && !m_restoring && m_project) {
        m_stale.insert(m_project);
        // Edited elsewhere (the DEF text, the sprites editor): show what is there now.
        if (m_active && !m_playing)
            QTimer::singleShot(0, this, [this] {
                if (QAnimations *s = store(); s && !m_inEdit)
                    showAction(qMin(m_anim < 0 ? 0 : m_anim, s->count() - 1), qMax(0, m_frame));
            });
    }
    emit modifiedChanged();
}

void QAnimationsEditor::activate(bool reload)
{
    QInterfaceEditor::activate(reload);
    // Without reload the project changed under an editor that is not in
    // front: the shared stage belongs to the one that is.
    if (!reload)
        return;
    m_active = true;
    QAnimSpriteWorkspace *ws = workspace();
    if (!ws)
        return;
    QSprRender *r = ws->renderer();
    if (m_renderConnections.isEmpty()) {
        m_renderConnections << connect(r, &QSprRender::clsnChanged, this, &QAnimationsEditor::stageBoxesChanged)
                            << connect(r, &QSprRender::axisChanged, this, &QAnimationsEditor::stageAxisChanged)
                            << connect(r, &QSprRender::clsnModeExit, this, &QAnimationsEditor::clsnModeExit);
    }
    ws->showForAnimations();
    r->setSprites(m_project ? m_project->sprites() : nullptr);
    if (m_config)
        r->setOnion(false, m_config->map.value(QStringLiteral("onion_effect")).toInt(),
                    m_config->map.value(QStringLiteral("onion_opacity"), 50).toInt());
    attachViews();
    QAnimations *s = store();
    const int anim = s && s->count() ? qBound(0, m_anim, s->count() - 1) : -1;
    showAction(anim, qMax(0, m_frame));
}

void QAnimationsEditor::deactivate()
{
    forceStop();
    if (m_textApply->isActive()) {
        m_textApply->stop();
        if (m_text)
            updateFromText(m_text->toPlainText());
    }
    for (const QMetaObject::Connection &c : std::as_const(m_renderConnections))
        disconnect(c);
    m_renderConnections.clear();
    if (QSprRender *r = renderer())
        r->setAdding(false, 0);
    if (QAnimSpriteWorkspace *ws = workspace())
        ws->setAttachedView(nullptr, false);
    QInterfaceEditor::deactivate();
}

void QAnimationsEditor::attachViews()
{
    if (QAnimSpriteWorkspace *ws = workspace(); ws && m_text)
        ws->setAttachedView(m_text, m_fullText);
}

bool QAnimationsEditor::canClose(QProject *)
{
    return true;
}

// ------------------------------------------------------------------ showing

void QAnimationsEditor::refreshList()
{
    auto *list = qobject_cast<QListView *>(controlWidget(QStringLiteral("air_sel")));
    QAnimations *s = store();
    if (!list || !s || !list->model())
        return;
    m_settingWidgets = true;
    if (m_anim >= 0)
        list->setCurrentIndex(s->index(m_anim));
    else
        list->clearSelection();
    m_settingWidgets = false;
}

void QAnimationsEditor::refreshText()
{
    if (!m_text)
        return;
    QAnimations *s = store();
    QString text = !s ? QString() : m_fullText ? s->fileText() : s->actionText(m_anim);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (text == m_text->toPlainText())
        return;
    m_textUpdating = true;
    const int scroll = m_text->verticalScrollBar()->value();
    m_text->setPlainText(text);
    m_text->verticalScrollBar()->setValue(scroll);
    if (m_fullText && m_anim >= 0) {
        // The whole file opens at the current action: the actions are written
        // in order, so its header is the one of the same rank.
        const QString header = QStringLiteral("[Begin Action ");
        qsizetype at = -1;
        for (int i = 0; i <= m_anim; ++i) {
            at = text.indexOf(header, at + 1, Qt::CaseInsensitive);
            if (at < 0)
                break;
        }
        if (at >= 0) {
            QTextCursor cursor(m_text->document()->findBlock(int(at)));
            m_text->setTextCursor(cursor);
            m_text->verticalScrollBar()->setValue(cursor.blockNumber());
        }
    }
    m_textUpdating = false;
}

void QAnimationsEditor::setFrameControlsEnabled(bool on)
{
    if (!m_registry)
        return;
    for (const QString &name : std::as_const(m_frameControls))
        m_registry->setControlEnabled(name, on);
}

bool QAnimationsEditor::showLine(uint line)
{
    const QAnimations *s = store();
    if (!s || s->count() == 0)
        return false;
    // The last action that begins at or before the line; lines before the
    // first action belong to it.
    int row = 0;
    for (int i = 0; i < s->count(); ++i)
        if (s->action(i)->firstLine >= 0 && uint(s->action(i)->firstLine) <= line)
            row = i;
    int frame = 0;
    const AnimAction *a = s->action(row);
    for (int f = 0; f < a->frames.size(); ++f) {
        const qint32 first = a->frames.at(f)->lines[AnimFrame::FirstLine];
        if (first >= 0 && uint(first) <= line)
            frame = f;
    }
    showAction(row, frame);
    return true;
}

void QAnimationsEditor::showAction(int row, int frame)
{
    QAnimations *s = store();
    if (!s || row < 0 || row >= s->count()) {
        m_anim = -1;
        m_frame = -1;
        m_settingWidgets = true;
        m_posText = QStringLiteral("0 / 0");
        emit setPosText(m_posText);
        emit setNumber(0);
        emit setName(QString());
        m_framePosText = QStringLiteral("0 / 0 - 0 ticks");
        emit setFramePosText(m_framePosText);
        m_settingWidgets = false;
        refreshText();
        refreshList();
        emit enabled(false);
        emit frameEnabled(false);
        emit transEnabled(false);
        if (QSprRender *r = renderer(); r && m_active)
            r->setFrame(QRenderFrame());
        return;
    }
    m_anim = row;
    const AnimAction *a = s->action(row);
    m_settingWidgets = true;
    m_posText = QStringLiteral("%1 / %2").arg(row + 1).arg(s->count());
    emit setSelPos(row);
    emit setPosText(m_posText);
    emit setNumber(a->number);
    emit setName(a->name);
    if (auto *bar = qobject_cast<QScrollBar *>(controlWidget(QStringLiteral("air_frame_sel"))))
        bar->setRange(0, qMax(0, int(a->frames.size()) - 1));
    m_settingWidgets = false;
    emit enabled(true);
    refreshList();
    refreshText();
    showFrame(frame);
}

void QAnimationsEditor::showFrame(int frame)
{
    QAnimations *s = store();
    const int count = s ? s->frameCount(m_anim) : 0;
    if (count == 0) {
        m_frame = -1;
        m_framePosText = QStringLiteral("0 / 0 - 0 ticks");
        emit setFramePosText(m_framePosText);
        emit frameEnabled(false);
        emit transEnabled(false);
        if (QSprRender *r = renderer(); r && m_active)
            r->setFrame(QRenderFrame());
        return;
    }
    m_frame = qBound(0, frame, count - 1);
    const AnimFrameData f = s->frame(m_anim, m_frame);
    qint64 ticks = 0;
    for (int i = 0; i <= m_frame; ++i) {
        const int t = s->frameLength(m_anim, i);
        ticks = (ticks < 0 || t < 0) ? -1 : ticks + t;
    }
    m_framePosText = QStringLiteral("%1 / %2 - %3 ticks").arg(m_frame + 1).arg(count).arg(ticks);
    m_settingWidgets = true;
    emit setFrameSelPos(m_frame);
    emit setFramePosText(m_framePosText);
    emit setFrameGrp(f.group);
    emit setFrameNum(f.number);
    emit setFrameX(f.x);
    emit setFrameY(f.y);
    emit setFrameTime(f.time);
    emit setFrameFlip(f.flip & 3);
    emit setFrameTrans(qMin<int>(f.trans, 2));
    emit setFrameSrc(f.src);
    emit setFrameDst(f.dst);
    emit setFrameLoop(f.loopstart);
    emit setFrameScaleX(f.scaleX);
    emit setFrameScaleY(f.scaleY);
    emit setFrameAngle(f.angle);
    emit setFrameIBlend(f.interpBlend);
    emit setFrameIOffset(f.interpOffset);
    emit setFrameIScale(f.interpScale);
    emit setFrameIAngle(f.interpAngle);
    m_settingWidgets = false;
    emit frameEnabled(!m_playing);
    emit transEnabled(!m_playing && f.trans == AnimFrame::TransAdd);
    if (QSprRender *r = renderer(); r && m_active) {
        r->setFrame(QAnimationFrame::make(*s, m_project->sprites(), m_anim, m_frame), m_frame);
        emit r->repaintNeeded(false);
    }
}

// ------------------------------------------------------------------ undo steps

void QAnimationsEditor::beginEdit()
{
    QAnimations *s = store();
    if (!s)
        return;
    if (m_stale.contains(m_project) || !m_state.contains(m_project)) {
        m_state.insert(m_project, imageOf(*s));
        m_stale.remove(m_project);
    }
    m_inEdit = true;
}

void QAnimationsEditor::commit(const QString &text, int mergeKey, bool rewriteText)
{
    m_inEdit = false;
    QAnimations *s = store();
    QUndoStack *stack = undoStack();
    if (!s || !stack)
        return;
    QByteArray after = imageOf(*s);
    QByteArray before = m_state.value(m_project);
    if (after == before)
        return;
    m_state.insert(m_project, after);
    QProject *project = m_project;
    stack->push(new AnimSnapshotCommand(text, std::move(before), std::move(after), m_anim, qMax(0, m_frame), mergeKey,
                                        [this, project](const QByteArray &state, int anim, int frame) {
                                            if (project == m_project)
                                                restore(state, anim, frame);
                                        }));
    if (rewriteText)
        animChanged();
    emit modifiedChanged();
}

void QAnimationsEditor::restore(const QByteArray &state, int anim, int frame)
{
    QAnimations *s = store();
    if (!s)
        return;
    forceStop();
    m_restoring = true;
    s->readStream(state);
    m_state.insert(m_project, state);
    m_stale.remove(m_project);
    m_restoring = false;
    showAction(qMin(anim, s->count() - 1), frame);
    emit modifiedChanged();
}

void QAnimationsEditor::undo()
{
    if (QUndoStack *stack = undoStack())
        stack->undo();
}

void QAnimationsEditor::redo()
{
    if (QUndoStack *stack = undoStack())
        stack->redo();
}

void QAnimationsEditor::animChanged()
{
    refreshText();
}

// ------------------------------------------------------------------ selection

void QAnimationsEditor::selPosChanged(int row)
{
    if (row == m_anim)
        return;
    forceStop();
    showAction(row, 0);
}

void QAnimationsEditor::frameSelPosChanged(int frame)
{
    if (m_settingWidgets || frame == m_frame)
        return;
    showFrame(frame);
}

// ------------------------------------------------------------------ frame fields

void QAnimationsEditor::editFrame(const std::function<void(AnimFrameData &)> &edit)
{
    QAnimations *s = store();
    if (m_settingWidgets || !s || m_frame < 0 || m_playing)
        return;
    AnimFrameData data = s->frame(m_anim, m_frame);
    const AnimFrameData old = data;
    edit(data);
    if (data == old)
        return;
    beginEdit();
    s->setFrame(m_anim, m_frame, data);
    commit(tr("Edit frame"));
    showFrame(m_frame);
}

void QAnimationsEditor::frameGrpChanged(int v) { editFrame([v](AnimFrameData &f) { f.group = qint16(v); }); }
void QAnimationsEditor::frameNumChanged(int v) { editFrame([v](AnimFrameData &f) { f.number = qint16(v); }); }
void QAnimationsEditor::frameXChanged(int v) { editFrame([v](AnimFrameData &f) { f.x = v; }); }
void QAnimationsEditor::frameYChanged(int v) { editFrame([v](AnimFrameData &f) { f.y = v; }); }
void QAnimationsEditor::axisLeft() { editFrame([](AnimFrameData &f) { --f.x; }); }
void QAnimationsEditor::axisUp() { editFrame([](AnimFrameData &f) { --f.y; }); }
void QAnimationsEditor::axisRight() { editFrame([](AnimFrameData &f) { ++f.x; }); }
void QAnimationsEditor::axisDown() { editFrame([](AnimFrameData &f) { ++f.y; }); }
void QAnimationsEditor::frameTimeChanged(int v) { editFrame([v](AnimFrameData &f) { f.time = v; }); }
void QAnimationsEditor::frameFlipChanged(int v) { editFrame([v](AnimFrameData &f) { f.flip = quint8(v & 3); }); }
void QAnimationsEditor::frameSrcChanged(int v) { editFrame([v](AnimFrameData &f) { f.src = quint16(v); }); }
void QAnimationsEditor::frameDstChanged(int v) { editFrame([v](AnimFrameData &f) { f.dst = quint16(v); }); }
void QAnimationsEditor::frameLoopChanged(bool v) { editFrame([v](AnimFrameData &f) { f.loopstart = v; }); }
void QAnimationsEditor::frameScaleXChanged(double v) { editFrame([v](AnimFrameData &f) { f.scaleX = float(v); }); }
void QAnimationsEditor::frameScaleYChanged(double v) { editFrame([v](AnimFrameData &f) { f.scaleY = float(v); }); }
void QAnimationsEditor::frameAngleChanged(double v) { editFrame([v](AnimFrameData &f) { f.angle = float(v); }); }
void QAnimationsEditor::frameIBlendChanged(bool v) { editFrame([v](AnimFrameData &f) { f.interpBlend = v; }); }
void QAnimationsEditor::frameIOffsetChanged(bool v) { editFrame([v](AnimFrameData &f) { f.interpOffset = v; }); }
void QAnimationsEditor::frameIScaleChanged(bool v) { editFrame([v](AnimFrameData &f) { f.interpScale = v; }); }
void QAnimationsEditor::frameIAngleChanged(bool v) { editFrame([v](AnimFrameData &f) { f.interpAngle = v; }); }

void QAnimationsEditor::frameTransChanged(int v)
{
    // The factors only mean something for additive blending.
    if (!m_playing)
        emit transEnabled(v == AnimFrame::TransAdd);
    editFrame([v](AnimFrameData &f) { f.trans = quint8(qBound(0, v, 2)); });
}
