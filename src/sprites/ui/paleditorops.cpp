// The commands of the advanced palette editor: files, colour operations,
// pictures and the commits to the sprite store.
#include "paleditor.h"

#include "qimagewidget.h"
#include "qpalettewidget.h"
#include "spritedialogs.h"

#include "shell/qaskuser.h"
#include "shell/qprogress.h"
#include "sprites/qcolorquantizer.h"
#include "sprites/qimagefile.h"
#include "sprites/qpaletteops.h"
#include "sprites/qpalettefile.h"
#include "sprites/qrgbpalette.h"
#include "sprites/qsprites.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QSpinBox>

namespace {

// A colour from the user, or an invalid one if the dialog was cancelled.
QColor askColor(QWidget *parent, const QString &title, const QColor &initial)
{
    QColorDialog dialog(initial, parent);
    dialog.setWindowTitle(title);
    dialog.setOptions(QColorDialog::DontUseNativeDialog);
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return QColor();
    return dialog.currentColor();
}

QColor colorOf(const QRGBColor &c)
{
    return QColor(c.r, c.g, c.b);
}

QRGBColor opaque(const QColor &c)
{
    return QRGBColor{quint8(c.red()), quint8(c.green()), quint8(c.blue()), 255};
}

// The palette as a sprite keeps it: entry 0 transparent, the others opaque.
QRGBPal asSpritePalette(QRGBPal pal)
{
    for (int k = 0; k < 256; ++k)
        pal[k].a = k == 0 ? 0 : 255;
    return pal;
}

QString fileList(const QStringList &lines)
{
    return lines.join(QLatin1Char('\n'));
}

} // namespace

// --- files -------------------------------------------------------------------------

void PalEditor::open()
{
    QRGBPal colors;
    if (openPaletteFile(this, tr("Open palette"), m_project, &colors))
        worker()->setColors(colors);
}

void PalEditor::save()
{
    const QString file = QAskUser::saveFileName(this, tr("Save palette"), projectFolder(m_project, "pal_path"), QPaletteFile::saveFilter());
    if (file.isEmpty())
        return;
    rememberFolder(m_project, "pal_path", file);
    QString why;
    if (!QPaletteFile::saveAct(file, m_colors[m_active], &why))
        QAskUser::critical(this, tr("Save palette"), tr("%1 could not be written:\n%2").arg(QDir::toNativeSeparators(file), why));
    else
        status(tr("Saved %1").arg(QDir::toNativeSeparators(file)));
}

void PalEditor::openImg()
{
    const QString file = QAskUser::openFileName(this, tr("Open image"), projectFolder(m_project, "spr_path"), QImageFile::openFilter());
    if (file.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", file);
    const QImage picture = QImageFile::read(file);
    if (picture.isNull()) {
        QAskUser::critical(this, tr("Open image"), tr("%1 is not an image this program can read.").arg(QDir::toNativeSeparators(file)));
        return;
    }
    settleSliders();
    remember();
    if (picture.format() == QImage::Format_Indexed8
        && QAskUser::question(this, tr("Open palette"), tr("This image is color indexed. Do you want to load the palette?"))) {
        ++m_quiet;
        worker()->setColors(QRGBPal::fromColorTable(picture.colorTable()));
        --m_quiet;
    }
    setImage(picture);
}

void PalEditor::saveImg()
{
    if (m_image.isNull())
        return;
    const QString file = QAskUser::saveFileName(this, tr("Save image"), projectFolder(m_project, "spr_path"), QImageFile::saveFilter());
    if (file.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", file);
    QString why;
    if (!QImageFile::write(file, QPaletteOps::inPalette(m_image, m_colors[m_active]), &why))
        QAskUser::critical(this, tr("Save image"), tr("%1 could not be written:\n%2").arg(QDir::toNativeSeparators(file), why));
    else
        status(tr("Saved %1").arg(QDir::toNativeSeparators(file)));
}

// --- colour operations ----------------------------------------------------------------

void PalEditor::swPos()
{
    const QList<int> picked = view()->selectedIndices();
    if (picked.size() != 2)
        return;
    QRGBPal colors = m_colors[m_active];
    std::swap(colors[picked[0]], colors[picked[1]]);
    worker()->setColors(colors);
}

void PalEditor::grad()
{
    const QList<int> picked = view()->selectedIndices();
    if (picked.size() < 2)
        return;
    const QColor from = askColor(this, tr("Start color"), colorOf(m_colors[m_active][picked.first()]));
    if (!from.isValid())
        return;
    const QColor to = askColor(this, tr("End color"), colorOf(m_colors[m_active][picked.last()]));
    if (!to.isValid())
        return;
    worker()->gradient(view()->selection(), opaque(from), opaque(to));
}

void PalEditor::setCor()
{
    const QList<int> picked = view()->selectedIndices();
    if (picked.isEmpty())
        return;
    const int first = view()->current() >= 0 && view()->selection()[view()->current()] ? view()->current() : picked.first();
    QColorDialog dialog(QColor::fromRgba(m_colors[m_active][first].rgba()), this);
    dialog.setWindowTitle(tr("Color"));
    dialog.setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    if (QAskUser::exec(&dialog) != QDialog::Accepted || !dialog.currentColor().isValid())
        return;
    worker()->fill(view()->selection(), QRGBColor::fromRgba(dialog.currentColor().rgba()));
}

void PalEditor::delDupl()
{
    // The freed entries take the mask's colour, which stands out.
    worker()->deleteDuplicates(opaque(m_maskColor));
    status(tr("Duplicates now show the mask's color"));
}

void PalEditor::addDiff()
{
    worker()->addDifferent(m_colors[1 - m_active]);
}

void PalEditor::autoOrg()
{
    worker()->sort();
}

void PalEditor::invertAll()
{
    worker()->reverse(selectionOrAll());
}

void PalEditor::effectApply()
{
    worker()->effect(m_effects->currentIndex() + 1, selectionOrAll());
}

// --- palettes and pictures together ---------------------------------------------------

void PalEditor::optPal()
{
    if (m_image.isNull())
        return;
    const QPaletteOps::Reduced reduced = QPaletteOps::optimize(QPaletteOps::inPalette(m_image, m_colors[m_active]));
    settleSliders();
    remember();
    ++m_quiet;
    worker()->setColors(reduced.palette);
    --m_quiet;
    setImage(reduced.image);
    status(tr("%n color(s) in the optimized palette", nullptr, reduced.colors));
}

void PalEditor::grayScale()
{
    const QPaletteOps::Grey grey = QPaletteOps::greyScale(m_image, m_colors[m_active]);
    settleSliders();
    remember();
    ++m_quiet;
    worker()->setColors(grey.palette);
    --m_quiet;
    setImage(QPaletteOps::remapped(m_image, grey.map));
    status(tr("%n shade(s) of grey", nullptr, grey.shades));
}

void PalEditor::adaptImg()
{
    if (m_image.isNull())
        return;
    settleSliders();
    remember();
    // An indexed picture is taken as the other palette shows it; a true-colour
    // one as it is.
    if (m_image.format() == QImage::Format_Indexed8)
        setImage(QPaletteOps::remapped(m_image, QPaletteOps::nearestMap(m_colors[1 - m_active], m_colors[m_active])));
    else
        setImage(QImageFile::adapt(m_image, m_colors[m_active]));
}

void PalEditor::genPal()
{
    const QStringList files = QAskUser::openFileNames(this, tr("Open image"), projectFolder(m_project, "spr_path"), QImageFile::openFilter());
    if (files.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", files.first());
    QColorQuantizer quantizer(256, 8);
    QStringList failures;
    QProgress progress(tr("Generating palette... please wait!"), this);
    bool goOn = true;
    for (int k = 0; k < files.size() && goOn; ++k) {
        const QImage picture = QImageFile::read(files[k]);
        if (picture.isNull())
            failures << QDir::toNativeSeparators(files[k]);
        else
            quantizer.addImage(picture);
        progress.progress(uint(k + 1), uint(files.size()), goOn);
    }
    progress.hide();
    if (!goOn)
        return;
    if (!failures.isEmpty())
        QAskUser::warning(this, tr("Generate palette from images"), tr("These images could not be read:\n%1").arg(fileList(failures)));
    if (quantizer.colorCount() == 0)
        return;
    QRGBPal colors = quantizer.palette();
    for (int i = quantizer.colorCount(); i < 256; ++i)
        colors[i] = QRGBColor();
    worker()->setColors(colors);
    status(tr("%n color(s) from the images", nullptr, quantizer.colorCount()));
}

void PalEditor::insPal()
{
    const QStringList files = QAskUser::openFileNames(this, tr("Open image"), projectFolder(m_project, "spr_path"), QImageFile::openFilter());
    if (files.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", files.first());
    QStringList failures;
    QProgress progress(tr("Inserting palette in the images... please wait!"), this);
    bool goOn = true;
    int done = 0;
    for (int k = 0; k < files.size() && goOn; ++k) {
        const QImage picture = QImageFile::read(files[k]);
        QString why = tr("not an image this program can read");
        if (!picture.isNull() && QImageFile::write(files[k], QImageFile::adapt(picture, m_colors[m_active]), &why))
            ++done;
        else
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(files[k]), why);
        progress.progress(uint(k + 1), uint(files.size()), goOn);
    }
    progress.hide();
    status(tr("The palette is in %n image(s)", nullptr, done));
    if (!failures.isEmpty())
        QAskUser::critical(this, tr("Insert the current palette in the images"),
                           tr("These images were left as they were:\n%1").arg(fileList(failures)));
}

// --- the store ---------------------------------------------------------------------------

void PalEditor::saveGrpIdx()
{
    QSprites *s = sprites();
    if (!s)
        return;
    QDialog dialog(this);
    dialog.setWindowTitle(tr("Save as group/index"));
    auto *form = new QFormLayout(&dialog);
    auto *group = new QSpinBox(&dialog);
    auto *number = new QSpinBox(&dialog);
    group->setObjectName(QStringLiteral("group"));
    number->setObjectName(QStringLiteral("number"));
    for (QSpinBox *spin : {group, number})
        spin->setRange(-32768, 32767);
    const QPaletteInfo info = s->paletteInfo(m_palette);
    group->setValue(m_palette >= 0 ? info.group : 1);
    number->setValue(m_palette >= 0 ? info.number : 1);
    form->addRow(tr("Group:"), group);
    form->addRow(tr("Index:"), number);
    form->addRow(QAskUser::okCancelButtons(&dialog));
    if (QAskUser::exec(&dialog) != QDialog::Accepted)
        return;
    settleSliders();
    const int existing = s->findPalette(0, group->value(), number->value());
    if (existing >= 0)
        s->setPaletteColors(existing, m_colors[m_active]);
    else
        s->addPalette(m_colors[m_active], false, group->value(), number->value());
    status(tr("The palette is in the store as %1, %2").arg(group->value()).arg(number->value()));
}

void PalEditor::commChanges()
{
    QSprites *s = sprites();
    if (!s)
        return;
    settleSliders();
    if (m_palette >= 0 && m_palette < s->paletteCount() && s->paletteColors(m_palette)
        && *s->paletteColors(m_palette) == m_colors[0]) {
        status(tr("The store already has this palette"));
        return;
    }
    // One step on the store's undo stack, whatever the store does inside.
    s->undoStack()->beginMacro(tr("Commit changes"));
    if (m_palette >= 0 && m_palette < s->paletteCount())
        s->setPaletteColors(m_palette, m_colors[0]);
    else
        m_palette = s->addPalette(m_colors[0], false, 1, -1);
    s->undoStack()->endMacro();
    status(tr("The character's palette is in the store"));
    emit setPalette(&m_colors[0]);
}

void PalEditor::commSprChanges()
{
    QSprites *s = sprites();
    if (!s || !s->item(m_sprite) || m_image.isNull())
        return;
    settleSliders();
    QImage picture = m_image;
    // The sprite keeps its palette when the picture is shown in its colours;
    // otherwise the shown palette goes with it (an equal one is shared).
    int paletteMode = 3;
    if (picture.format() == QImage::Format_Indexed8) {
        picture.setColorTable(m_colors[m_active].toColorTable());
        QRGBPal own;
        s->spritePalette(m_sprite, &own);
        if (asSpritePalette(own) != asSpritePalette(m_colors[m_active]))
            paletteMode = 0;
    }
    s->undoStack()->beginMacro(tr("Commit sprite changes"));
    const bool ok = s->changeImage(m_sprite, picture, paletteMode, false, 0, 0);
    s->undoStack()->endMacro();
    if (!ok) {
        QAskUser::critical(this, tr("Commit sprite changes"), tr("The sprite could not take the picture."));
        return;
    }
    status(tr("The picture is in the sprite"));
    emit setSprite(picture);
}
