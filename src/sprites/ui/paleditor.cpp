#include "paleditor.h"

#include "qimagewidget.h"
#include "qpalettewidget.h"

#include "project/qproject.h"
#include "shell/qaskuser.h"
#include "shell/qtranslationunit.h"
#include "sprites/qpaletteops.h"
#include "sprites/qrgbpalette.h"
#include "sprites/qsprites.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// Snapshots kept for undo: both palettes and the picture each time.
constexpr int UndoDepth = 32;

QToolButton *buttonFor(QAction *action, QWidget *parent)
{
    auto *b = new QToolButton(parent);
    b->setDefaultAction(action);
    b->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return b;
}

} // namespace

PalEditor::PalEditor(QProject *project, int palette, int sprite, QWidget *parent)
    : QDialog(parent)
    , m_project(project)
    , m_palette(palette)
    , m_sprite(sprite)
    , m_maskColor(255, 0, 255)
{
    setObjectName(QStringLiteral("PalEditor"));
    setWindowTitle(tr("Advanced palette editor"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    for (int i = 0; i < 2; ++i) {
        m_workers[i] = new QRGBPalette(&m_colors[i], this);
        connect(m_workers[i], &QRGBPalette::changing, this, [this] {
            if (m_quiet)
                return;
            settleSliders();
            remember();
        });
        connect(m_workers[i], &QRGBPalette::changed, this, [this] {
            refreshImage();
            updateActions();
        });
    }

    // The left side starts from the store's palette, the right side and the
    // picture from the sprite as the stage shows it.
    if (QSprites *s = sprites()) {
        if (const QRGBPal *colors = m_palette >= 0 ? s->paletteColors(m_palette) : nullptr)
            m_colors[0] = *colors;
        else
            m_palette = -1;
        const QImage picture = s->item(m_sprite) ? s->image(m_sprite) : QImage();
        if (picture.isNull())
            m_sprite = -1;
        m_image = picture;
        if (picture.format() == QImage::Format_Indexed8)
            m_colors[1] = QRGBPal::fromColorTable(picture.colorTable());
        else
            m_colors[1] = m_colors[0];
    }

    buildActions();
    buildLayout();
    refreshImage();
    updateActions();
}

PalEditor::~PalEditor() = default;

QSprites *PalEditor::sprites() const
{
    return m_project ? m_project->sprites() : nullptr;
}

QAction *PalEditor::addCommand(const char *key, int captionId, void (PalEditor::*slot)(), bool checkable)
{
    if (!m_texts)
        m_texts = new QTranslationUnit(this);
    auto *a = new QAction(this);
    a->setObjectName(QString::fromLatin1(key));
    a->setCheckable(checkable);
    m_texts->retranslate(a, captionId);
    if (slot)
        connect(a, &QAction::triggered, this, slot);
    m_actions.insert(a->objectName(), a);
    return a;
}

void PalEditor::buildActions()
{
    addCommand("advpal_open", 249, &PalEditor::open);
    addCommand("advpal_save", 250, &PalEditor::save);
    addCommand("advpal_zoom_out", 251, &PalEditor::zoomOut)->setShortcut(QKeySequence::ZoomOut);
    addCommand("advpal_zoom_in", 252, &PalEditor::zoomIn)->setShortcut(QKeySequence::ZoomIn);
    addCommand("advpal_open_img", 253, &PalEditor::openImg);
    addCommand("advpal_save_img", 254, &PalEditor::saveImg);
    addCommand("advpal_switch_pos", 255, &PalEditor::swPos);
    addCommand("advpal_gradient", 256, &PalEditor::grad);
    addCommand("advpal_set_color", 128, &PalEditor::setCor);
    addCommand("advpal_del_duplicate", 257, &PalEditor::delDupl);
    addCommand("advpal_add_diff", 258, &PalEditor::addDiff);
    addCommand("advpal_optimize", 259, &PalEditor::optPal);
    addCommand("advpal_auto_sort", 260, &PalEditor::autoOrg);
    addCommand("advpal_grayscale", 261, &PalEditor::grayScale);
    addCommand("advpal_gen_pal_imgs", 262, &PalEditor::genPal);
    addCommand("advpal_insert_pal_imgs", 263, &PalEditor::insPal);
    addCommand("advpal_undo", 264, &PalEditor::undo)->setShortcut(QKeySequence::Undo);
    addCommand("advpal_redo", 265, &PalEditor::redo)->setShortcut(QKeySequence::Redo);
    addCommand("advpal_adapt_image", 266, &PalEditor::adaptImg);
    addCommand("advpal_invert_all", 267, &PalEditor::invertAll);
    addCommand("advpal_save_grpidx", 268, &PalEditor::saveGrpIdx);
    addCommand("advpal_commit_changes", 269, &PalEditor::commChanges);
    addCommand("advpal_commit_spr_changes", 270, &PalEditor::commSprChanges);
    QAction *picker = addCommand("advpal_pick_color", 271, nullptr, true);
    picker->setChecked(true);
    addCommand("advpal_effect_apply", 272, &PalEditor::effectApply);
    addCommand("advpal_huesat_apply", 272, &PalEditor::hueSatYes);
    addCommand("advpal_huesat_reset", 273, &PalEditor::hueSatNo);
    addCommand("advpal_rgb_apply", 272, &PalEditor::rgbYes);
    addCommand("advpal_rgb_reset", 273, &PalEditor::rgbNo);
    addCommand("advpal_selto_left", 274, &PalEditor::selToLeft);
    addCommand("advpal_selto_right", 275, &PalEditor::selToRight);
    addCommand("advpal_colto_left", 276, &PalEditor::corToLeft);
    addCommand("advpal_colto_right", 277, &PalEditor::corToRight);
    for (QAction *a : std::as_const(m_actions))
        addAction(a);
}

void PalEditor::buildLayout()
{
    auto *menus = new QMenuBar(this);
    auto menu = [&](const QString &title, std::initializer_list<const char *> keys) {
        QMenu *m = menus->addMenu(title);
        for (const char *key : keys) {
            if (key)
                m->addAction(action(QString::fromLatin1(key)));
            else
                m->addSeparator();
        }
    };
    menu(tr("&Palette"), {"advpal_open", "advpal_save", "advpal_save_grpidx", nullptr, "advpal_undo", "advpal_redo",
                          nullptr, "advpal_commit_changes"});
    menu(tr("&Colors"), {"advpal_set_color", "advpal_switch_pos", "advpal_gradient", "advpal_invert_all", nullptr,
                         "advpal_auto_sort", "advpal_del_duplicate", "advpal_add_diff", nullptr, "advpal_grayscale",
                         "advpal_optimize"});
    menu(tr("&Image"), {"advpal_open_img", "advpal_save_img", "advpal_adapt_image", nullptr, "advpal_zoom_in",
                        "advpal_zoom_out", "advpal_pick_color", nullptr, "advpal_gen_pal_imgs",
                        "advpal_insert_pal_imgs", nullptr, "advpal_commit_spr_changes"});
    menu(tr("&Send"), {"advpal_selto_left", "advpal_selto_right", "advpal_colto_left", "advpal_colto_right"});

    auto *root = new QVBoxLayout(this);
    root->setMenuBar(menus);

    // The two palettes, with the sending buttons between them.
    auto *palettes = new QGridLayout;
    m_charRadio = new QRadioButton(tr("Character"), this);
    m_imageRadio = new QRadioButton(tr("Image or palette"), this);
    m_charRadio->setObjectName(QStringLiteral("advpal_char_active"));
    m_imageRadio->setObjectName(QStringLiteral("advpal_image_active"));
    m_charRadio->setChecked(true);
    connect(m_charRadio, &QRadioButton::toggled, this, &PalEditor::activeChar);
    connect(m_imageRadio, &QRadioButton::toggled, this, &PalEditor::activeImgPal);
    palettes->addWidget(m_charRadio, 0, 0);
    palettes->addWidget(m_imageRadio, 0, 2);
    for (int i = 0; i < 2; ++i) {
        auto *v = new QPaletteWidget(this);
        v->setObjectName(i == 0 ? QStringLiteral("advpal_char") : QStringLiteral("advpal_image"));
        v->setRgbPalette(m_workers[i]);
        v->setMinimumSize(v->sizeHint());
        connect(v, &QPaletteWidget::selectionChanged, this, [this, i] {
            if (m_live && i == m_active)
                recomputeLive();
            else if (i == m_active)
                refreshImage();
            updateActions();
        });
        connect(v, &QPaletteWidget::colorDblClick, this, [this, i](ushort) {
            (i == 0 ? m_charRadio : m_imageRadio)->setChecked(true);
            setCor();
        });
        // A click on a palette makes it the active one.
        connect(v, &QPaletteWidget::colorClick, this, [this, i](ushort, Qt::MouseButton) {
            (i == 0 ? m_charRadio : m_imageRadio)->setChecked(true);
        });
        m_views[i] = v;
        palettes->addWidget(v, 1, i * 2);
    }
    auto *between = new QVBoxLayout;
    between->addStretch();
    const struct { const char *key; const char *arrow; } sends[] = {
        {"advpal_selto_right", "\u2192"}, {"advpal_colto_right", "\u21D2"}, {"advpal_selto_left", "\u2190"},
        {"advpal_colto_left", "\u21D0"}};
    for (const auto &s : sends) {
        QAction *a = action(QString::fromLatin1(s.key));
        a->setIconText(QString::fromUtf8(s.arrow));
        between->addWidget(buttonFor(a, this));
    }
    between->addStretch();
    palettes->addLayout(between, 1, 1);

    // The picture, zoomed, with its mask.
    auto *pictureSide = new QVBoxLayout;
    m_imageView = new QImageWidget;
    m_imageView->setObjectName(QStringLiteral("advpal_picture"));
    auto *scroll = new QScrollArea(this);
    scroll->setWidget(m_imageView);
    scroll->setAlignment(Qt::AlignCenter);
    scroll->setMinimumSize(280, 260);
    pictureSide->addWidget(scroll, 1);
    connect(m_imageView, &QImageWidget::colorClicked, this, &PalEditor::colorClicked);
    connect(action(QStringLiteral("advpal_pick_color")), &QAction::toggled, m_imageView, &QImageWidget::setPicking);
    auto *pictureRow = new QHBoxLayout;
    m_mask = new QCheckBox(tr("Mask"), this);
    m_mask->setToolTip(tr("Cover the pixels whose colours are not selected"));
    connect(m_mask, &QCheckBox::toggled, this, &PalEditor::maskToggled);
    m_maskColorButton = new QPushButton(tr("Mask's color"), this);
    connect(m_maskColorButton, &QPushButton::clicked, this, &PalEditor::maskCl);
    pictureRow->addWidget(m_mask);
    pictureRow->addWidget(m_maskColorButton);
    pictureRow->addStretch();
    for (const char *key : {"advpal_pick_color", "advpal_zoom_out", "advpal_zoom_in"})
        pictureRow->addWidget(buttonFor(action(QString::fromLatin1(key)), this));
    m_actions.value(QStringLiteral("advpal_zoom_out"))->setIconText(QStringLiteral("\u2212"));
    m_actions.value(QStringLiteral("advpal_zoom_in"))->setIconText(QStringLiteral("+"));
    m_actions.value(QStringLiteral("advpal_pick_color"))->setIconText(tr("Pick"));
    pictureSide->addLayout(pictureRow);

    auto *top = new QHBoxLayout;
    top->addLayout(palettes);
    top->addLayout(pictureSide, 1);
    root->addLayout(top, 1);

    // Effects and the live sliders.
    auto *tools = new QGroupBox(tr("Colors"), this);
    auto *grid = new QGridLayout(tools);
    m_effects = new QComboBox(tools);
    m_effects->addItems({tr("Blue to Red"), tr("Blue to Green"), tr("Green to Red"), tr("Green to Blue"),
                         tr("Red to Green"), tr("Red to Blue"), tr("Lighter"), tr("Darker"), tr("Monochrome"),
                         tr("Fire"), tr("Sapphire"), tr("Stone")});
    grid->addWidget(new QLabel(tr("Effect:"), tools), 0, 0);
    grid->addWidget(m_effects, 0, 1);
    grid->addWidget(buttonFor(action(QStringLiteral("advpal_effect_apply")), tools), 0, 5);
    auto sliders = [&](int row, const QString &label, QSlider **out, std::initializer_list<std::pair<const char *, int>> ranges,
                       void (PalEditor::*changed)(int), const char *reset, const char *apply) {
        grid->addWidget(new QLabel(label, tools), row, 0);
        int column = 1;
        for (const auto &[name, range] : ranges) {
            auto *box = new QHBoxLayout;
            auto *slider = new QSlider(Qt::Horizontal, tools);
            slider->setRange(-range, range);
            slider->setMinimumWidth(90);
            auto *value = new QLabel(QStringLiteral("0"), tools);
            value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("-000")));
            connect(slider, &QSlider::valueChanged, value, qOverload<int>(&QLabel::setNum));
            connect(slider, &QSlider::valueChanged, this, changed);
            box->addWidget(new QLabel(QString::fromLatin1(name), tools));
            box->addWidget(slider, 1);
            box->addWidget(value);
            grid->addLayout(box, row, column++);
            *out++ = slider;
        }
        grid->addWidget(buttonFor(action(QString::fromLatin1(reset)), tools), row, 4);
        grid->addWidget(buttonFor(action(QString::fromLatin1(apply)), tools), row, 5);
    };
    sliders(1, tr("Hue / saturation:"), m_hsl, {{"H", 180}, {"S", 255}, {"L", 255}}, &PalEditor::hueSatChanged,
            "advpal_huesat_reset", "advpal_huesat_apply");
    sliders(2, tr("RGB:"), m_rgb, {{"R", 255}, {"G", 255}, {"B", 255}}, &PalEditor::rgbChanged, "advpal_rgb_reset",
            "advpal_rgb_apply");
    root->addWidget(tools);

    auto *bottom = new QHBoxLayout;
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("advpal_status"));
    bottom->addWidget(m_status, 1);
    for (const char *key : {"advpal_undo", "advpal_redo", "advpal_commit_changes", "advpal_commit_spr_changes"})
        bottom->addWidget(buttonFor(action(QString::fromLatin1(key)), this));
    auto *close = new QPushButton(tr("Close"), this);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    bottom->addWidget(close);
    root->addLayout(bottom);
}

// --- state -----------------------------------------------------------------------

const quint8 *PalEditor::selectionOrAll() const
{
    const quint8 *sel = view()->selection();
    for (int i = 0; i < 256; ++i)
        if (sel[i])
            return sel;
    return nullptr;
}

void PalEditor::status(const QString &text)
{
    m_status->setText(text);
}

PalEditor::Snapshot PalEditor::current() const
{
    Snapshot s;
    s.colors[0] = m_colors[0];
    s.colors[1] = m_colors[1];
    s.image = m_image;
    return s;
}

void PalEditor::remember()
{
    m_undo.append(current());
    while (m_undo.size() > UndoDepth)
        m_undo.removeFirst();
    m_redo.clear();
}

void PalEditor::restore(const Snapshot &snapshot)
{
    ++m_quiet;
    for (int i = 0; i < 2; ++i)
        m_workers[i]->setColors(snapshot.colors[i]);
    --m_quiet;
    setImage(snapshot.image);
}

void PalEditor::undo()
{
    resetEffect();
    if (m_undo.isEmpty())
        return;
    m_redo.append(current());
    restore(m_undo.takeLast());
}

void PalEditor::redo()
{
    resetEffect();
    if (m_redo.isEmpty())
        return;
    m_undo.append(current());
    restore(m_redo.takeLast());
}

void PalEditor::setImage(const QImage &image)
{
    m_image = image;
    refreshImage();
    updateActions();
}

void PalEditor::refreshImage()
{
    if (!m_imageView)
        return;
    if (m_image.format() != QImage::Format_Indexed8) {
        m_imageView->setImage(m_image);
        return;
    }
    QRGBPal shown = m_colors[m_active];
    if (m_mask->isChecked()) {
        const quint8 *sel = view()->selection();
        for (int i = 0; i < 256; ++i)
            if (!sel[i])
                shown[i] = QRGBColor::fromRgba(m_maskColor.rgba());
    }
    m_imageView->setImage(QPaletteOps::inPalette(m_image, shown));
}

void PalEditor::updateActions()
{
    if (m_actions.isEmpty() || !m_views[0])
        return;
    const int selected = int(view()->selectedIndices().size());
    const bool picture = !m_image.isNull();
    const bool store = sprites() != nullptr;
    auto enable = [this](const char *key, bool on) { m_actions.value(QString::fromLatin1(key))->setEnabled(on); };
    enable("advpal_undo", !m_undo.isEmpty() || m_live);
    enable("advpal_redo", !m_redo.isEmpty());
    enable("advpal_switch_pos", selected == 2);
    enable("advpal_set_color", selected > 0);
    enable("advpal_gradient", selected > 1);
    enable("advpal_save_img", picture);
    enable("advpal_adapt_image", picture);
    enable("advpal_optimize", picture);
    enable("advpal_commit_changes", store);
    enable("advpal_save_grpidx", store);
    enable("advpal_commit_spr_changes", store && picture && m_sprite >= 0);
    enable("advpal_selto_left", m_views[1]->selectedIndices().size() > 0);
    enable("advpal_selto_right", m_views[0]->selectedIndices().size() > 0);
    enable("advpal_colto_left", m_views[1]->selectedIndices().size() > 0);
    enable("advpal_colto_right", m_views[0]->selectedIndices().size() > 0);
}

// --- the active palette ----------------------------------------------------------

void PalEditor::activeChar(bool on)
{
    if (on && m_active != 0) {
        resetEffect();
        m_active = 0;
        refreshImage();
        updateActions();
    }
}

void PalEditor::activeImgPal(bool on)
{
    if (on && m_active != 1) {
        resetEffect();
        m_active = 1;
        refreshImage();
        updateActions();
    }
}

void PalEditor::colorClicked(uchar index, bool add)
{
    view()->select(index, add);
}

void PalEditor::maskToggled(bool)
{
    refreshImage();
}

void PalEditor::maskCl()
{
    QColorDialog dialog(m_maskColor, this);
    dialog.setWindowTitle(tr("Mask's color"));
    dialog.setOptions(QColorDialog::DontUseNativeDialog);
    if (QAskUser::exec(&dialog) != QDialog::Accepted || !dialog.currentColor().isValid())
        return;
    m_maskColor = dialog.currentColor();
    refreshImage();
}

void PalEditor::zoomIn()
{
    m_imageView->zoomIn();
}

void PalEditor::zoomOut()
{
    m_imageView->zoomOut();
}

// --- sending between the palettes ------------------------------------------------

void PalEditor::sendSelection(int to)
{
    QPaletteWidget *target = m_views[to];
    const QList<int> picked = m_views[1 - to]->selectedIndices();
    const QSignalBlocker block(target);
    target->clearSelection();
    for (int i : picked)
        target->select(i, true);
    target->update();
    if (m_live && to == m_active)
        recomputeLive();
    refreshImage();
    updateActions();
}

void PalEditor::sendColors(int to)
{
    const QList<int> from = m_views[1 - to]->selectedIndices();
    const QList<int> into = m_views[to]->selectedIndices();
    if (from.isEmpty())
        return;
    // Into the target's own selection when it has as many entries; otherwise
    // to the same places.
    const QList<int> places = into.size() == from.size() ? into : from;
    QRGBPal colors = m_colors[to];
    for (int k = 0; k < from.size(); ++k)
        colors[places[k]] = m_colors[1 - to][from[k]];
    m_workers[to]->setColors(colors);
}

void PalEditor::selToLeft()
{
    sendSelection(0);
}

void PalEditor::selToRight()
{
    sendSelection(1);
}

void PalEditor::corToLeft()
{
    sendColors(0);
}

void PalEditor::corToRight()
{
    sendColors(1);
}

// --- the live sliders -------------------------------------------------------------

bool PalEditor::slidersMoved() const
{
    for (int i = 0; i < 3; ++i)
        if (m_hsl[i]->value() || m_rgb[i]->value())
            return true;
    return false;
}

void PalEditor::recomputeLive()
{
    ++m_quiet;
    QRGBPalette *w = worker();
    w->setColorsQuiet(m_liveBase);
    const quint8 *sel = selectionOrAll();
    // Sliders at zero are skipped: a round trip through HSL may move a colour by a step.
    if (m_hsl[0]->value() || m_hsl[1]->value() || m_hsl[2]->value())
        w->adjustHsl(sel, m_hsl[0]->value(), m_hsl[1]->value(), m_hsl[2]->value());
    if (m_rgb[0]->value() || m_rgb[1]->value() || m_rgb[2]->value())
        w->adjustRgb(sel, m_rgb[0]->value(), m_rgb[1]->value(), m_rgb[2]->value());
    --m_quiet;
    view()->update();
    refreshImage();
}

void PalEditor::zeroSliders()
{
    m_zeroing = true;
    for (QSlider *s : {m_hsl[0], m_hsl[1], m_hsl[2], m_rgb[0], m_rgb[1], m_rgb[2]})
        s->setValue(0);
    m_zeroing = false;
}

void PalEditor::hueSatChanged(int)
{
    if (m_zeroing)
        return;
    if (!m_live) {
        if (!slidersMoved())
            return;
        m_live = true;
        m_liveBase = m_colors[m_active];
    }
    recomputeLive();
    updateActions();
}

void PalEditor::rgbChanged(int value)
{
    hueSatChanged(value);
}

void PalEditor::setHsl(int hue, int saturation, int lightness)
{
    m_hsl[0]->setValue(hue);
    m_hsl[1]->setValue(saturation);
    m_hsl[2]->setValue(lightness);
}

void PalEditor::setRgb(int red, int green, int blue)
{
    m_rgb[0]->setValue(red);
    m_rgb[1]->setValue(green);
    m_rgb[2]->setValue(blue);
}

void PalEditor::setEffect(int kind)
{
    m_effects->setCurrentIndex(kind - 1);
}

void PalEditor::settleSliders()
{
    if (!m_live)
        return;
    // The undo step goes back to the colours before the sliders moved.
    const QRGBPal result = m_colors[m_active];
    m_colors[m_active] = m_liveBase;
    remember();
    m_colors[m_active] = result;
    m_live = false;
    zeroSliders();
    updateActions();
}

void PalEditor::resetEffect()
{
    if (!m_live)
        return;
    m_live = false;
    zeroSliders();
    ++m_quiet;
    worker()->setColors(m_liveBase);
    --m_quiet;
    updateActions();
}

void PalEditor::hueSatYes()
{
    settleSliders();
}

void PalEditor::rgbYes()
{
    settleSliders();
}

void PalEditor::hueSatNo()
{
    for (QSlider *s : m_hsl)
        s->setValue(0);
    if (m_live && !slidersMoved())
        resetEffect();
}

void PalEditor::rgbNo()
{
    for (QSlider *s : m_rgb)
        s->setValue(0);
    if (m_live && !slidersMoved())
        resetEffect();
}
