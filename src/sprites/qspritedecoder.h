#pragma once

#include <QImage>
#include <QList>

#include <functional>

class QSprites;

// Decodes many sprites of a store at once, spread over every core: export,
// conversion, thumbnails and the check of a whole file. The store stays with
// the thread that owns it: that thread gathers the stored bytes and makes
// the images, the workers only read those bytes and fill those images.
//
// Memory: the sprites are decoded in batches of at most BatchBytes of
// pixels; a sprite that claims more than MaxSpriteBytes isn't decoded at all.
class QSpriteDecoder
{
public:
    enum Output {
        // What QSprites::image() gives: indexed sprites keep their indices
        // and get their palette as colour table; true colour as it is.
        AsShown,
        // Every sprite as ARGB32: indexed sprites through their palette
        // (grey levels where they have none).
        Rgba,
    };

    struct Result
    {
        int index = -1;
        // Null where the sprite shows nothing or wasn't decoded.
        QImage image;
        // False where the sprite's stored bytes (its own, or those of the
        // sprite it links to) can't be read or end before the last pixel,
        // and where its size is beyond any sprite's.
        bool intact = true;
    };

    static constexpr qsizetype BatchBytes = qsizetype(64) << 20;
    static constexpr qsizetype MaxSpriteBytes = qsizetype(256) << 20;

    explicit QSpriteDecoder(const QSprites &store, Output output = Rgba);

    // Decodes the sprites `indices` (every sprite when empty) and hands each
    // result to `take` on the calling thread, in the order asked. Returns
    // false if `take` stopped it by returning false.
    bool run(const QList<int> &indices, const std::function<bool(Result &)> &take) const;

    // Every sprite of `store` as ARGB32, null where it shows nothing.
    static QList<QImage> decodeAll(const QSprites &store);

    // Runs work(0) ... work(count - 1) on every core, the calling thread
    // included; returns when all are done.
    static void parallelFor(qsizetype count, const std::function<void(qsizetype)> &work);

private:
    const QSprites &m_store;
    Output m_output;
};
