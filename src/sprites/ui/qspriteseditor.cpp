#include "qspriteseditor.h"

#include "qpaletteseditor.h"
#include "spritedialogs.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "render/qsprrender.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"
#include "shell/qinterfaceworkspace.h"
#include "shell/qwindowlayout.h"
#include "sprites/qsprites.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSpinBox>
#include <QTimer>
#include <QtMath>

namespace {

const QList<int> kScope{1, -1};

// Status fields of the window this editor writes.
constexpr int PositionField = 1;
constexpr int VersionField = 2;

QScrollBar *scrollBar(QEditorRegistry &registry, const char *name)
{
    auto *c = dynamic_cast<QInterfaceControlWidget *>(registry.control(QString::fromLatin1(name)));
    return c ? qobject_cast<QScrollBar *>(c->widget()) : nullptr;
}

int bitsOf(QImage::Format format)
{
    switch (format) {
    case QImage::Format_Indexed8: return 8;
    case QImage::Format_RGB32: return 24;
    default: return 32;
    }
}

} // namespace

QSpritesEditor::QSpritesEditor(QEditorRegistry &registry, const QAppObjects &objects, QObject *parent)
    : QInterfaceEditor(parent)
    , m_registry(registry)
    , m_config(objects.config)
{
}

QSpritesEditor::~QSpritesEditor()
{
    detachStore();
}

// --- setup -------------------------------------------------------------------

void QSpritesEditor::setupPanel()
{
    QActionManager &actions = m_registry.actionManager();
    const QTranslationUnit &tu = actions.translation();
    struct Command
    {
        const char *key;
        int caption;
        const char *slot;
    };
    const Command commands[] = {
        {"spr_new", 70, SLOT(clear())},
        {"spr_open", 71, SLOT(open())},
        {"spr_save", 72, SLOT(save())},
        {"spr_saveas", 73, SLOT(saveAs())},
        {"spr_add", 74, SLOT(add())},
        {"spr_delete", 75, SLOT(del())},
        {"spr_openimg", 76, SLOT(openImg())},
        {"spr_saveimg", 77, SLOT(saveImg())},
        {"spr_saveimg_aligned", 78, SLOT(saveImgAlign())},
        {"spr_crop", 79, SLOT(crop())},
        {"spr_cropall", 80, SLOT(cropAll())},
        {"spr_duplicate", 81, SLOT(duplicate())},
        {"spr_delete_grp", 82, SLOT(delGroup())},
        {"spr_rename_grp", 83, SLOT(renameGroup())},
        {"spr_split_channels", 86, SLOT(splitRGB())},
        {"spr_prev_grp", 95, SLOT(prevGrp())},
        {"spr_next_grp", 96, SLOT(nextGrp())},
        {"spr_pos_left", 97, SLOT(axisLeft())},
        {"spr_pos_up", 98, SLOT(axisUp())},
        {"spr_pos_right", 99, SLOT(axisRight())},
        {"spr_pos_down", 100, SLOT(axisDown())},
        {"spr_align_topleft", 105, SLOT(alignTopLeft())},
        {"spr_align_topright", 106, SLOT(alignTopRight())},
        {"spr_align_bottomleft", 107, SLOT(alignBotLeft())},
        {"spr_align_bottomright", 108, SLOT(alignBotRight())},
        {"spr_align_topcenter", 109, SLOT(alignTopCenter())},
        {"spr_align_bottomcenter", 110, SLOT(alignBotCenter())},
        {"spr_align_centercenter", 111, SLOT(alignCenterCenter())},
        {"spr_align_centerleft", 112, SLOT(alignCenterLeft())},
        {"spr_align_centerright", 113, SLOT(alignCenterRight())},
    };
    for (const Command &c : commands) {
        QAction2 *a = actions.addAction(kScope, QString::fromLatin1(c.key), c.caption, false, this, c.slot);
        m_registry.addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }

    using Base = QInterfaceControlWidgetBase;
    auto widget = [&](const char *name, int type, int caption, const char *slot, const char *signal,
                      double minimum = 0, double maximum = 0) {
        QInterfaceControlOptions options;
        options.minimum = minimum;
        options.maximum = maximum;
        auto control = std::make_unique<QInterfaceControlWidget>(type, caption, &options, this, slot, signal, tu);
        QWidget *w = control->widget();
        m_registry.addControl(QString::fromLatin1(name), std::move(control));
        return w;
    };
    widget("spr_sel", Base::ScrollBar, -1, SLOT(selPosChanged(int)), SIGNAL(setSelPos(int)));
    widget("spr_sel_lb", Base::Label, -1, nullptr, SIGNAL(setPosText(QString)));
    widget("spr_grp_lb", Base::Label, 91, nullptr, nullptr);
    widget("spr_num_lb", Base::Label, 92, nullptr, nullptr);
    widget("spr_xaxis_lb", Base::Label, 93, nullptr, nullptr);
    widget("spr_yaxis_lb", Base::Label, 94, nullptr, nullptr);
    widget("spr_link_lb", Base::Label, -1, nullptr, SIGNAL(setLinkText(QString)));
    widget("spr_info_lb", Base::Label, -1, nullptr, SIGNAL(setInfoText(QString)));
    widget("spr_onion_lb", Base::Label, -1, nullptr, SIGNAL(setOnionText(QString)));
    const struct
    {
        const char *name;
        const char *slot;
        const char *signal;
        int minimum, maximum;
    } spins[] = {
        {"spr_grp", SLOT(grpChanged(int)), SIGNAL(setGroup(int)), 0, 65535},
        {"spr_num", SLOT(numChanged(int)), SIGNAL(setNumber(int)), 0, 65535},
        {"spr_xaxis", SLOT(xChanged(int)), SIGNAL(setX(int)), -32768, 32767},
        {"spr_yaxis", SLOT(yChanged(int)), SIGNAL(setY(int)), -32768, 32767},
    };
    for (const auto &s : spins) {
        // Typing a number is one change, not one per digit.
        if (auto *spin = qobject_cast<QSpinBox *>(widget(s.name, Base::SpinBox, -1, s.slot, s.signal, s.minimum, s.maximum)))
            spin->setKeyboardTracking(false);
    }
    widget("spr_trans_color", Base::CheckBox, 102, SLOT(transChanged(bool)), SIGNAL(setTrans(bool)));
    widget("spr_switch_pal", Base::CheckBox, 103, SLOT(switchPalChanged(bool)), SIGNAL(setSwitchPal(bool)));
    widget("spr_onion_skin", Base::CheckBox, 104, SLOT(onionSkinChanged(bool)), SIGNAL(setOnionSkin(bool)));
    widget("spr_onion_sel", Base::ScrollBar, -1, SLOT(onionSelPosChanged(int)), SIGNAL(setOnionSelPos(int)));
    for (const char *name : {"spr_grp", "spr_num", "spr_xaxis", "spr_yaxis", "spr_sel", "spr_onion_sel"})
        connect(this, &QSpritesEditor::enabled, this, [this, name](bool on) { m_registry.setControlEnabled(QString::fromLatin1(name), on); });
}

void QSpritesEditor::applyConfig()
{
    m_updating = true;
    emit setTrans(flag("show_trans_color", false));
    emit setSwitchPal(flag("switch_to_imgpal", true));
    m_updating = false;
    if (m_active)
        updateSel();
}

QSprRender *QSpritesEditor::stage()
{
    if (!m_stage) {
        // The stage belongs to the shared workspace; it is known by its type and its host by name.
        if (QInterfaceWorkspace *w = m_registry.workspace(workspaceId())) {
            m_stage = w->findChild<QSprRender *>();
            if (QWidget *page = w->widget())
                m_host = page->findChild<QWidget *>(QStringLiteral("stage"));
            if (m_host)
                m_host->installEventFilter(this);
        }
    }
    return m_stage;
}

QWidget *QSpritesEditor::stageHost()
{
    stage();
    return m_host;
}

QSprites *QSpritesEditor::sprites() const
{
    return m_project ? m_project->sprites() : nullptr;
}

bool QSpritesEditor::isModified() const
{
    const QSprites *s = sprites();
    return s && s->isModified();
}

QWidget *QSpritesEditor::window() const
{
    return m_registry.layout().window();
}

bool QSpritesEditor::flag(const char *key, bool fallback) const
{
    return m_config ? m_config->flag(QString::fromLatin1(key), fallback) : fallback;
}

bool QSpritesEditor::isCharacter() const
{
    return m_project && m_project->type() == QProjectType::Character;
}

// --- project and activation ----------------------------------------------------

void QSpritesEditor::setProject(QProject *project)
{
    if (m_project == project)
        return;
    if (m_project)
        m_states[m_project] = ProjectState{m_pos, m_onion, m_onionPos};
    detachStore();
    QInterfaceEditor::setProject(project);
    const ProjectState state = project ? m_states.value(project) : ProjectState();
    m_pos = state.position;
    m_onion = state.onion;
    m_onionPos = state.onionPosition;
    if (project && !m_states.contains(project))
        connect(project, &QObject::destroyed, this, [this, project] { m_states.remove(project); });
}

void QSpritesEditor::activate(bool reload)
{
    QInterfaceEditor::activate(reload);
    if (!reload)
        return;
    attachStore();
    if (QSprRender *r = stage()) {
        r->setSprites(sprites());
        r->setLocked(false);
        r->setBlank(true);
        r->setMode(SpriteMode);
        r->setBlank(false);
        r->setShowColour0(flag("show_trans_color", false));
    }
    applyConfig();
}

void QSpritesEditor::deactivate()
{
    detachStore();
    if (m_active) {
        m_registry.layout().setStatusText(PositionField, QString());
        m_registry.layout().setStatusText(VersionField, QString());
    }
    if (m_stage)
        m_stage->setOnion(false, 0, 100);
    QInterfaceEditor::deactivate();
}

void QSpritesEditor::attachStore()
{
    detachStore();
    if (QSprites *s = sprites()) {
        m_connections << connect(s, &QSprites::changed, this, [this] {
            emit modifiedChanged();
            scheduleRefresh();
        });
        m_connections << connect(s->undoStack(), &QUndoStack::cleanChanged, this, [this] { emit modifiedChanged(); });
    }
    if (QSprRender *r = stage()) {
        m_connections << connect(r, &QSprRender::axisChanged, this, &QSpritesEditor::axisChanged);
        // The pointer in sprite pixels from the axis.
        m_connections << connect(r, &QSprRender::cursorChanged, this, [this, r](const QPoint &p) {
            m_registry.layout().setStatusText(PositionField, tr("Position: %1, %2")
                                                                 .arg(qFloor(p.x() / r->zoom()))
                                                                 .arg(qFloor(p.y() / r->zoom())));
        });
    }
}

void QSpritesEditor::detachStore()
{
    for (const QMetaObject::Connection &c : std::as_const(m_connections))
        disconnect(c);
    m_connections.clear();
}

void QSpritesEditor::scheduleRefresh()
{
    // Changes made elsewhere (palettes, scripts, the stage) reach the panel once
    // the event loop comes round; a drag refreshes only what it changes.
    if (m_refreshPending)
        return;
    m_refreshPending = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshPending = false;
        if (m_active && !m_dragging)
            updateSel();
    });
}

// --- the panel ------------------------------------------------------------------

void QSpritesEditor::updateRanges()
{
    QSprites *s = sprites();
    const int n = s ? s->count() : 0;
    for (const char *name : {"spr_sel", "spr_onion_sel"}) {
        if (QScrollBar *bar = scrollBar(m_registry, name)) {
            const QSignalBlocker block(bar);
            bar->setRange(0, qMax(0, n - 1));
            bar->setPageStep(10);
        }
    }
}

void QSpritesEditor::setPalettes(QPalettesEditor *palettes)
{
    m_palettes = palettes;
    if (palettes)
        connect(palettes, &QPalettesEditor::shownPaletteChanged, this, &QSpritesEditor::redrawStage);
}

int QSpritesEditor::shownPalette() const
{
    // The palettes panel, when open on this project, decides.
    if (m_palettes && m_palettes->isActive() && m_palettes->project() == m_project && m_palettes->position() >= 0) {
        const int shown = m_palettes->position();
        // A character palette (group 1) is what the player picks: as in the
        // engine it recolours the sprites drawn in palette 1,1, and only those.
        const QSprites *s = sprites();
        const QSpriteItem *item = s ? s->item(m_pos) : nullptr;
        if (item && s->paletteInfo(shown).group == 1) {
            const QPaletteInfo own = s->paletteInfo(item->info.palette);
            if (own.group != 1 || own.number != 1)
                return -1;
        }
        return shown;
    }
    // Off: the sprites show in the character's own palette (1,1) where there is one.
    const QSprites *s = sprites();
    if (!s || flag("switch_to_imgpal", true))
        return -1;
    return s->findPalette(0, 1, 1);
}

void QSpritesEditor::updateSel()
{
    QSprites *s = sprites();
    const int n = s ? s->count() : 0;
    m_pos = n == 0 ? 0 : qBound(0, m_pos, n - 1);
    m_onionPos = n == 0 ? 0 : qBound(0, m_onionPos, n - 1);
    m_updating = true;
    updateRanges();
    emit enabled(n > 0);
    emit setSelPos(m_pos);
    emit setPosText(n == 0 ? QStringLiteral("0 / 0") : QStringLiteral("%1 / %2").arg(m_pos + 1).arg(n));
    const QSpriteItem *item = s ? s->item(m_pos) : nullptr;
    const QSpriteInfo info = item ? item->info : QSpriteInfo();
    emit setGroup(info.group);
    emit setNumber(info.number);
    emit setX(info.x);
    emit setY(info.y);
    QString link = tr("No linkage");
    if (item && !info.hasImage && s->item(info.link))
        link = tr("Linked at %1, %2").arg(s->item(info.link)->info.group).arg(s->item(info.link)->info.number);
    emit setLinkText(link);
    emit setInfoText(item && item->width && item->height
                         ? tr("%1 x %2 pixels (%3 bits)").arg(item->width).arg(item->height).arg(bitsOf(item->imageFormat))
                         : tr("No image"));
    emit setOnionSkin(m_onion);
    emit setOnionSelPos(m_onionPos);
    const QSpriteItem *onion = s ? s->item(m_onionPos) : nullptr;
    emit setOnionText(onion ? tr("%1 / %2 (%3, %4)").arg(m_onionPos + 1).arg(n).arg(onion->info.group).arg(onion->info.number)
                            : QStringLiteral("0 / 0"));
    m_updating = false;
    if (m_palettes && n > 0)
        m_palettes->followSprite(m_pos);
    if (s) {
        s->setIndex(quint32(m_pos));
        const quint32 v = s->version();
        m_registry.layout().setStatusText(VersionField, tr("Version: %1.%2.%3.%4").arg(v >> 24).arg((v >> 16) & 0xff)
                                                             .arg((v >> 8) & 0xff).arg(v & 0xff));
    }
    updateStage();
}

void QSpritesEditor::updateStage()
{
    QSprRender *r = stage();
    if (!r || !m_active)
        return;
    QSprites *s = sprites();
    const int n = s ? s->count() : 0;
    r->setSprites(s);
    r->setSpriteIndex(n ? m_pos : -1, shownPalette());
    r->setOnion(m_onion && n > 0, m_config ? m_config->map.value(QStringLiteral("onion_effect"), 1).toInt() : 1,
                qBound(0, m_config ? m_config->map.value(QStringLiteral("onion_opacity"), 50).toInt() : 50, 100));
    if (m_onion && n > 0)
        r->setOnionSprite(m_onionPos);
    if (m_host)
        m_host->update();
}

void QSpritesEditor::definePos(int position)
{
    m_pos = position;
    updateSel();
}

void QSpritesEditor::selPosChanged(int position)
{
    if (!m_updating && position != m_pos)
        definePos(position);
}

void QSpritesEditor::prevSprite()
{
    if (m_pos > 0)
        definePos(m_pos - 1);
}

void QSpritesEditor::nextSprite()
{
    QSprites *s = sprites();
    if (s && m_pos + 1 < s->count())
        definePos(m_pos + 1);
}

void QSpritesEditor::prevGrp()
{
    if (QSprites *s = sprites(); s && s->count())
        definePos(s->previousGroupStart(m_pos));
}

void QSpritesEditor::nextGrp()
{
    if (QSprites *s = sprites(); s && s->count())
        definePos(s->nextGroupStart(m_pos));
}

template <typename F> void QSpritesEditor::editInfo(F change)
{
    QSprites *s = sprites();
    if (m_updating || !s || !s->item(m_pos))
        return;
    QSpriteInfo info = s->item(m_pos)->info;
    const QSpriteInfo before = info;
    change(info);
    if (info.x == before.x && info.y == before.y && info.group == before.group && info.number == before.number)
        return;
    s->setInfo(m_pos, info);
    updateSel();
}

void QSpritesEditor::grpChanged(int group)
{
    editInfo([group](QSpriteInfo &i) { i.group = quint16(group); });
}

void QSpritesEditor::numChanged(int number)
{
    editInfo([number](QSpriteInfo &i) { i.number = quint16(number); });
}

void QSpritesEditor::xChanged(int x)
{
    editInfo([x](QSpriteInfo &i) { i.x = qint16(x); });
}

void QSpritesEditor::yChanged(int y)
{
    editInfo([y](QSpriteInfo &i) { i.y = qint16(y); });
}

// The keys move the sprite against its axis: "left" moves the picture left.
void QSpritesEditor::axisLeft()
{
    editInfo([](QSpriteInfo &i) { i.x = qint16(i.x + 1); });
}

void QSpritesEditor::axisUp()
{
    editInfo([](QSpriteInfo &i) { i.y = qint16(i.y + 1); });
}

void QSpritesEditor::axisRight()
{
    editInfo([](QSpriteInfo &i) { i.x = qint16(i.x - 1); });
}

void QSpritesEditor::axisDown()
{
    editInfo([](QSpriteInfo &i) { i.y = qint16(i.y - 1); });
}

void QSpritesEditor::setAxisPreset(int preset)
{
    QSprites *s = sprites();
    const QSpriteItem *item = s ? s->item(m_pos) : nullptr;
    if (!item)
        return;
    const QPoint axis = AddSpr::axisFor(preset, item->width, item->height, QPoint());
    editInfo([axis](QSpriteInfo &i) {
        i.x = qint16(axis.x());
        i.y = qint16(axis.y());
    });
}

void QSpritesEditor::alignTopLeft() { setAxisPreset(AddSpr::AxisNO); }
void QSpritesEditor::alignTopRight() { setAxisPreset(AddSpr::AxisNL); }
void QSpritesEditor::alignBotLeft() { setAxisPreset(AddSpr::AxisSO); }
void QSpritesEditor::alignBotRight() { setAxisPreset(AddSpr::AxisSL); }
void QSpritesEditor::alignTopCenter() { setAxisPreset(AddSpr::AxisN); }
void QSpritesEditor::alignBotCenter() { setAxisPreset(AddSpr::AxisS); }
void QSpritesEditor::alignCenterCenter() { setAxisPreset(AddSpr::AxisC); }
void QSpritesEditor::alignCenterLeft() { setAxisPreset(AddSpr::AxisO); }
void QSpritesEditor::alignCenterRight() { setAxisPreset(AddSpr::AxisL); }

void QSpritesEditor::axisChanged(QRenderMode mode, const QPoint &value)
{
    // The stage has already written the axis into the store; the panel follows.
    if (mode != SpriteMode)
        return;
    m_updating = true;
    emit setX(value.x());
    emit setY(value.y());
    m_updating = false;
}

bool QSpritesEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_host || !m_active)
        return QInterfaceEditor::eventFilter(watched, event);
    QSprites *s = sprites();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (m_palettes && m_palettes->isPicking() && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            // The picker takes the click: the colour index under it, and no axis drag.
            const QPoint at = static_cast<QMouseEvent *>(event)->position().toPoint();
            const QRect r = m_stage ? m_stage->spriteRect() : QRect();
            const QImage image = s && r.contains(at) ? s->image(m_pos) : QImage();
            if (image.format() == QImage::Format_Indexed8 && r.width() > 0 && r.height() > 0) {
                const int x = qBound(0, (at.x() - r.x()) * image.width() / r.width(), image.width() - 1);
                const int y = qBound(0, (at.y() - r.y()) * image.height() / r.height(), image.height() - 1);
                m_palettes->colorCaptured(uchar(image.pixelIndex(x, y)));
            }
            return true;
        }
        if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton && s) {
            m_dragging = true;
            m_dragStart = s->undoStack()->index();
        }
        break;
    case QEvent::MouseButtonRelease:
        if (m_dragging && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
            m_dragging = false;
            // A drag stores the axis at every step; the steps become one change.
            if (s && s->item(m_pos) && m_dragStart >= 0 && s->undoStack()->index() > m_dragStart + 1) {
                const QSpriteInfo after = s->item(m_pos)->info;
                s->undoStack()->setIndex(m_dragStart);
                s->setInfo(m_pos, after);
            }
            m_dragStart = -1;
            scheduleRefresh();
        }
        break;
    case QEvent::KeyPress: {
        // On the stage the arrow keys walk the sprites, Home and End jump to the ends.
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() & ~Qt::KeypadModifier)
            break;
        switch (key->key()) {
        case Qt::Key_Left: prevSprite(); return true;
        case Qt::Key_Right: nextSprite(); return true;
        case Qt::Key_Up: prevGrp(); return true;
        case Qt::Key_Down: nextGrp(); return true;
        case Qt::Key_Home: definePos(0); return true;
        case Qt::Key_End: definePos(s ? s->count() - 1 : 0); return true;
        default: break;
        }
        break;
    }
    default:
        break;
    }
    return QInterfaceEditor::eventFilter(watched, event);
}

// --- view switches -----------------------------------------------------------------

void QSpritesEditor::transChanged(bool on)
{
    if (m_updating)
        return;
    if (m_config)
        m_config->map[QStringLiteral("show_trans_color")] = on;
    if (QSprRender *r = stage())
        r->setShowColour0(on);
    updateStage();
}

void QSpritesEditor::switchPalChanged(bool on)
{
    if (m_updating)
        return;
    if (m_config)
        m_config->map[QStringLiteral("switch_to_imgpal")] = on;
    updateStage();
}

void QSpritesEditor::onionSkinChanged(bool on)
{
    if (m_updating)
        return;
    m_onion = on;
    if (on && m_onionPos == m_pos && m_pos > 0)
        m_onionPos = m_pos - 1;
    updateSel();
}

void QSpritesEditor::onionSelPosChanged(int position)
{
    if (m_updating)
        return;
    m_onionPos = position;
    updateSel();
}
