// The sprites editor: opening and saving the store, and exporting images.
#include "qspriteseditor.h"

#include "spritedialogs.h"

#include "project/qproject.h"
#include "shell/qaskuser.h"
#include "shell/qprogress.h"
#include "sprites/qimagefile.h"
#include "sprites/qsprites.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QSaveFile>

namespace {

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
    const QString path = QAskUser::openFileName(window(), tr("Open sprites"), projectFolder(m_project, "proj_path"),
                                                QProject::fileFilter(QProjectFile::Sprites));
    if (path.isEmpty())
        return;
    if (s->isModified()
        && !QAskUser::question(window(), tr("Open"),
                               tr("Do you really want to discard the changes made in the sprites and/or palettes?")))
        return;
    rememberFolder(m_project, "proj_path", path);
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
    const QString name = QAskUser::saveFileName(window(), tr("Save images"), projectFolder(m_project, "spr_path"), QImageFile::saveFilter());
    if (name.isEmpty())
        return;
    rememberFolder(m_project, "spr_path", name);
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
