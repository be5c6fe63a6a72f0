#include "projectstate.h"

#include "animations/qanimations.h"
#include "sounds/qsounds.h"

#include <QCryptographicHash>
#include "project/qproject.h"
#include "sprites/qsprites.h"

#include <QTextDocument>

namespace TestSupport {

namespace {

void addText(ProjectState &s, QSyntaxTextEditor *doc)
{
    s.texts << doc->text();
    s.textUndo << doc->document()->availableUndoSteps();
    s.textModified << doc->isModified();
    s.textNames << doc->fileName();
}

} // namespace

ProjectState ProjectState::of(QSprites &sprites)
{
    ProjectState s;
    for (int i = 0; i < sprites.count(); ++i) {
        const QSpriteItem *item = sprites.item(i);
        const QSpriteInfo &in = item->info;
        s.sprites << QStringLiteral("%1 %2,%3 at %4,%5 image %6 link %7 palette %8 flags %9 format %10")
                         .arg(i).arg(in.group).arg(in.number).arg(in.x).arg(in.y).arg(in.hasImage).arg(in.link)
                         .arg(in.palette).arg(in.flags).arg(int(item->imageFormat));
        s.images << sprites.image(i).convertToFormat(QImage::Format_ARGB32);
    }
    for (int p = 0; p < sprites.paletteCount(); ++p) {
        const QPaletteInfo info = sprites.paletteInfo(p);
        s.palettes += QByteArray::number(info.group) + ',' + QByteArray::number(info.number) + ':';
        if (const QRGBPal *colors = sprites.paletteColors(p))
            s.palettes += QByteArray(reinterpret_cast<const char *>(colors->bytes()), 1024);
    }
    s.undoCount = sprites.undoStack()->count();
    s.undoIndex = sprites.undoStack()->index();
    s.spritesModified = sprites.isModified();
    s.spritesFile = sprites.fileName();
    s.spritesVersion = sprites.version();
    return s;
}

ProjectState ProjectState::of(QProject &project)
{
    ProjectState s = of(*project.sprites());
    addText(s, project.definitions());
    addText(s, project.commands());
    for (int i = 0; i < project.statesCount(); ++i)
        addText(s, project.state(i));
    s.animations = project.animations()->fileText();
    s.animationsModified = project.animations()->isModified();
    s.animationsFile = project.animations()->path();
    QSounds *sounds = project.sounds();
    for (int i = 0; i < sounds->count(); ++i)
        s.sounds << QStringLiteral("%1,%2 %3")
                        .arg(sounds->record(i).group)
                        .arg(sounds->record(i).number)
                        .arg(QString::fromLatin1(QCryptographicHash::hash(sounds->sample(i), QCryptographicHash::Md5).toHex()));
    s.soundUndoCount = sounds->undoStack()->count();
    s.soundUndoIndex = sounds->undoStack()->index();
    s.soundsModified = sounds->isModified();
    s.soundsFile = sounds->path();
    return s;
}

QString firstDifference(const ProjectState &a, const ProjectState &b, bool realSave)
{
    if (a.texts != b.texts)
        return QStringLiteral("a text changed");
    if (a.textUndo != b.textUndo)
        return QStringLiteral("a text's undo steps changed");
    if (a.sprites.size() != b.sprites.size())
        return QStringLiteral("%1 sprites became %2").arg(a.sprites.size()).arg(b.sprites.size());
    for (qsizetype i = 0; i < a.sprites.size(); ++i) {
        if (a.sprites.at(i) != b.sprites.at(i))
            return QStringLiteral("sprite \"%1\" became \"%2\"").arg(a.sprites.at(i), b.sprites.at(i));
        if (a.images.at(i) != b.images.at(i))
            return QStringLiteral("sprite %1 shows other pixels").arg(i);
    }
    if (a.palettes != b.palettes)
        return QStringLiteral("the palettes changed");
    if (a.animations != b.animations)
        return QStringLiteral("the animations changed");
    if (a.sounds != b.sounds)
        return QStringLiteral("the sounds changed");
    if (a.soundUndoCount != b.soundUndoCount || a.soundUndoIndex != b.soundUndoIndex)
        return QStringLiteral("the sound undo stack changed");
    if (a.undoCount != b.undoCount || a.undoIndex != b.undoIndex)
        return QStringLiteral("the sprite undo stack went from %1/%2 to %3/%4")
            .arg(a.undoIndex).arg(a.undoCount).arg(b.undoIndex).arg(b.undoCount);
    if (realSave)
        return QString();
    if (a.textModified != b.textModified || a.spritesModified != b.spritesModified
        || a.animationsModified != b.animationsModified || a.soundsModified != b.soundsModified)
        return QStringLiteral("a modified flag changed");
    if (a.textNames != b.textNames || a.spritesFile != b.spritesFile || a.animationsFile != b.animationsFile
        || a.soundsFile != b.soundsFile)
        return QStringLiteral("a file name changed");
    if (a.spritesVersion != b.spritesVersion)
        return QStringLiteral("the sprite version changed");
    return QString();
}

} // namespace TestSupport
