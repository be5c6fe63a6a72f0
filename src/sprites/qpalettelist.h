#pragma once

#include "sprites/qpaletteitem.h"

#include <QList>
#include <memory>
#include <vector>

class QRemapModel;

// The list of palettes of a sprite file with every list operation on it. The
// sprite store owns one by value; operations that change palette indices take
// the palette index of every sprite (`spritePalettes`, one entry per sprite,
// may be null) and adjust it in place, so that the store only has to copy the
// indices out and back.
//
// Items are heap records, so a pointer to an item's colours stays valid while
// other palettes are added, moved or removed.
class QPaletteList
{
public:
    QPaletteList() = default;
    QPaletteList(const QPaletteList &other);
    QPaletteList &operator=(const QPaletteList &other);
    QPaletteList(QPaletteList &&) = default;
    QPaletteList &operator=(QPaletteList &&) = default;

    int count() const { return int(m_items.size()); }
    bool isEmpty() const { return m_items.empty(); }
    // Null if out of range.
    QPaletteItem *item(int index);
    const QPaletteItem *item(int index) const;
    void clear() { m_items.clear(); }
    // Appends an item as it stands (file readers); returns its index.
    int append(std::unique_ptr<QPaletteItem> item);

    // First palette from `start` with that group and number, -1 if none.
    int find(int start, int group, int number) const;
    // Zeroes if out of range.
    QPaletteInfo info(int index) const;
    // Stores the block as it stands; false if out of range.
    bool setInfo(int index, const QPaletteInfo &info);
    // Follows links from `index` to the palette that has colours; null if a link
    // leaves the list or the links run in a circle.
    QRGBPal *colors(int index);
    const QRGBPal *colors(int index) const;
    // Index of the palette whose colours `index` shows, -1 as for colors().
    int root(int index) const;
    // First link from `start` to `index`, -1 if none.
    int findLink(int start, int index) const;
    // First palette of the group before / after the one at `index`; 0 if none.
    int previousGroup(int index) const;
    int nextGroup(int index) const;

    // Adds a palette. With `dedupe`, an existing palette with the same 1,024
    // bytes is returned instead (links compared by their stale colours too).
    // A negative number means one more than the highest number in the group.
    // `added` tells which of the two happened.
    int add(const QRGBPal &colors, bool dedupe, int group, int number, bool *added = nullptr);
    // As add(), but at `position`; sprites using `position` or higher move up
    // one. Palette links are left alone.
    int insert(int position, const QRGBPal &colors, bool dedupe, int group, int number,
               QList<int> *spritePalettes, bool *added = nullptr);
    // Copies the colours, applies the colour-count rule, makes the palette own
    // its colours; false if out of range.
    bool setColors(int index, const QRGBPal &colors);
    // Removes a palette: the first later link to it inherits its colours, other
    // links to it are pointed at the heir's old position, sprites using it fall
    // back to palette 0, sprites using a later one move down. False if out of range.
    bool remove(int index, QList<int> *spritePalettes);
    // Removes palettes whose colours equal an earlier palette's, and links,
    // pointing their sprites at the surviving palette. True if any was removed.
    bool mergeDuplicates(QList<int> *spritePalettes);
    // Removes palettes no sprite uses, except those of group 1 (the character's
    // palette files). True if any was removed.
    bool removeUnused(QList<int> *spritePalettes);
    // Moves a palette, keeping links pointing backwards; ignored (false) if the
    // two are equal or either is out of range.
    bool move(int from, int to, QList<int> *spritePalettes);
    // Orders by group, then number, through move(); true if anything moved.
    bool autoOrganize(QList<int> *spritePalettes);

    // The palette index `index` is remapped to by the table, or -1 if the table
    // has no answer.
    int remapped(int index, const QRemapModel &remap) const;
    // The remapped index, or `index` itself if the table has no answer.
    int remappedOrSelf(int index, const QRemapModel &remap) const;

    // Fills `out` with zeros and copies the colours palette `index` shows;
    // out stays zero when there are none.
    void colorsOrZero(int index, QRGBPal *out) const;

private:
    std::vector<std::unique_ptr<QPaletteItem>> m_items;
};
