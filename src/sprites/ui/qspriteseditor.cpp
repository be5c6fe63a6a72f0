#include "qspriteseditor.h"

#include "qpaletteseditor.h"
#include "spritedialogs.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "render/qsprrender.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"
#include "shell/qinterfaceworkspace.h"
#include "shell/qprogress.h"
#include "shell/qwindowlayout.h"
#include "sprites/qimagefile.h"
#include "sprites/qsprites.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>
#include <QSaveFile>
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

// The sprite drawn on a canvas of `size` with its axis on `axis`; an indexed
// sprite stays indexed, with its colour table and colour 0 around it.
QImage onCanvas(const QImage &sprite, const QPoint &spriteAxis, const QSize &size, const QPoint &axis)
{
    const QPoint at = axis - spriteAxis;
    if (sprite.format() == QImage::Format_Indexed8) {
        QImage canvas(size, QImage::Format_Indexed8);
        canvas.setColorTable(sprite.colorTable().isEmpty() ? QList<QRgb>(256, qRgb(0, 0, 0)) : sprite.colorTable());
        canvas.fill(0);
        for (int y = 0; y < sprite.height(); ++y) {
            const int ty = y + at.y();
            if (ty < 0 || ty >= size.height())
                continue;
            const uchar *src = sprite.constScanLine(y);
            uchar *dst = canvas.scanLine(ty);
            for (int x = 0; x < sprite.width(); ++x) {
                const int tx = x + at.x();
                if (tx >= 0 && tx < size.width())
                    dst[tx] = src[x];
            }
        }
        return canvas;
    }
    QImage canvas(size, QImage::Format_ARGB32);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(at, sprite);
    return canvas;
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

QString QSpritesEditor::folder(const char *key) const
{
    return m_project ? m_project->path(QString::fromLatin1(key)) : QString();
}

void QSpritesEditor::setFolder(const char *key, const QString &file)
{
    if (m_project)
        m_project->setPath(QString::fromLatin1(key), QFileInfo(file).absolutePath());
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

// --- file commands ------------------------------------------------------------------

void QSpritesEditor::clear()
{
    QSprites *s = sprites();
    if (!s)
        return;
    if (s->isModified()
        && !QAskUser::question(window(), tr("New"),
                               tr("Do you really want to discard the changes made in the sprites and/or palettes?")))
        return;
    s->clear();
    m_pos = m_onionPos = 0;
    updateSel();
    emit modifiedChanged();
}

void QSpritesEditor::open()
{
    QSprites *s = sprites();
    if (!s)
        return;
    const QString path = QAskUser::openFileName(window(), tr("Open sprites"), folder("proj_path"),
                                                QProject::fileFilter(QProjectFile::Sprites));
    if (path.isEmpty())
        return;
    if (s->isModified()
        && !QAskUser::question(window(), tr("Open"),
                               tr("Do you really want to discard the changes made in the sprites and/or palettes?")))
        return;
    setFolder("proj_path", path);
    bool reported = false;
    const auto c = connect(s, &QSprites::fileError, this, [&reported] { reported = true; });
    bool ok = false;
    {
        QProgress progress(tr("Loading sprites..."), window());
        progress.attach(s);
        ok = s->fromFile(path, isCharacter(), false);
    }
    disconnect(c);
    if (!ok && !reported)
        QAskUser::critical(window(), tr("Open"), tr("The sprites of %1 could not be read.").arg(QDir::toNativeSeparators(path)));
    m_pos = m_onionPos = 0;
    updateSel();
    emit modifiedChanged();
}

void QSpritesEditor::save()
{
    QSprites *s = sprites();
    if (!s)
        return;
    if (s->fileName().isEmpty()) {
        saveAs();
        return;
    }
    bool reported = false;
    const auto c = connect(s, &QSprites::fileError, this, [&reported] { reported = true; });
    bool ok = false;
    {
        QProgress progress(tr("Saving sprites..."), window());
        progress.attach(s);
        ok = s->toFile(s->fileName(), isCharacter(), s->version(), true, false);
    }
    disconnect(c);
    if (!ok && !reported)
        QAskUser::critical(window(), tr("Save"),
                           tr("The sprites could not be written to %1.").arg(QDir::toNativeSeparators(s->fileName())));
    emit modifiedChanged();
}

void QSpritesEditor::saveAs()
{
    // The project asks for the name and the version, and reports a failure itself.
    if (m_project)
        m_project->saveFile(QProjectFile::Sprites, false);
    emit modifiedChanged();
    updateSel();
}

// --- edit commands ------------------------------------------------------------------

void QSpritesEditor::undo()
{
    if (QSprites *s = sprites()) {
        s->undoStack()->undo();
        updateSel();
    }
}

void QSpritesEditor::redo()
{
    if (QSprites *s = sprites()) {
        s->undoStack()->redo();
        updateSel();
    }
}

void QSpritesEditor::cut()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    s->copy(m_pos);
    s->remove(m_pos);
    updateSel();
}

void QSpritesEditor::copy()
{
    if (QSprites *s = sprites(); s && s->item(m_pos))
        s->copy(m_pos);
}

void QSpritesEditor::paste()
{
    QSprites *s = sprites();
    if (!s)
        return;
    const int at = s->count() ? m_pos + 1 : 0;
    const int before = s->count();
    s->paste(at);
    if (s->count() > before)
        m_pos = at;
    updateSel();
}

void QSpritesEditor::find(const QString &text, const QQuickFindOptions &options)
{
    QSprites *s = sprites();
    if (!s || text.isEmpty())
        return;
    // A plain search matches the whole "group,number"; an expression may match a part.
    const bool regex = options.value(QQuickFindOption::RegularExpression);
    QRegularExpression re(regex ? text : QRegularExpression::anchoredPattern(QRegularExpression::escape(text)),
                          options.value(QQuickFindOption::CaseSensitive) ? QRegularExpression::NoPatternOption
                                                                         : QRegularExpression::CaseInsensitiveOption);
    if (!re.isValid()) {
        QAskUser::warning(window(), tr("Find"), tr("The expression is not valid: %1").arg(re.errorString()));
        return;
    }
    const int n = s->count();
    const int step = options.value(QQuickFindOption::Backward) ? -1 : 1;
    const bool circular = options.value(QQuickFindOption::Circular);
    for (int k = 1; k <= n; ++k) {
        int i = m_pos + step * k;
        if (i < 0 || i >= n) {
            if (!circular)
                break;
            i = (i % n + n) % n;
        }
        const QSpriteInfo &info = s->item(i)->info;
        if (re.match(QStringLiteral("%1,%2").arg(info.group).arg(info.number)).hasMatch()) {
            definePos(i);
            return;
        }
    }
    QAskUser::message(window(), QMessageBox::Information, tr("Find"), tr("No sprite found!"));
}

void QSpritesEditor::replace(const QString &text, const QString &with, const QQuickFindOptions &options, bool all)
{
    QSprites *s = sprites();
    if (!s || text.isEmpty())
        return;
    static const QRegularExpression form(QStringLiteral("^(\\d{1,5})?(?:,\\s*(\\d{1,5}))?$"));
    const QRegularExpressionMatch m = form.match(with.trimmed());
    const bool hasGroup = m.hasMatch() && !m.captured(1).isEmpty();
    const bool hasNumber = m.hasMatch() && !m.captured(2).isEmpty();
    if (!hasGroup && !hasNumber) {
        QAskUser::warning(window(), tr("Replace"),
                          tr("The replacement must be a group, a group and a number (\"10,5\") or a number (\",5\")."));
        return;
    }
    const int group = qMin(m.captured(1).toInt(), 65535);
    const int number = qMin(m.captured(2).toInt(), 65535);
    const bool regex = options.value(QQuickFindOption::RegularExpression);
    const QRegularExpression re(regex ? text : QRegularExpression::anchoredPattern(QRegularExpression::escape(text)),
                                options.value(QQuickFindOption::CaseSensitive) ? QRegularExpression::NoPatternOption
                                                                               : QRegularExpression::CaseInsensitiveOption);
    if (!re.isValid()) {
        QAskUser::warning(window(), tr("Replace"), tr("The expression is not valid: %1").arg(re.errorString()));
        return;
    }
    auto matches = [&](int i) {
        const QSpriteInfo &info = s->item(i)->info;
        return re.match(QStringLiteral("%1,%2").arg(info.group).arg(info.number)).hasMatch();
    };
    auto change = [&](int i) {
        QSpriteInfo info = s->item(i)->info;
        if (hasGroup)
            info.group = quint16(group);
        if (hasNumber)
            info.number = quint16(number);
        s->setInfo(i, info);
    };
    const int n = s->count();
    int changed = 0;
    if (all) {
        s->undoStack()->beginMacro(QStringLiteral("replace"));
        for (int i = 0; i < n; ++i) {
            if (matches(i)) {
                change(i);
                ++changed;
            }
        }
        s->undoStack()->endMacro();
    } else {
        // The current sprite first, then the next that matches.
        const bool backward = options.value(QQuickFindOption::Backward);
        for (int i = m_pos; i >= 0 && i < n; i += backward ? -1 : 1) {
            if (matches(i)) {
                change(i);
                m_pos = i;
                ++changed;
                break;
            }
        }
    }
    if (!changed)
        QAskUser::message(window(), QMessageBox::Information, tr("Replace"), tr("No sprite found!"));
    updateSel();
}

// --- sprites -----------------------------------------------------------------------------

void QSpritesEditor::add()
{
    QSprites *s = sprites();
    if (!s)
        return;
    const QStringList files = QAskUser::openFileNames(window(), tr("Add sprites"), folder("spr_path"), QImageFile::openFilter());
    if (files.isEmpty())
        return;
    setFolder("spr_path", files.first());

    AddSpr dialog(window());
    const QSpriteItem *current = s->item(m_pos);
    const QSpriteInfo info = current ? current->info : QSpriteInfo();
    const QPaletteInfo pal = current ? s->paletteInfo(info.palette) : QPaletteInfo();
    dialog.setDefaults(info.group, info.number, info.x, info.y, !current || quint16(info.x) == 65535, pal.group,
                       pal.number);
    if (flag("show_addsprite_dialog", true) && QAskUser::exec(&dialog) != QDialog::Accepted)
        return;

    int number = dialog.number();
    int at = s->count() ? m_pos + 1 : 0;
    const int first = at;
    QStringList failed;
    s->undoStack()->beginMacro(QStringLiteral("add"));
    for (const QString &file : files) {
        const QImage image = QImageFile::read(file);
        if (image.isNull()) {
            failed << QDir::toNativeSeparators(file);
            continue;
        }
        s->insert(at);
        s->changeImage(at, image, dialog.paletteMode(), dialog.reversed(), dialog.paletteGroup(), dialog.paletteNumber());
        if (dialog.cropMode() == AddSpr::CropBeforeAxis)
            s->crop(at);
        const quint32 size = s->spriteSize(at);
        const QPoint axis = AddSpr::axisFor(dialog.axisPreset(), int(size & 0xffff), int(size >> 16), dialog.explicitAxis());
        QSpriteInfo added = s->item(at)->info;
        added.x = qint16(axis.x());
        added.y = qint16(axis.y());
        added.group = quint16(dialog.group());
        added.number = quint16(qMin(number, 65535));
        s->setInfo(at, added);
        if (dialog.cropMode() == AddSpr::CropAfterAxis)
            s->crop(at);
        number += dialog.step();
        ++at;
    }
    s->undoStack()->endMacro();
    if (at > first)
        m_pos = first;
    updateSel();
    if (!failed.isEmpty())
        QAskUser::warning(window(), tr("Add sprites"),
                          tr("These files could not be read as images:\n%1").arg(failed.join(QLatin1Char('\n'))));
}

void QSpritesEditor::del()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    if (flag("confirm_delete", true)
        && !QAskUser::question(window(), tr("Delete"), tr("Do you really want to delete the sprite?")))
        return;
    s->remove(m_pos);
    updateSel();
}

void QSpritesEditor::openImg()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    const QString file = QAskUser::openFileName(window(), tr("Change image"), folder("spr_path"), QImageFile::openFilter());
    if (file.isEmpty())
        return;
    setFolder("spr_path", file);
    const QImage image = QImageFile::read(file);
    if (image.isNull()) {
        QAskUser::warning(window(), tr("Change image"),
                          tr("%1 could not be read as an image.").arg(QDir::toNativeSeparators(file)));
        return;
    }
    s->changeImage(m_pos, image, 0, false, 0, 0);
    updateSel();
}

void QSpritesEditor::crop()
{
    if (QSprites *s = sprites(); s && s->item(m_pos)) {
        s->crop(m_pos);
        updateSel();
    }
}

void QSpritesEditor::cropAll()
{
    QSprites *s = sprites();
    if (!s || !s->count())
        return;
    QProgress progress(tr("Cropping sprites..."), window());
    s->undoStack()->beginMacro(QStringLiteral("cropAll"));
    bool goOn = true;
    const int n = s->count();
    for (int i = 0; i < n && goOn; ++i) {
        s->crop(i);
        progress.progress(uint(i + 1), uint(n), goOn);
    }
    s->undoStack()->endMacro();
    updateSel();
}

void QSpritesEditor::duplicate()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    CloneSpr dialog(window());
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    s->duplicate(m_pos, dialog.copyImage());
    ++m_pos;
    updateSel();
}

void QSpritesEditor::delGroup()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    GroupDlg dialog(false, s->item(m_pos)->info.group, window());
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    s->removeGroup(dialog.group(), dialog.whole(), dialog.first(), dialog.last());
    updateSel();
}

void QSpritesEditor::renameGroup()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    GroupDlg dialog(true, s->item(m_pos)->info.group, window());
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    s->renameGroup(dialog.group(), dialog.newGroup(), dialog.whole(), dialog.first(), dialog.last());
    updateSel();
}

void QSpritesEditor::splitRGB()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_pos))
        return;
    const QImage rgb = s->image(m_pos).convertToFormat(QImage::Format_RGB32);
    if (rgb.isNull())
        return;
    // Palettes of the channels go after the last of group 0, one number each.
    int next = 0;
    for (int p = 0; p < s->paletteCount(); ++p)
        if (s->paletteInfo(p).group == 0)
            next = qMax(next, s->paletteInfo(p).number + 1);
    const QSpriteInfo info = s->item(m_pos)->info;
    s->undoStack()->beginMacro(QStringLiteral("splitRGB"));
    for (int c = 0; c < 3; ++c) {
        QImage channel(rgb.size(), QImage::Format_Indexed8);
        QRGBPal ramp;
        QList<QRgb> table(256);
        for (int i = 0; i < 256; ++i) {
            ramp[i] = QRGBColor{quint8(c == 0 ? i : 0), quint8(c == 1 ? i : 0), quint8(c == 2 ? i : 0), 255};
            table[i] = ramp[i].rgba();
        }
        channel.setColorTable(table);
        for (int y = 0; y < rgb.height(); ++y) {
            const QRgb *src = reinterpret_cast<const QRgb *>(rgb.constScanLine(y));
            uchar *dst = channel.scanLine(y);
            for (int x = 0; x < rgb.width(); ++x)
                dst[x] = uchar(c == 0 ? qRed(src[x]) : c == 1 ? qGreen(src[x]) : qBlue(src[x]));
        }
        const int index = m_pos + c;
        if (c > 0)
            s->insert(index);
        s->changeImage(index, channel, 255, false, 0, 0);
        const int palette = s->addPalette(ramp, false, 0, next + c);
        QSpriteInfo split = info;
        split.palette = quint16(palette);
        s->setInfo(index, split);
    }
    s->undoStack()->endMacro();
    updateSel();
}

// --- export ------------------------------------------------------------------------------

QList<int> QSpritesEditor::askExportSet()
{
    QSprites *s = sprites();
    const int n = s ? s->count() : 0;
    if (n == 0)
        return {};
    if (n == 1)
        return {0};
    SaveItem dialog(n, m_pos, window());
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return {};
    QList<int> set;
    switch (dialog.which()) {
    case SaveItem::Group: {
        const quint16 group = s->item(m_pos)->info.group;
        for (int i = 0; i < n; ++i)
            if (s->item(i)->info.group == group)
                set << i;
        break;
    }
    case SaveItem::Interval:
        for (int i = qMin(dialog.first(), dialog.last()) - 1; i < qMax(dialog.first(), dialog.last()) && i < n; ++i)
            set << i;
        break;
    default:
        set << m_pos;
        break;
    }
    return set;
}

void QSpritesEditor::saveImg()
{
    exportImages(false);
}

void QSpritesEditor::saveImgAlign()
{
    exportImages(true);
}

void QSpritesEditor::exportImages(bool aligned)
{
    QSprites *s = sprites();
    const QList<int> set = askExportSet();
    if (!s || set.isEmpty())
        return;
    const QString name = QAskUser::saveFileName(window(), tr("Save images"), folder("spr_path"), QImageFile::saveFilter());
    if (name.isEmpty())
        return;
    setFolder("spr_path", name);
    const QFileInfo target(name);
    const QString suffix = target.suffix().isEmpty() ? QStringLiteral("png") : target.suffix();
    QPoint axisMax, sizeMax;
    s->bounds(axisMax, sizeMax);
    const QSize canvas(qMax(1, axisMax.x() + sizeMax.x()), qMax(1, axisMax.y() + sizeMax.y()));

    QStringList failures;
    QProgress progress(tr("Saving images..."), window());
    bool goOn = true;
    for (int k = 0; k < set.size() && goOn; ++k) {
        const int i = set[k];
        const QSpriteInfo &info = s->item(i)->info;
        QImage image = s->image(i);
        if (image.isNull())
            continue;
        if (aligned)
            image = onCanvas(image, QPoint(info.x, info.y), canvas, axisMax);
        // One sprite takes the name as given; several are named by group and number.
        QString file = name;
        if (set.size() > 1) {
            const QString base = target.completeBaseName();
            file = target.absoluteDir().filePath((base.isEmpty() ? QString() : base + QLatin1Char('_'))
                                                 + QStringLiteral("%1-%2.%3").arg(info.group).arg(info.number).arg(suffix));
        }
        QString why;
        if (!QImageFile::write(file, image, &why))
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), why);
        progress.progress(uint(k + 1), uint(set.size()), goOn);
    }
    progress.hide();
    if (!failures.isEmpty()) {
        QAskUser::critical(window(), tr("Save images"), tr("These images could not be written:\n%1").arg(failures.join(QLatin1Char('\n'))));
        return;
    }
    if (!aligned)
        return;
    if (!QAskUser::question(window(), tr("Perfect axis"),
                            tr("The axis is X: %1, Y: %2. Do you want to save this information to a file?")
                                .arg(axisMax.x())
                                .arg(axisMax.y())))
        return;
    const QString axisFile = target.absoluteDir().filePath(QStringLiteral("axis.txt"));
    QSaveFile file(axisFile);
    const QByteArray text = QStringLiteral("X axis: %1\r\nY axis: %2\r\n").arg(axisMax.x()).arg(axisMax.y()).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        QAskUser::critical(window(), tr("Perfect axis"),
                           tr("%1 could not be written: %2").arg(QDir::toNativeSeparators(axisFile), file.errorString()));
}
