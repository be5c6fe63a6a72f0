// The palette list of the sprite store: every operation goes through the
// list's own rules and keeps the sprites' palette indices on the same colours.
#include "sprites/qsprites.h"

#include <algorithm>

#include "sprites/qrgbpalette.h"
#include "sprites/spriteundocommands.h"

template <typename F>
void QSprites::changePalettes(const QString &text, F change)
{
    const bool undo = undoEnabled;
    QPaletteList before;
    QList<int> refsBefore;
    if (undo) {
        before = palettes;
        refsBefore = spritePaletteIndices();
    }
    QList<int> refs = spritePaletteIndices();
    paletteObject.beginReset();
    const bool mod = change(refs);
    setSpritePaletteIndices(refs);
    paletteObject.endReset();
    if (undo && (refsBefore != refs || !samePalettes(before, palettes)))
        undoStack.push(new PaletteChange(this, text, before, refsBefore));
    if (mod)
        modified = true;
    emit changed();
}

int QSprites::findPalette(int start, int group, int number) const
{
    return palettes.find(start, group, number);
}

QPaletteInfo QSprites::paletteInfo(int i) const
{
    return palettes.info(i);
}

void QSprites::setPaletteInfo(int i, quint32 word0, quint32 word1, quint16 half)
{
    QPaletteInfo info;
    info.hasColors = (word0 & 0xFF) != 0;
    info.group = qint16(word0 >> 16);
    info.number = qint16(word1 & 0xFFFF);
    info.link = quint16(word1 >> 16);
    info.colorCount = half;
    setPaletteInfo(i, info);
}

void QSprites::setPaletteInfo(int i, const QPaletteInfo &info)
{
    if (i < 0 || i >= paletteCount())
        return;
    changePalettes(tr("Palette info"), [&](QList<int> &) {
        palettes.setInfo(i, info);
        return true;
    });
}

QRGBPal *QSprites::paletteColors(int i)
{
    return palettes.colors(i);
}

const QRGBPal *QSprites::paletteColors(int i) const
{
    return palettes.colors(i);
}

int QSprites::remapPalette(int i) const
{
    return palettes.remappedOrSelf(i, remap);
}

QRGBPal *QSprites::remappedPaletteColors(int i)
{
    return palettes.colors(remapPalette(i));
}

void QSprites::spritePalette(int sprite, QRGBPal *out) const
{
    if (!out || !validIndex(sprite))
        return;
    palettes.colorsOrZero(sprites[sprite]->info.palette, out);
}

int QSprites::addPalette(const QRGBPal &colors, bool dedupe, int group, int number)
{
    int result = -1;
    changePalettes(tr("Add palette"), [&](QList<int> &) {
        result = palettes.add(colors, dedupe, group, number);
        return true;
    });
    return result;
}

int QSprites::insertPalette(int position, const QRGBPal &colors, bool dedupe, int group, int number)
{
    int result = -1;
    changePalettes(tr("Insert palette"), [&](QList<int> &refs) {
        result = palettes.insert(std::max(position, 0), colors, dedupe, group, number, &refs);
        return true;
    });
    return result;
}

void QSprites::setPaletteColors(int i, const QRGBPal &colors)
{
    if (i < 0 || i >= paletteCount())
        return;
    changePalettes(tr("Palette colours"), [&](QList<int> &) {
        palettes.setColors(i, colors);
        return true;
    });
}

void QSprites::removePalette(int i)
{
    if (i < 0 || i >= paletteCount())
        return;
    changePalettes(tr("Remove palette"), [&](QList<int> &refs) {
        palettes.remove(i, &refs);
        return true;
    });
}

void QSprites::mergeDuplicates()
{
    changePalettes(tr("Merge duplicate palettes"),
                   [&](QList<int> &refs) { return palettes.mergeDuplicates(&refs); });
}

void QSprites::removeUnused()
{
    changePalettes(tr("Remove unused palettes"),
                   [&](QList<int> &refs) { return palettes.removeUnused(&refs); });
}

void QSprites::movePalette(int from, int to)
{
    if (from == to || from < 0 || to < 0 || from >= paletteCount() || to >= paletteCount())
        return;
    changePalettes(tr("Move palette"), [&](QList<int> &refs) { return palettes.move(from, to, &refs); });
}

void QSprites::autoOrganizePalettes()
{
    changePalettes(tr("Organize palettes"),
                   [&](QList<int> &refs) { return palettes.autoOrganize(&refs); });
}

int QSprites::findPaletteLink(int start, int i) const
{
    return palettes.findLink(start, i);
}

int QSprites::previousPaletteGroup(int i) const
{
    return palettes.previousGroup(i);
}

int QSprites::nextPaletteGroup(int i) const
{
    return palettes.nextGroup(i);
}

bool QSprites::savePaletteFile(int i, const QString &path) const
{
    const QRGBPal *c = paletteColors(i);
    if (!c)
        return false;
    QRGBPal copy = *c;
    return QRGBPalette(&copy).saveAct(path);
}

bool QSprites::loadPaletteFile(const QString &path, QRGBPal *out)
{
    if (!out)
        return false;
    return QRGBPalette(out).load(path);
}
