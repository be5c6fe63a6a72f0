#include "qanimspriteworkspace.h"

#include "animations/ui/qoglrenderwidget.h"
#include "animations/ui/qrenderwidget.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qcolorsetmanager.h"
#include "base/qmugenmodel.h"
#include "shell/qtranslationunit.h"
#include "render/qsprrender.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// The settings the stage reads, with the stage's own defaults when the
// workspace runs without a configuration (tests of the drawing alone).
QVariant setting(const QMugenModel *config, const char *key, const QVariant &fallback)
{
    if (!config)
        return fallback;
    const QVariant v = config->map.value(QString::fromLatin1(key));
    return v.isValid() && !v.toString().isEmpty() ? v : fallback;
}

bool flag(const QMugenModel *config, const char *key, bool fallback)
{
    return config ? config->flag(QString::fromLatin1(key), fallback) : fallback;
}

} // namespace

QAnimSpriteWorkspace::QAnimSpriteWorkspace(const QAppObjects &objects, QObject *parent)
    : QInterfaceWorkspace(parent)
    , m_config(objects.config)
    , m_colorsets(objects.colorsets)
    , m_renderer(new QSprRender(this))
{
    auto *page = new QWidget;
    page->setObjectName(QStringLiteral("animSpriteWorkspace"));
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    auto *bar = new QToolBar(page);
    bar->setObjectName(QStringLiteral("stageToolbar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    layout->addWidget(bar);

    // OpenGL only where the platform can show it: never offscreen.
    m_openGL = flag(m_config, "use_opengl", false) && QOGLRenderWidget::available();
    if (m_openGL)
        m_host = new QOGLRenderWidget(m_renderer, page);
    else
        m_host = new QRenderWidget(m_renderer, page);
    m_host->setObjectName(QStringLiteral("stage"));
    m_host->setMinimumSize(120, 90);
    layout->addWidget(m_host, 1);

    auto *statusRow = new QHBoxLayout;
    statusRow->setContentsMargins(4, 2, 4, 2);
    m_status = new QToolButton(page);
    m_status->setObjectName(QStringLiteral("stageMode"));
    m_status->setAutoRaise(true);
    connect(m_status, &QToolButton::clicked, this, &QAnimSpriteWorkspace::statusClicked);
    m_position = new QLabel(page);
    m_position->setObjectName(QStringLiteral("stagePosition"));
    statusRow->addWidget(m_status);
    statusRow->addWidget(m_position, 1);
    layout->addLayout(statusRow);
    m_widget = page;

    addAction(QStringLiteral("view_zoomreset"), 54, false);
    addAction(QStringLiteral("view_zoomout"), 55, false);
    addAction(QStringLiteral("view_zoomin"), 56, false);
    addAction(QStringLiteral("view_center_axis"), 27, false);
    addAction(QStringLiteral("view_spr_cross"), 28, true, true);
    addAction(QStringLiteral("view_anim_cross"), 29, true, true);
    addAction(QStringLiteral("view_extra_cross"), 30, true);
    addAction(QStringLiteral("view_rulers"), 31, true, true);
    addAction(QStringLiteral("view_guide_lines"), 32, true);
    addAction(QStringLiteral("view_clsn1"), 33, true, true);
    addAction(QStringLiteral("view_clsn2"), 34, true, true);
    addAction(QStringLiteral("view_default_clsn1"), 35, true, true);
    addAction(QStringLiteral("view_default_clsn2"), 36, true, true);
    addAction(QStringLiteral("view_attack_clsn"), 155, true);
    addAction(QStringLiteral("view_collision_clsn"), 156, true);

    connect(action(QStringLiteral("view_zoomreset")), &QAction::triggered, this, &QAnimSpriteWorkspace::zoomActual);
    connect(action(QStringLiteral("view_zoomout")), &QAction::triggered, this, &QAnimSpriteWorkspace::zoomOut);
    connect(action(QStringLiteral("view_zoomin")), &QAction::triggered, this, &QAnimSpriteWorkspace::zoomIn);
    connect(action(QStringLiteral("view_center_axis")), &QAction::triggered, this, &QAnimSpriteWorkspace::centerAxis);
    for (const char *key : {"view_spr_cross", "view_anim_cross"})
        connect(action(QString::fromLatin1(key)), &QAction::toggled, this, &QAnimSpriteWorkspace::showCross);
    for (const char *key : {"view_rulers", "view_clsn1", "view_clsn2", "view_default_clsn1", "view_default_clsn2"})
        connect(action(QString::fromLatin1(key)), &QAction::toggled, this, &QAnimSpriteWorkspace::showCLSN);
    connect(action(QStringLiteral("view_extra_cross")), &QAction::toggled, this, &QAnimSpriteWorkspace::showExtraCross);
    connect(action(QStringLiteral("view_guide_lines")), &QAction::toggled, this, &QAnimSpriteWorkspace::showGuideLns);
    // Adding boxes: one kind at a time, until the right button ends it.
    QAction *attack = action(QStringLiteral("view_attack_clsn"));
    QAction *collision = action(QStringLiteral("view_collision_clsn"));
    connect(attack, &QAction::toggled, this, [this, collision](bool on) {
        if (on)
            collision->setChecked(false);
        m_renderer->setAdding(on || collision->isChecked(), on ? Clsn1 : Clsn2);
    });
    connect(collision, &QAction::toggled, this, [this, attack](bool on) {
        if (on)
            attack->setChecked(false);
        m_renderer->setAdding(on || attack->isChecked(), on ? Clsn2 : Clsn1);
    });
    connect(m_renderer, &QSprRender::clsnModeExit, this, [attack, collision] {
        attack->setChecked(false);
        collision->setChecked(false);
    });
    for (QAction *a : m_actionList)
        bar->addAction(a);

    connect(m_renderer, &QSprRender::zoomChanged, this, &QAnimSpriteWorkspace::updateStatus);
    connect(m_renderer, &QSprRender::cursorChanged, this, [this](const QPoint &p) {
        const qreal z = m_renderer->zoom();
        m_position->setText(QStringLiteral("%1 %  x %2, y %3").arg(z * 100).arg(qFloor(p.x() / z)).arg(qFloor(p.y() / z)));
    });

    m_renderer->resizeEvent(m_host->size());
    readViewSettings();
    applyConfig();
    updateStatus();
}

QAnimSpriteWorkspace::~QAnimSpriteWorkspace()
{
    // The attached view belongs to its editor, which may outlive the page.
    setAttachedView(nullptr, false);
    writeViewSettings();
}

void QAnimSpriteWorkspace::setAttachedView(QWidget *view, bool replacesStage)
{
    auto *layout = m_widget ? qobject_cast<QVBoxLayout *>(m_widget->layout()) : nullptr;
    if (!layout)
        return;
    if (m_attached && m_attached != view) {
        layout->removeWidget(m_attached);
        m_attached->hide();
        m_attached->setParent(nullptr);
    }
    m_attached = view;
    m_host->setVisible(!view || !replacesStage);
    if (!view)
        return;
    if (view->parent() != m_widget) {
        view->setParent(m_widget);
        // Under the stage, above the status row.
        layout->insertWidget(layout->indexOf(m_host) + 1, view);
    }
    layout->setStretchFactor(view, replacesStage ? 1 : 0);
    view->setMinimumHeight(replacesStage ? 0 : 120);
    view->setMaximumHeight(replacesStage ? QWIDGETSIZE_MAX : 200);
    view->show();
}

QAction *QAnimSpriteWorkspace::addAction(const QString &key, int captionId, bool checkable, bool checked)
{
    auto *a = new QAction(this);
    a->setObjectName(key);
    a->setCheckable(checkable);
    a->setChecked(checked);
    QTranslationUnit translation;
    a->setText(translation.text(captionId));
    a->setToolTip(translation.toolTip(captionId));
    m_actions.insert(key, a);
    m_actionList.append(a);
    m_captions.insert(a, captionId);
    return a;
}

void QAnimSpriteWorkspace::retranslate(const QTranslationUnit &translation)
{
    for (QAction *a : m_actionList) {
        const int id = m_captions.value(a);
        a->setText(translation.text(id));
        a->setToolTip(translation.toolTip(id));
        a->setStatusTip(translation.toolTip(id));
        a->setWhatsThis(translation.whatsThis(id));
    }
    updateStatus();
}

QString QAnimSpriteWorkspace::statusText() const
{
    return m_openGL ? tr("OpenGL mode") : tr("Native mode");
}

void QAnimSpriteWorkspace::updateStatus()
{
    m_status->setText(statusText());
    m_position->setText(QStringLiteral("%1 %").arg(m_renderer->zoom() * 100));
}

void QAnimSpriteWorkspace::readViewSettings()
{
    m_renderer->setOrigin(setting(m_config, "main_axis_x", 250).toInt(), setting(m_config, "main_axis_y", 250).toInt());
    m_renderer->setZoomIndex(setting(m_config, "zoom_level", 2).toInt());
    const struct { const char *key; const char *action; } flags[] = {
        {"show_rulers", "view_rulers"}, {"show_guides", "view_guide_lines"},
        {"show_spr_cross", "view_spr_cross"}, {"show_anim_cross", "view_anim_cross"},
        {"show_clsn1", "view_clsn1"}, {"show_clsn2", "view_clsn2"},
        {"show_clsn_def1", "view_default_clsn1"}, {"show_clsn_def2", "view_default_clsn2"},
    };
    for (const auto &f : flags) {
        QAction *a = action(QString::fromLatin1(f.action));
        a->setChecked(flag(m_config, f.key, a->isChecked()));
    }
    showCLSN(true);
    showCross(true);
    showGuideLns(action(QStringLiteral("view_guide_lines"))->isChecked());
}

void QAnimSpriteWorkspace::writeViewSettings() const
{
    if (!m_config)
        return;
    QMap<QString, QVariant> &map = m_config->map;
    map[QStringLiteral("main_axis_x")] = m_renderer->origin().x();
    map[QStringLiteral("main_axis_y")] = m_renderer->origin().y();
    map[QStringLiteral("zoom_level")] = m_renderer->zoomIndex();
    const struct { const char *key; const char *action; } flags[] = {
        {"show_rulers", "view_rulers"}, {"show_guides", "view_guide_lines"},
        {"show_spr_cross", "view_spr_cross"}, {"show_anim_cross", "view_anim_cross"},
        {"show_clsn1", "view_clsn1"}, {"show_clsn2", "view_clsn2"},
        {"show_clsn_def1", "view_default_clsn1"}, {"show_clsn_def2", "view_default_clsn2"},
    };
    for (const auto &f : flags)
        map[QString::fromLatin1(f.key)] = action(QString::fromLatin1(f.action))->isChecked();
}

void QAnimSpriteWorkspace::applyConfig()
{
    const QColor start = m_colorsets && m_colorsets->colors().contains(QStringLiteral("back_start"))
        ? m_colorsets->color(QStringLiteral("back_start")).color : QColor(0x30, 0x40, 0x60);
    const QColor end = m_colorsets && m_colorsets->colors().contains(QStringLiteral("back_end"))
        ? m_colorsets->color(QStringLiteral("back_end")).color : QColor(0x10, 0x10, 0x18);
    m_renderer->setBackground(start, end, setting(m_config, "background_type", 1).toInt(), setting(m_config, "background_x", -213).toInt(),
                              setting(m_config, "background_y", -208).toInt(), setting(m_config, "background_file", QString()).toString());
    QColor clsn[4] = {Qt::red, Qt::blue, Qt::magenta, Qt::darkBlue};
    const char *keys[4] = {"clsn1", "clsn2", "clsn1def", "clsn2def"};
    for (int t = 0; t < 4; ++t)
        if (m_colorsets && m_colorsets->colors().contains(QString::fromLatin1(keys[t])))
            clsn[t] = m_colorsets->color(QString::fromLatin1(keys[t])).color;
    m_renderer->setClsnColours(clsn[0], clsn[2], clsn[1], clsn[3]);
    m_renderer->setCrossImages(setting(m_config, "crosshair_type", 0).toInt(), setting(m_config, "crosshair_sprite", QString()).toString(),
                               setting(m_config, "crosshair_animation", QString()).toString(),
                               setting(m_config, "crosshair_extra", QString()).toString());
    m_renderer->setOrder(flag(m_config, "clsn_over_axis", true), flag(m_config, "sprite_over_guides", false));
    m_renderer->setShowColour0(flag(m_config, "show_trans_color", false));
}

void QAnimSpriteWorkspace::showForSprites()
{
    m_renderer->setLocked(false);
    m_renderer->setBlank(true);
    m_renderer->setMode(SpriteMode);
    m_renderer->setBlank(false);
}

void QAnimSpriteWorkspace::showForAnimations()
{
    m_renderer->setLocked(false);
    m_renderer->setBlank(true);
    m_renderer->setMode(AnimationMode);
    m_renderer->setBlank(false);
}

void QAnimSpriteWorkspace::showForSounds()
{
    m_renderer->setBlank(true);
    m_renderer->setMode(SpriteMode);
    m_renderer->setOnion(false, 0, 100);
    m_renderer->setBlank(false);
    m_host->update();
    m_renderer->setLocked(true);
}

bool QAnimSpriteWorkspace::copyClsn()
{
    const QString text = m_renderer->selectedClsnText();
    if (text.isEmpty())
        return false;
    QGuiApplication::clipboard()->setText(text);
    return true;
}

QString QAnimSpriteWorkspace::clipboardClsn()
{
    const QString text = QGuiApplication::clipboard()->text();
    return text.contains(QLatin1String("Clsn"), Qt::CaseInsensitive) ? text : QString();
}

void QAnimSpriteWorkspace::statusClicked()
{
    if (m_renderer->mode() == SpriteMode)
        emit spriteSettingsWanted();
}

void QAnimSpriteWorkspace::centerAxis()
{
    m_renderer->setOrigin(m_host->width() / 2, m_host->height() / 2);
}

void QAnimSpriteWorkspace::showCLSN(bool)
{
    auto on = [this](const char *key) { return action(QString::fromLatin1(key))->isChecked(); };
    m_renderer->setClsnVisible(on("view_clsn1"), on("view_clsn2"), on("view_default_clsn1"), on("view_default_clsn2"),
                               on("view_rulers"));
}

void QAnimSpriteWorkspace::showCross(bool)
{
    m_renderer->setCrosses(action(QStringLiteral("view_spr_cross"))->isChecked(),
                           action(QStringLiteral("view_anim_cross"))->isChecked());
}

void QAnimSpriteWorkspace::showExtraCross(bool on)
{
    m_renderer->setExtraCross(on && m_renderer->mode() == AnimationMode);
}

void QAnimSpriteWorkspace::showGuideLns(bool on)
{
    m_renderer->setGuides(on);
}

void QAnimSpriteWorkspace::zoomActual()
{
    m_renderer->setZoomIndex(2);
}

void QAnimSpriteWorkspace::zoomOut()
{
    m_renderer->zoomOut();
}

void QAnimSpriteWorkspace::zoomIn()
{
    m_renderer->zoomIn();
}

void QAnimSpriteWorkspace::extraCrossClosed()
{
    action(QStringLiteral("view_extra_cross"))->setChecked(false);
}

// --- the view actions in the menu and the shortcut list ---------------------

void QAnimSpriteWorkspace::registerViewActions(QActionManager &manager, QMenu *menu)
{
    // The stage serves the sprites editor (1) and the animations editor (2).
    const QList<int> scopes{1, 2, -1};
    if (menu)
        menu->addSeparator();
    for (QAction *a : std::as_const(m_actionList)) {
        QAction2 *twin = manager.addAction(scopes, a->objectName(), m_captions.value(a), a->isCheckable());
        if (a->isCheckable()) {
            twin->setChecked(a->isChecked());
            connect(twin, &QAction::toggled, a, &QAction::setChecked);
            connect(a, &QAction::toggled, twin, &QAction::setChecked);
        } else {
            connect(twin, &QAction::triggered, a, &QAction::trigger);
        }
        if (menu)
            menu->addAction(twin);
    }
}
