#pragma once

#include <QImage>
#include <QList>
#include <QUndoCommand>

#include "sprites/qpalettelist.h"
#include "sprites/qspriteitem.h"

class QSprites;

// Base of every sprite-store undo command. Commands are pushed after the store
// has already made the change, so the first redo() does nothing. While a
// command replays, the store's undoEnabled is cleared so that it records
// nothing.
class SpriteUndoCommand : public QUndoCommand
{
public:
    SpriteUndoCommand(QSprites *sprites, quint32 index, const QString &text = QString(),
                      QUndoCommand *parent = nullptr);

    void redo() override;
    virtual void doRedo() = 0;

    bool skipFirstRedo = true;
    QSprites *sprites = nullptr;
    quint32 index = 0;

protected:
    // Clears the store's undoEnabled for the lifetime of the guard.
    class Replay
    {
    public:
        explicit Replay(QSprites *sprites);
        ~Replay();
        Replay(const Replay &) = delete;
        Replay &operator=(const Replay &) = delete;

    private:
        QSprites *m_sprites;
        bool m_was;
    };
};

class SpriteMove : public SpriteUndoCommand
{
public:
    SpriteMove(QSprites *sprites, quint32 from, quint32 to);
    void undo() override;
    void doRedo() override;

    quint32 to = 0;
};

// Swaps the stored info with the sprite's.
class SpriteChangeInfo : public SpriteUndoCommand
{
public:
    SpriteChangeInfo(QSprites *sprites, quint32 index, const QSpriteInfo &info);
    void undo() override;
    void doRedo() override { undo(); }

    QSpriteInfo info;
};

// Holds one sprite image for undo in the process-wide undo cache. The bytes are
// the sprite's stored bytes, taken as they are (no decoding, no re-encoding),
// with the filter that reads them; an image that had no cache entry is held as
// "none" (undoId 0 and hasEntry false).
class SpriteChangeImage : public SpriteUndoCommand
{
public:
    // Holds the current stored image of sprite `index`.
    SpriteChangeImage(QSprites *sprites, quint32 index, const QString &text = QString());
    ~SpriteChangeImage() override;
    void undo() override;
    void doRedo() override { undo(); }

    quint32 undoId = 0;
    quint16 width = 0;
    quint16 height = 0;
    QImage::Format imageFormat = QImage::Format_Indexed8;
    quint16 filter = 0;
    bool hasEntry = false;

protected:
    // Puts the held image in place of the sprite's own one; the held image is
    // then the one that was there.
    void swapImage();
    // Takes the sprite's own stored image into the undo cache.
    void hold(int sprite);
    // Gives the held image to the sprite (the undo cache keeps its copy).
    void giveTo(int sprite) const;
};

// A sprite was inserted (add, insert, duplicate, paste). Undo removes the row;
// redo inserts it again with its info and image.
class SpriteInsert : public SpriteChangeImage
{
public:
    SpriteInsert(QSprites *sprites, quint32 index, const QString &text = QString());
    void undo() override;
    void doRedo() override;

    QSpriteInfo info;
};

// A sprite was removed. Besides the record, it remembers what the removal did
// to the links that showed this sprite's image (the heir that took the cache
// entry, and the other links it re-pointed), so that undo gives every record
// back exactly.
class SpriteRemove : public SpriteChangeImage
{
public:
    struct Relinked
    {
        quint32 position = 0;
        QSpriteInfo info;
        quint16 filter = 0;
        QSpriteSize size;
    };

    // Call before the row goes: `heir` is the position of the link that takes
    // the image (-1 for none), `relinked` the links whose record the removal
    // changes (heir included), with their records before the removal.
    SpriteRemove(QSprites *sprites, quint32 index, int heir, const QList<Relinked> &relinked);
    void undo() override;
    void doRedo() override;

    QSpriteInfo info;
    int heir = -1;
    QList<Relinked> relinked;
};

// Any change of the palette list (add, insert, colours, info, remove, merge,
// remove unused, moves): the list and the sprites' palette indices before and
// after. Palettes are small, so a snapshot is the simplest exact undo.
class PaletteChange : public SpriteUndoCommand
{
public:
    PaletteChange(QSprites *sprites, const QString &text, const QPaletteList &before,
                  const QList<int> &spritesBefore);
    void undo() override;
    void doRedo() override;

    QPaletteList before;
    QPaletteList after;
    QList<int> spritesBefore;
    QList<int> spritesAfter;
};
