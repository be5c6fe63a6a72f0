// The sprites editor: the edit menu and the commands on sprites and groups.
#include "qspriteseditor.h"

#include "spritedialogs.h"

#include "shell/qaskuser.h"
#include "shell/qprogress.h"
#include "sprites/qimagefile.h"
#include "sprites/qsprites.h"

#include <QDir>
#include <QRegularExpression>

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
    const QStringList files = QAskUser::openFileNames(window(), tr("Add sprites"), projectFolder(m_project, "spr_path"), QImageFile::openFilter());
    if (files.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", files.first());

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
    const QString file = QAskUser::openFileName(window(), tr("Change image"), projectFolder(m_project, "spr_path"), QImageFile::openFilter());
    if (file.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", file);
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
