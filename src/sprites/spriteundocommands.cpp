#include "sprites/spriteundocommands.h"

#include "sprites/qbfcachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/qsprites.h"

SpriteUndoCommand::SpriteUndoCommand(QSprites *s, quint32 i, const QString &text, QUndoCommand *parent)
    : QUndoCommand(text, parent), sprites(s), index(i)
{
}

void SpriteUndoCommand::redo()
{
    if (skipFirstRedo) {
        skipFirstRedo = false;
        return;
    }
    doRedo();
}

SpriteUndoCommand::Replay::Replay(QSprites *s) : m_sprites(s), m_was(s->undoEnabled())
{
    s->setUndoEnabled(false);
}

SpriteUndoCommand::Replay::~Replay()
{
    m_sprites->setUndoEnabled(m_was);
}

// --- move ----------------------------------------------------------------------

SpriteMove::SpriteMove(QSprites *s, quint32 from, quint32 t)
    : SpriteUndoCommand(s, from, QObject::tr("Move sprite")), to(t)
{
}

void SpriteMove::undo()
{
    Replay r(sprites);
    sprites->move(int(to), int(index));
}

void SpriteMove::doRedo()
{
    Replay r(sprites);
    sprites->move(int(index), int(to));
}

// --- info ----------------------------------------------------------------------

SpriteChangeInfo::SpriteChangeInfo(QSprites *s, quint32 i, const QSpriteInfo &old)
    : SpriteUndoCommand(s, i, QObject::tr("Change sprite")), info(old)
{
}

void SpriteChangeInfo::undo()
{
    QSpriteItem *it = sprites->item(int(index));
    if (!it)
        return;
    std::swap(it->info, info);
    sprites->rowChanged(int(index));
    sprites->touch();
}

// --- image ---------------------------------------------------------------------

SpriteChangeImage::SpriteChangeImage(QSprites *s, quint32 i, const QString &text)
    : SpriteUndoCommand(s, i, text)
{
    hold(int(i));
}

SpriteChangeImage::~SpriteChangeImage()
{
    if (undoId)
        sprites->undoCache()->remove(undoId);
}

void SpriteChangeImage::hold(int sprite)
{
    const QSpriteItem *it = sprites->item(sprite);
    QSpriteCache *c = sprites->undoCache();
    if (it) {
        filter = it->filter;
        width = it->width;
        height = it->height;
        imageFormat = it->imageFormat;
    }
    hasEntry = it && it->cacheId && sprites->cache().contains(it->cacheId);
    if (!hasEntry) {
        if (undoId)
            c->remove(undoId);
        undoId = 0;
        return;
    }
    // Stored bytes go across as they are; compressed entries stay compressed.
    if (undoId && c->replaceEntry(undoId, sprites->cache(), it->cacheId))
        return;
    undoId = c->copyEntry(sprites->cache(), it->cacheId);
}

void SpriteChangeImage::giveTo(int sprite) const
{
    const quint32 id = hasEntry ? sprites->cache().copyEntry(*sprites->undoCache(), undoId) : 0;
    sprites->adoptEntry(sprite, id, filter, QSpriteSize(width, height, imageFormat));
}

void SpriteChangeImage::swapImage()
{
    const int i = int(index);
    if (!sprites->item(i))
        return;
    // Take the held image out before holding the current one in its place.
    const quint32 id = hasEntry ? sprites->cache().copyEntry(*sprites->undoCache(), undoId) : 0;
    const quint16 f = filter;
    const QSpriteSize size(width, height, imageFormat);
    hold(i);
    sprites->adoptEntry(i, id, f, size);
}

void SpriteChangeImage::undo()
{
    Replay r(sprites);
    swapImage();
    sprites->touch();
}

// --- insert --------------------------------------------------------------------

SpriteInsert::SpriteInsert(QSprites *s, quint32 i, const QString &text)
    : SpriteChangeImage(s, i, text)
{
    if (const QSpriteItem *it = s->item(int(i)))
        info = it->info;
}

void SpriteInsert::undo()
{
    Replay r(sprites);
    sprites->remove(int(index));
}

void SpriteInsert::doRedo()
{
    Replay r(sprites);
    sprites->insert(int(index));
    if (QSpriteItem *it = sprites->item(int(index)))
        it->info = info;
    giveTo(int(index));
    sprites->touch();
}

// --- remove --------------------------------------------------------------------

SpriteRemove::SpriteRemove(QSprites *s, quint32 i, int h, const QList<Relinked> &links)
    : SpriteChangeImage(s, i, QObject::tr("Remove sprite")), heir(h), relinked(links)
{
    if (const QSpriteItem *it = s->item(int(i)))
        info = it->info;
}

void SpriteRemove::undo()
{
    Replay r(sprites);
    const int i = int(index);
    sprites->insert(i);
    if (QSpriteItem *it = sprites->item(i))
        it->info = info;
    giveTo(i);
    // The heir gives the cache entry back and is a link again.
    if (heir >= 0)
        sprites->swapCacheIds(i, heir);
    for (const Relinked &l : relinked)
        if (QSpriteItem *it = sprites->item(int(l.position))) {
            it->info = l.info;
            it->filter = l.filter;
            it->setSpriteSize(l.size);
        }
    sprites->touch();
}

void SpriteRemove::doRedo()
{
    Replay r(sprites);
    sprites->remove(int(index));
}

// --- palettes ------------------------------------------------------------------

PaletteChange::PaletteChange(QSprites *s, const QString &text, const QPaletteList &b,
                             const QList<int> &sb)
    : SpriteUndoCommand(s, 0, text), before(b), after(s->palettes()), spritesBefore(sb),
      spritesAfter(s->spritePaletteIndices())
{
}

void PaletteChange::undo()
{
    Replay r(sprites);
    sprites->restorePalettes(before, spritesBefore);
    sprites->touch();
}

void PaletteChange::doRedo()
{
    Replay r(sprites);
    sprites->restorePalettes(after, spritesAfter);
    sprites->touch();
}
