// The palette list of the sprite store: every operation goes through the
// list's own rules and keeps the sprites' palette indices on the same colours.
#include "sprites/qsprites.h"

#include <algorithm>

#include "sprites/qrgbpalette.h"
#include "sprites/spriteundocommands.h"

template <typename F>
void QSprites::changePalettes(const QString &text, F change)
{
    const bool undo = m_undoEnabled;
    QPaletteList before;
    QList<int> refsBefore;
    if (undo) {
        before = m_palettes;
        refsBefore = spritePaletteIndices();
    }
    QList<int> refs = spritePaletteIndices();
    m_paletteObject.beginReset();
    const bool mod = change(refs);
    setSpritePaletteIndices(refs);
    m_paletteObject.endReset();
    if (undo && (refsBefore != refs || !samePalettes(before, m_palettes)))
        m_undoStack.push(new PaletteChange(this, text, before, refsBefore));
    if (mod)
        m_modified = true;
    emit changed();
}

int QSprites::findPalette(int start, int group, int number) const
{
    return m_palettes.find(start, group, number);
}

QPaletteInfo QSprites::paletteInfo(int i) const
{
    return m_palettes.info(i);
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
        m_palettes.setInfo(i, info);
        return true;
    });
}

QRGBPal *QSprites::paletteColors(int i)
{
    return m_palettes.colors(i);
}

const QRGBPal *QSprites::paletteColors(int i) const
{
    return m_palettes.colors(i);
}

int QSprites::remapPalette(int i) const
{
    return m_palettes.remappedOrSelf(i, m_remap);
}

QRGBPal *QSprites::remappedPaletteColors(int i)
{
    return m_palettes.colors(remapPalette(i));
}

void QSprites::spritePalette(int sprite, QRGBPal *out) const
{
    if (!out || !validIndex(sprite))
        return;
    m_palettes.colorsOrZero(m_sprites[sprite]->info.palette, out);
}

int QSprites::addPalette(const QRGBPal &colors, bool dedupe, int group, int number)
{
    int result = -1;
    changePalettes(tr("Add palette"), [&](QList<int> &) {
        result = m_palettes.add(colors, dedupe, group, number);
        return true;
    });
    return result;
}

int QSprites::insertPalette(int position, const QRGBPal &colors, bool dedupe, int group, int number)
{
    int result = -1;
    changePalettes(tr("Insert palette"), [&](QList<int> &refs) {
        result = m_palettes.insert(std::max(position, 0), colors, dedupe, group, number, &refs);
        return true;
    });
    return result;
}

void QSprites::setPaletteColors(int i, const QRGBPal &colors)
{
    if (i < 0 || i >= paletteCount())
        return;
    changePalettes(tr("Palette colours"), [&](QList<int> &) {
        m_palettes.setColors(i, colors);
        return true;
    });
}

void QSprites::removePalette(int i)
{
    if (i < 0 || i >= paletteCount())
        return;
    changePalettes(tr("Remove palette"), [&](QList<int> &refs) {
        m_palettes.remove(i, &refs);
        return true;
    });
}

void QSprites::mergeDuplicates()
{
    changePalettes(tr("Merge duplicate palettes"),
                   [&](QList<int> &refs) { return m_palettes.mergeDuplicates(&refs); });
}

void QSprites::removeUnused()
{
    changePalettes(tr("Remove unused palettes"),
                   [&](QList<int> &refs) { return m_palettes.removeUnused(&refs); });
}

void QSprites::movePalette(int from, int to)
{
    if (from == to || from < 0 || to < 0 || from >= paletteCount() || to >= paletteCount())
        return;
    changePalettes(tr("Move palette"), [&](QList<int> &refs) { return m_palettes.move(from, to, &refs); });
}

void QSprites::autoOrganizePalettes()
{
    changePalettes(tr("Organize palettes"),
                   [&](QList<int> &refs) { return m_palettes.autoOrganize(&refs); });
}

int QSprites::findPaletteLink(int start, int i) const
{
    return m_palettes.findLink(start, i);
}

int QSprites::previousPaletteGroup(int i) const
{
    return m_palettes.previousGroup(i);
}

int QSprites::nextPaletteGroup(int i) const
{
    return m_palettes.nextGroup(i);
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

void QSprites::restorePalettes(const QPaletteList &palettes, const QList<int> &spritePalettes)
{
    m_paletteObject.beginReset();
    m_palettes = palettes;
    setSpritePaletteIndices(spritePalettes);
    m_paletteObject.endReset();
}

int QSprites::setLoadedPalette(const QRGBPal &colors, int group, int number)
{
    const int index = findPalette(0, group, number);
    if (index < 0)
        return addLoadedPalette(colors, group, number);
    const bool undo = m_undoEnabled;
    const bool modified = m_modified;
    m_undoEnabled = false;
    setPaletteColors(index, colors);
    m_undoEnabled = undo;
    m_modified = modified;
    return index;
}

int QSprites::addLoadedPalette(const QRGBPal &colors, int group, int number)
{
    const bool undo = m_undoEnabled;
    const bool modified = m_modified;
    m_undoEnabled = false;
    const int index = addPalette(colors, false, group, number);
    m_undoEnabled = undo;
    m_modified = modified;
    return index;
}
