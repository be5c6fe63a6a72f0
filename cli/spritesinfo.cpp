#include "spritesinfo.h"

#include "console.h"
#include "issuesjson.h"
#include "spritefile.h"

#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>

namespace SpritesInfo {

QString formatName(int filter, bool isLink)
{
    if (isLink)
        return QStringLiteral("link");
    switch (filter) {
    case 0: return QStringLiteral("raw");
    case 1:
    case 6: return QStringLiteral("PCX"); // 6: shown on a 32-colour palette
    case 2: return QStringLiteral("RLE8");
    case 3: return QStringLiteral("RLE5");
    case 4: return QStringLiteral("LZ5");
    case 5: return QStringLiteral("PNG");
    default: return QStringLiteral("unknown %1").arg(filter);
    }
}

int depthOf(int imageFormat)
{
    switch (imageFormat) {
    case QImage::Format_Indexed8: return 8;
    case QImage::Format_RGB32: return 24;
    case QImage::Format_ARGB32: return 32;
    default: return 0;
    }
}

namespace {

struct Counts
{
    int sprites = 0;
    int linked = 0;
    int palettes = 0;
};

Counts countsOf(const QSprites &store)
{
    Counts c;
    c.sprites = store.count();
    c.palettes = store.paletteCount();
    for (int i = 0; i < c.sprites; ++i) {
        if (store.item(i)->isLink())
            ++c.linked;
    }
    return c;
}

// The palette a sprite shows, after the remap table; -1 if it has none.
int shownPalette(const QSprites &store, const QSpriteItem &sprite)
{
    const int p = store.remapPalette(sprite.info.palette);
    return p >= 0 && p < store.paletteCount() ? p : -1;
}

QJsonValue paletteRef(const QSprites &store, int palette)
{
    if (palette < 0)
        return QJsonValue::Null;
    const QPaletteInfo info = store.paletteInfo(palette);
    return QJsonObject{{QStringLiteral("index"), palette},
                       {QStringLiteral("group"), info.group},
                       {QStringLiteral("number"), info.number}};
}

} // namespace

QJsonObject toJson(const SpriteFile &file, const QString &path)
{
    const QSprites &store = file.store();
    const Counts counts = countsOf(store);

    QJsonArray palettes;
    for (int i = 0; i < counts.palettes; ++i) {
        const QPaletteInfo info = store.paletteInfo(i);
        palettes.append(QJsonObject{
            {QStringLiteral("index"), i},
            {QStringLiteral("group"), info.group},
            {QStringLiteral("number"), info.number},
            {QStringLiteral("colors"), info.colorCount},
            {QStringLiteral("link"), info.hasColors ? QJsonValue(QJsonValue::Null) : QJsonValue(info.link)},
        });
    }

    QJsonArray sprites;
    for (int i = 0; i < counts.sprites; ++i) {
        const QSpriteItem &s = *store.item(i);
        sprites.append(QJsonObject{
            {QStringLiteral("index"), i},
            {QStringLiteral("group"), s.info.group},
            {QStringLiteral("number"), s.info.number},
            {QStringLiteral("x"), s.info.x},
            {QStringLiteral("y"), s.info.y},
            {QStringLiteral("width"), s.width},
            {QStringLiteral("height"), s.height},
            {QStringLiteral("depth"), depthOf(s.imageFormat)},
            {QStringLiteral("format"), formatName(s.filter, s.isLink())},
            {QStringLiteral("link"), s.isLink() ? QJsonValue(s.info.link) : QJsonValue(QJsonValue::Null)},
            {QStringLiteral("palette"), paletteRef(store, shownPalette(store, s))},
        });
    }

    return QJsonObject{
        {QStringLiteral("file"), path},
        {QStringLiteral("kind"), QStringLiteral("sprites")},
        {QStringLiteral("version"), QSffVersion::name(store.version())},
        {QStringLiteral("versionWord"), QSffVersion::dotted(store.version())},
        {QStringLiteral("spriteCount"), counts.sprites},
        {QStringLiteral("linkedCount"), counts.linked},
        {QStringLiteral("paletteCount"), counts.palettes},
        {QStringLiteral("palettes"), palettes},
        {QStringLiteral("sprites"), sprites},
        {QStringLiteral("issues"), IssuesJson::toJson(file.messages(), QFileInfo(path).fileName())},
    };
}

QString toText(const SpriteFile &file, const QString &path)
{
    const QSprites &store = file.store();
    const Counts counts = countsOf(store);
    QString out;
    out += QStringLiteral("File:      %1\n").arg(path);
    out += QStringLiteral("Kind:      sprites (SFF)\n");
    out += QStringLiteral("Version:   %1 (%2)\n")
               .arg(QSffVersion::name(store.version()), QSffVersion::dotted(store.version()));
    out += QStringLiteral("Sprites:   %1\n").arg(counts.sprites);
    out += QStringLiteral("Linked:    %1\n").arg(counts.linked);
    out += QStringLiteral("Palettes:  %1\n").arg(counts.palettes);

    if (counts.palettes) {
        out += QStringLiteral("\nPalettes\n%1 %2 %3 %4 %5\n")
                   .arg(QStringLiteral("index"), 5)
                   .arg(QStringLiteral("group"), 6)
                   .arg(QStringLiteral("number"), 6)
                   .arg(QStringLiteral("colors"), 6)
                   .arg(QStringLiteral("link"), 5);
        for (int i = 0; i < counts.palettes; ++i) {
            const QPaletteInfo info = store.paletteInfo(i);
            out += QStringLiteral("%1 %2 %3 %4 %5\n")
                       .arg(i, 5)
                       .arg(info.group, 6)
                       .arg(info.number, 6)
                       .arg(info.colorCount, 6)
                       .arg(info.hasColors ? QStringLiteral("-") : QString::number(info.link), 5);
        }
    }

    if (counts.sprites) {
        out += QStringLiteral("\nSprites\n%1 %2 %3 %4 %5 %6 %7 %8 %9 %10 %11\n")
                   .arg(QStringLiteral("index"), 5)
                   .arg(QStringLiteral("group"), 6)
                   .arg(QStringLiteral("number"), 6)
                   .arg(QStringLiteral("x"), 6)
                   .arg(QStringLiteral("y"), 6)
                   .arg(QStringLiteral("width"), 6)
                   .arg(QStringLiteral("height"), 6)
                   .arg(QStringLiteral("depth"), 5)
                   .arg(QStringLiteral("format"), -7)
                   .arg(QStringLiteral("link"), 5)
                   .arg(QStringLiteral("palette"));
        for (int i = 0; i < counts.sprites; ++i) {
            const QSpriteItem &s = *store.item(i);
            const int p = shownPalette(store, s);
            QString palette = QStringLiteral("-");
            if (p >= 0) {
                const QPaletteInfo info = store.paletteInfo(p);
                palette = QStringLiteral("%1 (%2,%3)").arg(p).arg(info.group).arg(info.number);
            }
            out += QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8 %9 %10 %11\n")
                       .arg(i, 5)
                       .arg(s.info.group, 6)
                       .arg(s.info.number, 6)
                       .arg(s.info.x, 6)
                       .arg(s.info.y, 6)
                       .arg(s.width, 6)
                       .arg(s.height, 6)
                       .arg(depthOf(s.imageFormat), 5)
                       .arg(formatName(s.filter, s.isLink()), -7)
                       .arg(s.isLink() ? QString::number(s.info.link) : QStringLiteral("-"), 5)
                       .arg(palette);
        }
    }
    return out;
}

ExitCode run(const QString &path, bool json)
{
    SpriteFile file;
    QString error;
    const bool loaded = file.load(path, false, &error);
    const int issues = Console::printIssues(file.messages(), QFileInfo(path).fileName());
    if (!loaded) {
        Console::fail(error);
        return ExitCode::Failure;
    }
    if (json)
        Console::json(QJsonDocument(toJson(file, path)));
    else
        Console::out(toText(file, path));
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace SpritesInfo
