#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QString>
#include <QUndoStack>

#include <memory>

#include "base/qorganizableobject.h"
#include "sprites/qpaletteitem.h"
#include "sprites/qpalettelist.h"
#include "sprites/qpaletteobject.h"
#include "sprites/qremapmodel.h"
#include "sprites/qrgbpal.h"
#include "sprites/qsffversion.h"
#include "sprites/qspritecache.h"
#include "sprites/qspriteitem.h"

class QMessages;
namespace Sff {
class SffReader;
class SffPlan;
class SffWriter;
} // namespace Sff

// The in-memory form of one sprite file: the ordered sprites, the ordered
// palettes, the remap table, the cache that holds the pixels and one undo
// stack for sprites and palettes. Every project owns exactly one, and every
// view of sprites and palettes works on it.
//
// Rules kept by every structural edit: a link points to a lower index and
// straight at a sprite that owns an image; the order of `sprites` is the file
// order. Structural edits touch no pixels: they move handles, never decode.
//
// Every mutator ends with the store modified and changed() emitted. With undo
// enabled, mutators push their undo command after the change has been made
// (the command's first redo does nothing). The state is the store's own:
// others read it, and change it only through the store's operations.
class QSprites : public QOrganizableObject
{
    Q_OBJECT
    Q_PROPERTY(quint32 version READ version)
    Q_PROPERTY(quint32 index READ index WRITE setIndex)

public:
    // `cacheMode` and `cacheCompression` are the configuration's cache_type
    // and cache_compression, fixed for the life of the store.
    // `records` is the program's pool of cache records; without one the
    // store's cache keeps its own.
    explicit QSprites(int cacheMode = QSpriteCache::Memory, bool cacheCompression = true,
                      QSpriteRecordPool *records = nullptr, QObject *parent = nullptr);
    ~QSprites() override;

    // --- list model ---------------------------------------------------------
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    // --- file (sfffile.cpp) --------------------------------------------------
    bool fromFile(const QString &path, bool isCharacter, bool keepName);
    // Writes the file; the store, its cache and its undo stack stay as they
    // are. A real save (not `temporary`: a test copy or a backup) then clears
    // `modified` and takes the file's name and version.
    bool toFile(const QString &path, bool isCharacter, quint32 version, bool lzSearch,
                bool temporary);
    // Sprites that a save in `version` (0: the store's own) would show with
    // other colours once read back: true colour reduced to 8 bits, colours
    // that version 1.01 can't give them. Sorted; empty if none.
    QList<uint> spritesChangedBy(quint32 version, bool isCharacter) const;

    bool isModified() const { return m_modified; }
    int count() const { return int(m_sprites.size()); }
    // Record at `index`, null if out of range.
    QSpriteItem *item(int index) const;

    // --- structure -----------------------------------------------------------
    void add();
    void insert(int index);
    void remove(int index);
    void clear();
    void move(int from, int to) override;
    void crop(int index);
    void autoOrganize() override;
    void renameGroup(int group, int newGroup, bool whole, int first, int last);
    void removeGroup(int group, bool whole, int first, int last);
    void duplicate(int index, bool copyImage);
    // The four words hold, low half first: x and y, group and number, link and
    // palette, flags. `hasImage` is structural and stays as it is; a link is
    // only taken if it points backwards.
    void setInfo(int index, quint32 axis, quint32 groupNumber, quint32 linkPalette, quint32 flags);
    // The same with the fields of a record (hasImage is ignored as above).
    void setInfo(int index, const QSpriteInfo &info);
    void flattenLinks();

    // --- images --------------------------------------------------------------
    // The sprite's picture with the colour table of palette `palette` (the
    // sprite's own when negative), after the remap table. Null if out of range,
    // empty, or if its link is broken.
    QImage image(int index, int palette = -1) const;
    // Decoded bytes in the padded layout of the image, following a link.
    QByteArray imageData(int index) const;
    // Palette modes: 0 the image's own colour table becomes a palette (reused if
    // an identical one exists), 1 the image is adapted to palette group,number,
    // 2 palette group,number is taken as it is, anything else leaves the palette.
    bool changeImage(int index, const QImage &image, int paletteMode, bool invert, int group,
                     int number);

    // --- lookups -------------------------------------------------------------
    int findSprite(int start, int group, int number) const;
    // Width in the low half, height in the high half; 0 if out of range.
    quint32 spriteSize(int index) const;
    int previousGroupStart(int index) const;
    int nextGroupStart(int index) const;
    // Largest x, y over all sprites, and largest width - x, height - y, each
    // floored at 0: the canvas that holds every sprite on a common axis.
    void bounds(QPoint &axisMax, QPoint &sizeMax) const;
    // The sprite that owns the image `index` shows; -1 if the links are broken.
    int rootOf(int index) const;
    int findLinkTo(int start, int index) const;

    // --- clipboard -----------------------------------------------------------
    void copy(int index) const;
    void paste(int index);

    // --- palettes ------------------------------------------------------------
    int paletteCount() const { return m_palettes.count(); }
    int findPalette(int start, int group, int number) const;
    QPaletteInfo paletteInfo(int index) const;
    // The ten-byte block as words: hasColors in bits 0-7 and group in the high
    // half of the first; number low and link high in the second; colorCount.
    void setPaletteInfo(int index, quint32 word0, quint32 word1, quint16 half);
    void setPaletteInfo(int index, const QPaletteInfo &info);
    QRGBPal *paletteColors(int index);
    const QRGBPal *paletteColors(int index) const;
    QRGBPal *remappedPaletteColors(int index);
    // Palette index `index` maps to through the remap table, or `index` itself.
    int remapPalette(int index) const;
    void spritePalette(int sprite, QRGBPal *out) const;
    int addPalette(const QRGBPal &colors, bool dedupe, int group, int number);
    int insertPalette(int position, const QRGBPal &colors, bool dedupe, int group, int number);
    void setPaletteColors(int index, const QRGBPal &colors);
    void removePalette(int index);
    void mergeDuplicates();
    void removeUnused();
    void movePalette(int from, int to);
    void autoOrganizePalettes();
    int findPaletteLink(int start, int index) const;
    int previousPaletteGroup(int index) const;
    int nextPaletteGroup(int index) const;
    bool savePaletteFile(int index, const QString &path) const;
    static bool loadPaletteFile(const QString &path, QRGBPal *out);

    // --- used by the undo commands --------------------------------------------
    // Where the undo commands keep the images they can bring back: the one
    // given (shared by all stores of the program), or else one of the store's
    // own, made on first use.
    void setUndoCache(QSpriteCache *cache) { m_undoCache = cache; }
    QSpriteCache *undoCache();
    // Stored bytes of a sprite's own cache entry, lifted out without decoding.
    QByteArray storedBytes(int index) const;
    // Gives the sprite the cache entry `id` of its own cache (0: none), with
    // filter and size, dropping the entry it had; links to it take the size.
    // Info stays as it is.
    void adoptEntry(int index, quint32 id, quint16 filter, const QSpriteSize &size);
    // Swaps the cache handle of two sprites (hand-back after an undone removal).
    void swapCacheIds(int a, int b);
    // Palette indices of all sprites, and their restoration.
    QList<int> spritePaletteIndices() const;
    void setSpritePaletteIndices(const QList<int> &indices);
    // Ends a mutator: `modified` set, changed() emitted.
    void touch();
    // Tells the views that the text of row `index` may have changed.
    void rowChanged(int index);

    // The palette list as a whole, with the views reset around the change
    // (undo of palette edits); no undo of its own.
    void restorePalettes(const QPaletteList &palettes, const QList<int> &spritePalettes);

    // --- state ---------------------------------------------------------------
    // The file the store was read from or last saved to.
    QString fileName() const { return m_fileName; }
    void setFileName(const QString &fileName) { m_fileName = fileName; }
    // The version word of that file (or, for a file that was refused, what it
    // said): the version a save keeps unless told otherwise.
    quint32 version() const { return m_version; }
    void setVersion(quint32 version) { m_version = version; }
    // Cleared by a real save; set by every edit.
    void setModified(bool modified) { m_modified = modified; }
    // The sprite a script works on.
    quint32 index() const { return m_index; }
    void setIndex(quint32 index) { m_index = index; }
    // Where loads and saves report what they found; the project's issue list.
    QMessages *messages() const { return m_messages; }
    void setMessages(QMessages *messages) { m_messages = messages; }
    // Off while the store is being filled or an undo command replays.
    bool undoEnabled() const { return m_undoEnabled; }
    void setUndoEnabled(bool on) { m_undoEnabled = on; }
    // Empties the store; the file it belongs to stays its file.
    void clearContent();
    // A palette read from a file of the project: part of loading, so no undo
    // and no unsaved change. Returns its index.
    int addLoadedPalette(const QRGBPal &colors, int group, int number);
    // The same for a palette the store may hold already: its colours are replaced.
    int setLoadedPalette(const QRGBPal &colors, int group, int number);

    const QList<QSpriteItem *> &items() const { return m_sprites; }
    QSpriteCache &cache() { return m_cache; }
    const QSpriteCache &cache() const { return m_cache; }
    const QPaletteList &palettes() const { return m_palettes; }
    QUndoStack *undoStack() { return &m_undoStack; }
    const QUndoStack *undoStack() const { return &m_undoStack; }
    QRemapModel *remap() { return &m_remap; }
    QPaletteObject *paletteObject() { return &m_paletteObject; }

signals:
    void changed();
    void progress(uint pos, uint max, bool &allow);
    void orderMustBeChanged(QList<uint> sprites);
    void charPalette(QRGBPal *palette);
    // A file could not be read or written as a whole (bad links, a sprite that
    // can't be stored): the title and text for the user. The load or save has
    // returned false.
    void fileError(const QString &title, const QString &text);

private:
    // The file layer (sfffile.cpp) reads and writes the store as a whole.
    friend class Sff::SffReader;
    friend class Sff::SffPlan;
    friend class Sff::SffWriter;

    QRemapModel m_remap;
    bool m_undoEnabled = true;
    QMessages *m_messages = nullptr;
    QSpriteItemPool m_itemPool;
    QList<QSpriteItem *> m_sprites;
    QSpriteCache m_cache;
    QString m_fileName;
    quint32 m_version = QSffVersion::V201;
    quint32 m_index = 0;
    bool m_modified = false;
    QUndoStack m_undoStack;
    QPaletteObject m_paletteObject;
    QPaletteList m_palettes;
    QSpriteCache *m_undoCache = nullptr;
    std::unique_ptr<QSpriteCache> m_ownUndoCache;

    // Row changes with the model notifications; nothing else.
    void insertRecord(int index);
    void deleteRecord(int index);
    void moveRecord(int from, int to);
    // Runs a change of the palette list: the views are reset around it, and
    // with undo on, a snapshot command is pushed if the list or any sprite's
    // palette index changed. `change` returns whether `modified` is to be set.
    template <typename F> void changePalettes(const QString &text, F change);
    // Decoded own bytes of sprite `index` (no link followed); empty if none.
    QByteArray decodeOwn(int index) const;
    // Sprites whose link is `target`: they carry its size and format.
    void propagateSize(int target);
    static bool samePalettes(const QPaletteList &a, const QPaletteList &b);
    bool validIndex(int index) const { return index >= 0 && index < m_sprites.size(); }
};
