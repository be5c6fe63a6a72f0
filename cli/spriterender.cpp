// brawlforge-cli sprites render: one sprite through the stage's drawing code.
#include "spritescommand.h"

#include "atomicwrite.h"
#include "commandstart.h"
#include "console.h"
#include "filekind.h"
#include "progressmeter.h"
#include "spritefile.h"
#include "project/qproject.h"
#include "render/qspritepicture.h"
#include "render/qzoom.h"

#include <QDir>
#include <QFileInfo>

namespace SpritesCommand {

namespace {

// "G,N" as two numbers of 0 to 65535.
bool parsePair(const QString &text, int *group, int *number)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        return false;
    bool ok1 = false, ok2 = false;
    *group = parts.at(0).trimmed().toInt(&ok1);
    *number = parts.at(1).trimmed().toInt(&ok2);
    return ok1 && ok2 && *group >= 0 && *group <= 65535 && *number >= 0 && *number <= 65535;
}

// The zoom step whose factor is `text`; -1 if it is none of them.
int zoomIndex(const QString &text)
{
    bool ok = false;
    const double factor = text.toDouble(&ok);
    for (int i = 0; ok && i < QZoom::Count; ++i)
        if (qFuzzyCompare(QZoom::factorAt(i), factor))
            return i;
    return -1;
}

} // namespace

ExitCode render(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SpritesRender,
                                      {{QStringLiteral("palette"), true}, {QStringLiteral("zoom"), true},
                                       {QStringLiteral("stage"), false}},
                                      {QStringLiteral("FILE.sff|FILE.def"), QStringLiteral("GROUP,NUMBER"),
                                       QStringLiteral("OUT.png")});
    if (start.finished)
        return *start.finished;
    const QString input = start.args.positional().at(0);
    const QString output = start.args.positional().at(2);
    int group = 0, number = 0;
    if (!parsePair(start.args.positional().at(1), &group, &number))
        return usageError(Usage::Topic::SpritesRender,
                          QStringLiteral("'%1' is not a sprite: write GROUP,NUMBER").arg(start.args.positional().at(1)));
    int paletteGroup = -1, paletteNumber = -1;
    if (start.args.has(QStringLiteral("palette"))
        && !parsePair(start.args.value(QStringLiteral("palette")), &paletteGroup, &paletteNumber))
        return usageError(Usage::Topic::SpritesRender,
                          QStringLiteral("'%1' is not a palette: write --palette G,N").arg(start.args.value(QStringLiteral("palette"))));
    int zoom = QZoom::Default;
    if (start.args.has(QStringLiteral("zoom"))) {
        zoom = zoomIndex(start.args.value(QStringLiteral("zoom")));
        if (zoom < 0)
            return usageError(Usage::Topic::SpritesRender,
                              QStringLiteral("unknown zoom '%1': use 0.25, 0.5, 1, 2, 3, 4, 5, 6, 7 or 8")
                                  .arg(start.args.value(QStringLiteral("zoom"))));
    }

    // A sprite file alone, or the sprites of a project.
    const FileKind kind = FileKinds::detect(input);
    const QString name = QFileInfo(input).fileName();
    SpriteFile file;
    QProject project;
    QSprites *sprites = nullptr;
    int issues = 0;
    if (kind == FileKind::Sprites) {
        QString error;
        const bool loaded = file.load(input, false, &error);
        issues = Console::printIssues(file.messages(), name);
        if (!loaded) {
            Console::fail(error);
            return ExitCode::Failure;
        }
        sprites = &file.store();
    } else if (kind == FileKind::Definitions) {
        ProgressMeter meter(QStringLiteral("Opening %1").arg(name));
        QObject::connect(&project, &QProject::progress, &meter, &ProgressMeter::update);
        const bool opened = project.fromFile(input, 0, false, false);
        meter.finish();
        issues = Console::printIssues(*project.messages(), name);
        if (!opened) {
            Console::fail(QStringLiteral("'%1': cannot be opened as a project").arg(QDir::toNativeSeparators(input)));
            return ExitCode::Failure;
        }
        sprites = project.sprites();
    } else {
        Console::fail(kind == FileKind::Unknown
                          ? QStringLiteral("'%1': neither a sprite file (SFF) nor a definition file (DEF)")
                                .arg(QDir::toNativeSeparators(input))
                          : FileKinds::problem(kind, input));
        return ExitCode::Failure;
    }

    const int index = sprites->findSprite(0, group, number);
    if (index < 0) {
        Console::fail(QStringLiteral("'%1': no sprite %2,%3").arg(QDir::toNativeSeparators(input)).arg(group).arg(number));
        return ExitCode::Failure;
    }
    int palette = -1;
    if (paletteGroup >= 0) {
        palette = sprites->findPalette(0, paletteGroup, paletteNumber);
        if (palette < 0) {
            Console::fail(QStringLiteral("'%1': no palette %2,%3").arg(QDir::toNativeSeparators(input))
                              .arg(paletteGroup).arg(paletteNumber));
            return ExitCode::Failure;
        }
    }
    const QSpriteItem *item = sprites->item(index);
    if (qint64(item->width) * item->height > SpriteFile::kMaxSpriteBytes) {
        Console::fail(QStringLiteral("'%1': sprite %2,%3 claims %4 x %5 pixels: damaged")
                          .arg(QDir::toNativeSeparators(input)).arg(group).arg(number).arg(item->width).arg(item->height));
        return ExitCode::Failure;
    }
    const QImage picture = start.args.has(QStringLiteral("stage"))
        ? QSpritePicture::onStage(sprites, index, palette, zoom)
        : QSpritePicture::alone(sprites, index, palette, zoom);
    if (picture.isNull()) {
        Console::fail(QStringLiteral("'%1': sprite %2,%3 has no picture (empty, or its data is damaged)")
                          .arg(QDir::toNativeSeparators(input)).arg(group).arg(number));
        return ExitCode::Failure;
    }
    QString error;
    if (!AtomicWrite::writePng(output, picture, &error)) {
        Console::fail(error);
        return ExitCode::Failure;
    }
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace SpritesCommand
