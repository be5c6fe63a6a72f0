#include "qpaletteseditor.h"

#include "qpalettewidget.h"
#include "remapdlg.h"
#include "spritedialogs.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/qaction2.h"
#include "shell/qactionmanager.h"
#include "shell/qappobjects.h"
#include "shell/qaskuser.h"
#include "shell/qeditorregistry.h"
#include "shell/qinterfacecontrolaction.h"
#include "shell/qinterfacecontrolwidget.h"
#include "shell/qprogress.h"
#include "shell/qwindowlayout.h"
#include "sprites/qpalettefile.h"
#include "sprites/qrgbpalette.h"
#include "sprites/qsprites.h"

#include <QColorDialog>
#include <QDir>
#include <QFileInfo>
#include <QMainWindow>
#include <QScrollBar>
#include <QSpinBox>
#include <QTimer>

namespace {

// The panel works beside every editor that shows the right panel.
const QList<int> kScope{7, -1};

QScrollBar *scrollBar(QEditorRegistry &registry, const char *name)
{
    auto *c = dynamic_cast<QInterfaceControlWidget *>(registry.control(QString::fromLatin1(name)));
    return c ? qobject_cast<QScrollBar *>(c->widget()) : nullptr;
}

} // namespace

QPalettesEditor::QPalettesEditor(QEditorRegistry &registry, const QAppObjects &objects, QObject *parent)
    : QInterfaceExtraEditor(parent)
    , m_registry(registry)
    , m_config(objects.config)
    , m_worker(new QRGBPalette(&m_colors, this))
{
}

QPalettesEditor::~QPalettesEditor()
{
    detachStore();
}

void QPalettesEditor::setupControls()
{
    QActionManager &actions = m_registry.actionManager();
    const QTranslationUnit &tu = actions.translation();
    struct Command
    {
        const char *key;
        int caption;
        const char *slot;
        const char *enabling;
    };
    const Command commands[] = {
        {"pal_clear_unused", 116, SLOT(clearUnused()), SIGNAL(enabled(bool))},
        {"pal_add", 117, SLOT(add()), nullptr},
        {"pal_delete", 118, SLOT(del()), SIGNAL(enabled(bool))},
        {"pal_delete_duplicates", 119, SLOT(delDupl()), SIGNAL(enabled(bool))},
        {"pal_open", 120, SLOT(open()), SIGNAL(enabled(bool))},
        {"pal_save", 121, SLOT(save()), SIGNAL(enabled(bool))},
        {"pal_switch_count", 122, SLOT(switchCount()), SIGNAL(enabled(bool))},
        {"pal_remap", 123, SLOT(remap()), SIGNAL(enabled(bool))},
        {"pal_undo", 124, SLOT(undo()), SIGNAL(canUndo(bool))},
        {"pal_redo", 125, SLOT(redo()), SIGNAL(canRedo(bool))},
        {"pal_switch_color", 126, SLOT(switchColor()), SIGNAL(canSwitchColor(bool))},
        {"pal_apply_sprite", 129, SLOT(setSprPal()), SIGNAL(enabled(bool))},
        {"pal_apply_group", 130, SLOT(setGrpPal()), SIGNAL(enabled(bool))},
        {"pal_set_color", 128, SLOT(setColor()), SIGNAL(canSetColor(bool))},
        {"pal_prev_grp", 134, SLOT(prevGrp()), SIGNAL(enabled(bool))},
        {"pal_next_grp", 135, SLOT(nextGrp()), SIGNAL(enabled(bool))},
    };
    for (const Command &c : commands) {
        QAction2 *a = actions.addAction(kScope, QString::fromLatin1(c.key), c.caption, false, this, c.slot, c.enabling);
        m_registry.addControl(a->key(), std::make_unique<QInterfaceControlAction>(a));
    }
    QAction2 *picker = actions.addAction(kScope, QStringLiteral("pal_pick_color"), 127, true, this, SLOT(pickColor(bool)),
                                         SIGNAL(enabled(bool)));
    m_registry.addControl(picker->key(), std::make_unique<QInterfaceControlAction>(picker));

    using Base = QInterfaceControlWidgetBase;
    auto widget = [&](const char *name, int type, int caption, const char *slot, const char *signal,
                      double minimum = 0, double maximum = 0, QWidget *custom = nullptr) {
        QInterfaceControlOptions options;
        options.minimum = minimum;
        options.maximum = maximum;
        auto control = std::make_unique<QInterfaceControlWidget>(type, caption, &options, this, slot, signal, tu, custom);
        QWidget *w = control->widget();
        m_registry.addControl(QString::fromLatin1(name), std::move(control));
        return w;
    };
    widget("pal_sel", Base::ScrollBar, -1, SLOT(selPosChanged(int)), SIGNAL(setSelPos(int)));
    widget("pal_sel_lb", Base::Label, -1, nullptr, SIGNAL(setPosText(QString)));
    widget("pal_grp_lb", Base::Label, 132, nullptr, nullptr);
    widget("pal_num_lb", Base::Label, 133, nullptr, nullptr);
    // Group and number are signed in the file.
    for (const auto &s : {std::pair{"pal_grp", std::pair{SLOT(grpChanged(int)), SIGNAL(setGroup(int))}},
                          std::pair{"pal_num", std::pair{SLOT(numChanged(int)), SIGNAL(setNumber(int))}}}) {
        if (auto *spin = qobject_cast<QSpinBox *>(widget(s.first, Base::SpinBox, -1, s.second.first, s.second.second, -32768, 32767)))
            spin->setKeyboardTracking(false);
    }
    auto *view = new QPaletteWidget;
    view->setRgbPalette(m_worker);
    m_view = view;
    widget("pal_view", Base::Palette, -1, nullptr, nullptr, 0, 0, view);
    connect(this, &QPalettesEditor::setColorCount, view, &QPaletteWidget::setColorCount);
    connect(view, &QPaletteWidget::changed, this, [this] {
        storeColors();
        updateHistoryActions();
    });
    connect(view, &QPaletteWidget::selectionChanged, this, &QPalettesEditor::updateHistoryActions);
    connect(view, &QPaletteWidget::colorDblClick, this, [this](ushort) { setColor(); });
    for (const char *name : {"pal_sel", "pal_grp", "pal_num", "pal_view"})
        connect(this, &QPalettesEditor::enabled, this, [this, name](bool on) { m_registry.setControlEnabled(QString::fromLatin1(name), on); });
    emit enabled(false);
    emit setPosText(QStringLiteral("0 / 0"));
    updateHistoryActions();
}

// --- helpers -------------------------------------------------------------------

QSprites *QPalettesEditor::sprites() const
{
    return m_project ? m_project->sprites() : nullptr;
}

QWidget *QPalettesEditor::window() const
{
    return m_registry.layout().window();
}

bool QPalettesEditor::flag(const char *key, bool fallback) const
{
    return m_config ? m_config->flag(QString::fromLatin1(key), fallback) : fallback;
}

int QPalettesEditor::position() const
{
    const QSprites *s = sprites();
    return s && s->paletteCount() ? qBound(0, m_pos, s->paletteCount() - 1) : -1;
}

// --- project and activation ------------------------------------------------------

void QPalettesEditor::setProject(QProject *project)
{
    if (m_project == project)
        return;
    if (m_project)
        m_positions[m_project] = m_pos;
    detachStore();
    QInterfaceExtraEditor::setProject(project);
    m_pos = project ? m_positions.value(project) : 0;
    m_viewPalette = -1;
    m_followed = -1;
    // A selection made in another project's palette means nothing here.
    if (m_view)
        m_view->clearSelection();
    if (project && !m_positions.contains(project)) {
        m_positions.insert(project, 0);
        connect(project, &QObject::destroyed, this, [this, project] { m_positions.remove(project); });
    }
}

void QPalettesEditor::activate(bool reload)
{
    QInterfaceExtraEditor::activate(reload);
    if (!reload)
        return;
    attachStore();
    m_viewPalette = -1;
    m_followed = -1;
    updateSel();
}

void QPalettesEditor::deactivate()
{
    detachStore();
    const bool was = m_active;
    QInterfaceExtraEditor::deactivate();
    // The stage goes back to the sprites' own palettes.
    if (was)
        emit shownPaletteChanged();
}

void QPalettesEditor::attachStore()
{
    detachStore();
    if (QSprites *s = sprites())
        m_connections << connect(s, &QSprites::changed, this, &QPalettesEditor::changed);
}

void QPalettesEditor::detachStore()
{
    for (const QMetaObject::Connection &c : std::as_const(m_connections))
        disconnect(c);
    m_connections.clear();
}

void QPalettesEditor::changed()
{
    // The store changes in bursts (a whole import, an undo macro): the panel
    // catches up once the event loop comes round.
    if (m_refreshPending)
        return;
    m_refreshPending = true;
    QTimer::singleShot(0, this, [this] {
        m_refreshPending = false;
        if (m_active)
            updateSel();
    });
}

// --- the panel ---------------------------------------------------------------------

void QPalettesEditor::updateSel()
{
    QSprites *s = sprites();
    const int n = s ? s->paletteCount() : 0;
    m_pos = n == 0 ? 0 : qBound(0, m_pos, n - 1);
    m_updating = true;
    if (QScrollBar *bar = scrollBar(m_registry, "pal_sel")) {
        const QSignalBlocker block(bar);
        bar->setRange(0, qMax(0, n - 1));
        bar->setPageStep(4);
    }
    emit enabled(n > 0);
    emit setSelPos(m_pos);
    emit setPosText(n == 0 ? QStringLiteral("0 / 0") : QStringLiteral("%1 / %2").arg(m_pos + 1).arg(n));
    const QPaletteInfo info = s ? s->paletteInfo(m_pos) : QPaletteInfo();
    emit setGroup(info.group);
    emit setNumber(info.number);
    emit setColorCount(n ? info.colorCount : 256);
    m_updating = false;

    const int shown = n ? m_pos : -1;
    const QRGBPal *stored = s && n ? s->paletteColors(m_pos) : nullptr;
    const QRGBPal fresh = stored ? *stored : QRGBPal();
    if (shown != m_viewPalette && m_view) {
        // Another palette: the history of the last one means nothing here.
        m_view->resetHistory();
    }
    m_viewPalette = shown;
    m_worker->setColorsQuiet(fresh);
    if (m_view)
        m_view->update();
    updateHistoryActions();
    emit shownPaletteChanged();
}

void QPalettesEditor::updateHistoryActions()
{
    const bool any = m_view && position() >= 0;
    emit canUndo(any && m_view->canUndo());
    emit canRedo(any && m_view->canRedo());
    emit canSwitchColor(any && m_view->selectedIndices().size() == 2);
    emit canSetColor(any && !m_view->selectedIndices().isEmpty());
}

void QPalettesEditor::definePos(int position)
{
    m_pos = position;
    updateSel();
}

void QPalettesEditor::followSprite(int sprite)
{
    QSprites *s = sprites();
    // Only a move to another sprite: a refresh must not undo the user's choice.
    if (!m_active || !s || sprite == m_followed)
        return;
    m_followed = sprite;
    if (!flag("switch_to_imgpal", true))
        return;
    const QSpriteItem *item = s->item(sprite);
    // A character palette chosen here is the one the player picked: it stays
    // while the author walks through the sprites drawn in palette 1,1.
    const QPaletteInfo own = item ? s->paletteInfo(item->info.palette) : QPaletteInfo();
    if (own.group == 1 && own.number == 1 && position() >= 0 && s->paletteInfo(m_pos).group == 1)
        return;
    if (item && item->info.palette < s->paletteCount() && item->info.palette != m_pos)
        definePos(item->info.palette);
}

void QPalettesEditor::storeColors()
{
    QSprites *s = sprites();
    const int i = position();
    if (!s || i < 0 || m_viewPalette != i)
        return;
    if (const QRGBPal *stored = s->paletteColors(i); stored && *stored == m_colors)
        return;
    s->setPaletteColors(i, m_colors);
    emit shownPaletteChanged();
}

void QPalettesEditor::selPosChanged(int position)
{
    if (!m_updating && position != m_pos)
        definePos(position);
}

void QPalettesEditor::grpChanged(int group)
{
    QSprites *s = sprites();
    const int i = position();
    if (m_updating || !s || i < 0 || s->paletteInfo(i).group == group)
        return;
    QPaletteInfo info = s->paletteInfo(i);
    info.group = qint16(group);
    s->setPaletteInfo(i, info);
}

void QPalettesEditor::numChanged(int number)
{
    QSprites *s = sprites();
    const int i = position();
    if (m_updating || !s || i < 0 || s->paletteInfo(i).number == number)
        return;
    QPaletteInfo info = s->paletteInfo(i);
    info.number = qint16(number);
    s->setPaletteInfo(i, info);
}

void QPalettesEditor::prevGrp()
{
    if (QSprites *s = sprites(); s && position() >= 0)
        definePos(s->previousPaletteGroup(m_pos));
}

void QPalettesEditor::nextGrp()
{
    if (QSprites *s = sprites(); s && position() >= 0)
        definePos(s->nextPaletteGroup(m_pos));
}

// --- commands ----------------------------------------------------------------------

void QPalettesEditor::clearUnused()
{
    if (QSprites *s = sprites())
        s->removeUnused();
}

void QPalettesEditor::delDupl()
{
    if (QSprites *s = sprites())
        s->mergeDuplicates();
}

void QPalettesEditor::add()
{
    QSprites *s = sprites();
    if (!s)
        return;
    const int here = position();
    const int group = here >= 0 ? s->paletteInfo(here).group : 1;
    if (!QAskUser::question(window(), tr("Add palette"), tr("Do you want to load the palettes from files?"))) {
        definePos(s->insertPalette(here + 1, QRGBPal(), false, group, -1));
        return;
    }
    const QStringList files = QAskUser::openFileNames(window(), tr("Add palettes"), projectFolder(m_project, "proj_path"), QPaletteFile::openFilter());
    if (files.isEmpty())
        return;
    rememberFolder(m_project, "proj_path", files.first());
    // The files take numbers one after another, from the first free one of
    // the group unless the author says otherwise.
    int toGroup = group;
    int number = 0;
    for (int i = 0; i < s->paletteCount(); ++i)
        if (const QPaletteInfo info = s->paletteInfo(i); info.group == group)
            number = qMax(number, info.number + 1);
    if (flag("show_addpalette_dialog", true)) {
        AddSom dialog(tr("Add palettes"), group, number, window());
        if (QAskUser::exec(&dialog) != QDialog::Accepted)
            return;
        toGroup = dialog.group();
        number = dialog.number();
    }
    QStringList failures;
    QList<QRGBPal> read;
    for (const QString &file : files) {
        QRGBPal colors;
        QString why;
        if (QPaletteFile::load(file, &colors, &why))
            read << colors;
        else
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), why);
    }
    int at = here + 1;
    int last = -1;
    if (!read.isEmpty()) {
        s->undoStack()->beginMacro(tr("Add palettes"));
        for (const QRGBPal &colors : std::as_const(read))
            last = s->insertPalette(at++, colors, false, toGroup, qBound(-32768, number++, 32767));
        s->undoStack()->endMacro();
    }
    if (last >= 0)
        definePos(last);
    if (!failures.isEmpty())
        QAskUser::warning(window(), tr("Add palettes"), tr("These files could not be read:\n%1").arg(failures.join(QLatin1Char('\n'))));
}

void QPalettesEditor::del()
{
    QSprites *s = sprites();
    const int i = position();
    if (!s || i < 0)
        return;
    if (flag("confirm_delete", true)
        && !QAskUser::question(window(), tr("Delete palette"), tr("Do you really want to delete the palette?")))
        return;
    s->removePalette(i);
    m_viewPalette = -1;
    updateSel();
}

void QPalettesEditor::open()
{
    if (position() < 0)
        return;
    // Through the view's palette, so that the view's history can take it back.
    QRGBPal colors;
    if (openPaletteFile(window(), tr("Load palette"), m_project, &colors))
        m_worker->setColors(colors);
}

void QPalettesEditor::save()
{
    QSprites *s = sprites();
    const int n = s ? s->paletteCount() : 0;
    const int here = position();
    if (here < 0)
        return;
    QList<int> set{here};
    if (n > 1) {
        SaveItem dialog(n, here, window());
        dialog.setWindowTitle(tr("Save palettes"));
        if (QAskUser::exec(&dialog) != QDialog::Accepted)
            return;
        set.clear();
        if (dialog.which() == SaveItem::Group) {
            const qint16 group = s->paletteInfo(here).group;
            for (int i = 0; i < n; ++i)
                if (s->paletteInfo(i).group == group)
                    set << i;
        } else if (dialog.which() == SaveItem::Interval) {
            for (int i = qMin(dialog.first(), dialog.last()) - 1; i < qMax(dialog.first(), dialog.last()) && i < n; ++i)
                if (i >= 0)
                    set << i;
        } else {
            set << here;
        }
        if (set.isEmpty())
            return;
    }
    const QString name = QAskUser::saveFileName(window(), tr("Save palettes"), projectFolder(m_project, "proj_path"), QPaletteFile::saveFilter());
    if (name.isEmpty())
        return;
    rememberFolder(m_project, "proj_path", name);
    const QFileInfo target(name);
    QStringList failures;
    QProgress progress(tr("Saving palettes..."), window());
    bool goOn = true;
    for (int k = 0; k < set.size() && goOn; ++k) {
        const int i = set[k];
        // One palette takes the name as given; several are named by group and number.
        QString file = name;
        if (set.size() > 1) {
            const QPaletteInfo info = s->paletteInfo(i);
            const QString suffix = target.suffix().isEmpty() ? QStringLiteral("act") : target.suffix();
            file = target.absoluteDir().filePath(QStringLiteral("%1-%2.%3").arg(info.group).arg(info.number).arg(suffix));
        }
        QString why;
        const QRGBPal *colors = s->paletteColors(i);
        if (!colors)
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), tr("the palette links to a palette that does not exist"));
        else if (!QPaletteFile::saveAct(file, *colors, &why))
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), why);
        progress.progress(uint(k + 1), uint(set.size()), goOn);
    }
    progress.hide();
    if (!failures.isEmpty())
        QAskUser::critical(window(), tr("Save palettes"), tr("These palettes could not be written:\n%1").arg(failures.join(QLatin1Char('\n'))));
}

void QPalettesEditor::switchCount()
{
    QSprites *s = sprites();
    const int i = position();
    if (!s || i < 0)
        return;
    QPaletteInfo info = s->paletteInfo(i);
    info.colorCount = info.colorCount == 32 ? 256 : 32;
    s->setPaletteInfo(i, info);
}

void QPalettesEditor::undo()
{
    if (m_view && position() >= 0)
        m_view->undo();
    updateHistoryActions();
}

void QPalettesEditor::redo()
{
    if (m_view && position() >= 0)
        m_view->redo();
    updateHistoryActions();
}

void QPalettesEditor::switchColor()
{
    const QList<int> selected = m_view ? m_view->selectedIndices() : QList<int>();
    if (selected.size() != 2 || position() < 0)
        return;
    QRGBPal swapped = m_colors;
    std::swap(swapped[selected[0]], swapped[selected[1]]);
    m_worker->setColors(swapped);
}

void QPalettesEditor::setColor()
{
    if (!m_view || position() < 0)
        return;
    const QList<int> selected = m_view->selectedIndices();
    if (selected.isEmpty())
        return;
    const int first = m_view->current() >= 0 && m_view->selection()[m_view->current()] ? m_view->current() : selected.first();
    QColorDialog dialog(QColor::fromRgba(m_colors[first].rgba()), window());
    dialog.setWindowTitle(tr("Color"));
    dialog.setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    const QColor c = dialog.currentColor();
    if (!c.isValid())
        return;
    m_worker->fill(m_view->selection(), QRGBColor::fromRgba(c.rgba()));
}

// --- applying the palette to sprites -------------------------------------------------

void QPalettesEditor::applyToSprites(const QList<int> &list)
{
    QSprites *s = sprites();
    const int pal = position();
    if (!s || pal < 0)
        return;
    QList<int> changing;
    for (int i : list)
        if (const QSpriteItem *item = s->item(i); item && item->info.palette != pal)
            changing << i;
    if (changing.isEmpty())
        return;
    s->undoStack()->beginMacro(tr("Apply the palette"));
    for (int i : std::as_const(changing)) {
        QSpriteInfo info = s->item(i)->info;
        info.palette = quint16(pal);
        s->setInfo(i, info);
    }
    s->undoStack()->endMacro();
}

void QPalettesEditor::setSprPal()
{
    QSprites *s = sprites();
    const int n = s ? s->count() : 0;
    if (n == 0 || position() < 0)
        return;
    // The sprite the sprites editor shows is the "current" one.
    const int current = qBound(0, int(s->index()), n - 1);
    SaveItem dialog(n, current, window());
    dialog.setWindowTitle(tr("Apply to the sprites"));
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    QList<int> list;
    if (dialog.which() == SaveItem::Group) {
        const quint16 group = s->item(current)->info.group;
        for (int i = 0; i < n; ++i)
            if (s->item(i)->info.group == group)
                list << i;
    } else if (dialog.which() == SaveItem::Interval) {
        for (int i = qMin(dialog.first(), dialog.last()) - 1; i < qMax(dialog.first(), dialog.last()) && i < n; ++i)
            if (i >= 0)
                list << i;
    } else {
        list << current;
    }
    applyToSprites(list);
}

void QPalettesEditor::setGrpPal()
{
    QSprites *s = sprites();
    if (!s || s->count() == 0 || position() < 0)
        return;
    QList<int> groups;
    for (int i = 0; i < s->count(); ++i)
        if (!groups.contains(s->item(i)->info.group))
            groups << s->item(i)->info.group;
    std::sort(groups.begin(), groups.end());
    AppPalDlg dialog(groups, window());
    connect(&dialog, &AppPalDlg::apply, this, [this, s](const QList<int> &chosen) {
        QList<int> list;
        for (int i = 0; i < s->count(); ++i)
            if (chosen.contains(s->item(i)->info.group))
                list << i;
        applyToSprites(list);
    });
    QAskUser::exec(&dialog);
}

// --- the colour picker ----------------------------------------------------------------

void QPalettesEditor::pickColor(bool on)
{
    m_picking = on;
}

void QPalettesEditor::colorCaptured(uchar index)
{
    if (m_view && position() >= 0)
        m_view->select(index);
}

// --- the remap table ---------------------------------------------------------------------

void QPalettesEditor::remap()
{
    QSprites *s = sprites();
    if (!s || position() < 0)
        return;
    QRemapModel *model = s->remap();
    const QList<QRemapModel::Row> found = model->rows();
    const QMetaObject::Connection live = connect(model, &QRemapModel::dataChanged, this, &QPalettesEditor::remapChanged);
    RemapDlg dialog(s, s->count() ? qBound(0, int(s->index()), s->count() - 1) : -1, window());
    const bool apply = QAskUser::exec(&dialog) == QDialog::Accepted;
    disconnect(live);
    QList<std::pair<int, int>> moves;
    for (int i = 0; apply && i < s->count(); ++i) {
        const int own = s->item(i)->info.palette;
        if (const int mapped = s->remapPalette(own); mapped != own)
            moves.append({i, mapped});
    }
    // The table was a preview: once applied, the sprites hold what it showed.
    model->setRows(apply ? QList<QRemapModel::Row>() : found);
    if (!moves.isEmpty()) {
        s->undoStack()->beginMacro(tr("Remap the palettes"));
        for (const auto &[sprite, palette] : std::as_const(moves)) {
            QSpriteInfo info = s->item(sprite)->info;
            info.palette = quint16(palette);
            s->setInfo(sprite, info);
        }
        s->undoStack()->endMacro();
    }
    emit shownPaletteChanged();
}

void QPalettesEditor::remapChanged(const QModelIndex &, const QModelIndex &)
{
    if (m_view)
        m_view->update();
    emit shownPaletteChanged();
}
