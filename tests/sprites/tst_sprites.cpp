#include <QtTest>

#include <QClipboard>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QSet>

#include "sprites/qbfcachefilter.h"
#include "sprites/qlz5cachefilter.h"
#include "sprites/qspritecache.h"
#include "sprites/qsprites.h"

namespace {

// An indexed image with a frame of colour 0 around random content below 32,
// so that crop has something to cut and LZ5 can hold it.
QImage pattern(int w, int h, quint32 seed, int border = 1)
{
    QRandomGenerator rng(seed);
    QImage img(w, h, QImage::Format_Indexed8);
    QList<QRgb> table;
    for (int k = 0; k < 256; ++k)
        table.append(qRgb(k, 255 - k, (k * 7) & 255));
    img.setColorTable(table);
    img.fill(0);
    for (int y = border; y < h - border; ++y)
        for (int x = border; x < w - border; ++x)
            img.scanLine(y)[x] = uchar(1 + rng.bounded(31));
    return img;
}

QRGBPal palette(quint32 seed)
{
    QRGBPal p;
    QRandomGenerator rng(seed);
    for (int k = 0; k < 256; ++k)
        p[k] = QRGBColor{quint8(rng.bounded(256)), quint8(rng.bounded(256)), quint8(rng.bounded(256)), 255};
    return p;
}

// Appends a sprite owning `img`, stored as the file layer stores LZ5 data
// when `lz5` is set, else raw.
int addOwner(QSprites &s, const QImage &img, quint16 id, quint16 pal = 0, bool lz5 = false)
{
    s.add();
    const int i = s.count() - 1;
    QSpriteItem *it = s.items()[i];
    if (lz5) {
        it->cacheId = s.cache().add(QLZ5CacheFilter::encode(QSpriteSize::packedPixels(img), true), false);
        it->filter = QBFCacheFilter::LZ5;
    } else {
        it->cacheId = s.cache().add(QSpriteSize::rawBytes(img), true);
    }
    it->setSpriteSize(QSpriteSize::of(img));
    it->info.hasImage = true;
    it->info.group = 5;
    it->info.number = id;
    it->info.palette = pal;
    return i;
}

int addLink(QSprites &s, int target, quint16 id)
{
    s.add();
    const int i = s.count() - 1;
    QSpriteItem *it = s.items()[i];
    it->info.link = quint16(target);
    it->info.group = 5;
    it->info.number = id;
    it->setSpriteSize(s.items()[target]->spriteSize());
    return i;
}

// What an image shows, comparable (QImage's own comparison can't be used on
// indexed images without a colour table).
struct ImageKey
{
    QSize size;
    int format = 0;
    QList<QRgb> table;
    QByteArray bits;
    bool operator==(const ImageKey &o) const
    {
        return size == o.size && format == o.format && table == o.table && bits == o.bits;
    }
};

ImageKey key(const QImage &img)
{
    return {img.size(), int(img.format()), img.colorTable(),
            img.isNull() ? QByteArray() : QByteArray(reinterpret_cast<const char *>(img.constBits()), img.sizeInBytes())};
}

struct SpriteState
{
    QSpriteInfo info;
    QSpriteSize size;
    quint16 filter;
    bool ownsEntry;
    ImageKey image;
    bool operator==(const SpriteState &o) const
    {
        return info == o.info && size == o.size && filter == o.filter && ownsEntry == o.ownsEntry
            && image == o.image;
    }
};

struct StoreState
{
    QList<SpriteState> sprites;
    QList<QPaletteInfo> paletteInfo;
    QList<QRGBPal> paletteColors;
    bool operator==(const StoreState &o) const
    {
        return sprites == o.sprites && paletteInfo == o.paletteInfo && paletteColors == o.paletteColors;
    }
};

StoreState snapshot(const QSprites &s)
{
    StoreState st;
    for (int k = 0; k < s.count(); ++k) {
        const QSpriteItem *it = s.items()[k];
        st.sprites.append({it->info, it->spriteSize(), it->filter, it->cacheId != 0, key(s.image(k))});
    }
    for (int k = 0; k < s.paletteCount(); ++k) {
        st.paletteInfo.append(s.paletteInfo(k));
        st.paletteColors.append(s.palettes().item(k)->colors);
    }
    return st;
}

// Stores where every link points backwards, straight at an owner, with the
// owner's size; owners own an entry; palette indices lie inside the list.
// Sprites in `exempt` (by number) are the stale links a removal leaves.
QString invariantBroken(const QSprites &s, const QSet<quint16> &exempt)
{
    for (int k = 0; k < s.count(); ++k) {
        const QSpriteItem *it = s.items()[k];
        const QString where = QStringLiteral("sprite %1 (id %2): ").arg(k).arg(it->info.number);
        if (s.paletteCount() ? it->info.palette >= s.paletteCount() : it->info.palette != 0)
            return where + QStringLiteral("palette %1 of %2").arg(it->info.palette).arg(s.paletteCount());
        if (it->info.hasImage) {
            if (!it->cacheId || !s.cache().contains(it->cacheId))
                return where + QStringLiteral("owner without entry");
            continue;
        }
        if (it->cacheId)
            return where + QStringLiteral("link with an entry");
        if (exempt.contains(it->info.number))
            continue;
        if (it->info.link >= k)
            return where + QStringLiteral("link %1 not backwards").arg(it->info.link);
        const QSpriteItem *t = s.items()[it->info.link];
        if (!t->info.hasImage)
            return where + QStringLiteral("link %1 to a link").arg(it->info.link);
        // A stale link that took an image over keeps its own stale size.
        if (!exempt.contains(t->info.number) && !(t->spriteSize() == it->spriteSize()))
            return where + QStringLiteral("size differs from target");
    }
    return QString();
}

QHash<quint16, ImageKey> imagesById(const QSprites &s)
{
    QHash<quint16, ImageKey> out;
    for (int k = 0; k < s.count(); ++k)
        out.insert(s.items()[k]->info.number, key(s.image(k)));
    return out;
}

// A store with palettes (group 1, duplicates and a palette link) and sprites,
// a third of them links, some stored as LZ5. Built without undo.
void buildStore(QSprites &s, quint32 seed, int n)
{
    QRandomGenerator rng(seed);
    s.setUndoEnabled(false);
    s.addPalette(palette(1), false, 1, 1);
    s.addPalette(palette(2), false, 1, 2);
    s.addPalette(palette(3), false, 0, 0);
    s.addPalette(palette(1), false, 0, 1); // duplicate of 1,1
    s.addPalette(palette(4), false, 0, 2);
    s.addPalette(palette(9), false, 0, 3);
    s.setPaletteInfo(5, QPaletteInfo{false, 0, 3, 2, 256}); // a link to palette 2
    for (int k = 0; k < n; ++k) {
        const quint16 id = quint16(k + 1);
        const quint16 pal = quint16(rng.bounded(s.paletteCount()));
        if (k > 0 && rng.bounded(3) == 0) {
            int t = int(rng.bounded(k));
            t = s.rootOf(t);
            addLink(s, t, id);
            s.items()[k]->info.palette = pal;
        } else {
            addOwner(s, pattern(4 + int(rng.bounded(12)), 3 + int(rng.bounded(9)), seed + k), id, pal,
                     rng.bounded(2) == 0);
        }
    }
    s.setUndoEnabled(true);
    s.undoStack()->clear();
    s.setModified(false);
}

} // namespace

class TestSprites : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QBFCacheFilter::createFilters();
    }

    void modelAndLookups();
    void movesHandImagesOver();
    void removalHeirsAndQuirk();
    void randomEditsUndoToOriginal_data();
    void randomEditsUndoToOriginal();
    void autoOrganizeOrder();
    void cropAndChangeImage();
    void groupsAndDuplicates();
    void palettes();
    void clipboard();
    void structuralEditsNeverDecode();
    void badInputIsHarmless();
};

void TestSprites::modelAndLookups()
{
    QSprites s;
    QCOMPARE(s.version(), QSffVersion::V201);
    QVERIFY(s.undoEnabled());
    QVERIFY(!s.isModified());
    QSignalSpy changed(&s, &QSprites::changed);
    const QImage a = pattern(8, 6, 1);
    addOwner(s, a, 1);
    addOwner(s, pattern(5, 7, 2), 2);
    s.items()[1]->info.group = 9;
    s.items()[1]->info.x = 10;
    s.items()[1]->info.y = -3;
    addLink(s, 0, 3);
    s.items()[2]->info.group = 9;
    addOwner(s, pattern(3, 3, 3), 4);
    s.items()[3]->info.group = 11;
    QVERIFY(s.isModified());
    QCOMPARE(changed.count(), 4);

    QAbstractItemModel *m = &s;
    QCOMPARE(m->rowCount(), 4);
    QCOMPARE(m->data(m->index(1, 0)).toString(), QStringLiteral("9, 2"));
    QVERIFY(!m->data(m->index(1, 0), Qt::DecorationRole).isValid());
    QVERIFY(!m->data(m->index(7, 0)).isValid());

    QCOMPARE(s.findSprite(0, 9, 2), 1);
    QCOMPARE(s.findSprite(2, 9, 2), -1);
    QCOMPARE(s.spriteSize(1), quint32(5 | 7 << 16));
    QCOMPARE(s.spriteSize(9), 0u);
    QCOMPARE(s.previousGroupStart(3), 1);
    QCOMPARE(s.previousGroupStart(2), 0);
    QCOMPARE(s.previousGroupStart(0), 0);
    QCOMPARE(s.nextGroupStart(1), 3);
    QCOMPARE(s.nextGroupStart(3), 0);
    QCOMPARE(s.rootOf(2), 0);
    QCOMPARE(s.findLinkTo(0, 0), 2);
    QCOMPARE(s.findLinkTo(3, 0), -1);

    QPoint axis, size;
    s.bounds(axis, size);
    QCOMPARE(axis, QPoint(10, 0));
    QCOMPARE(size, QPoint(8, 10)); // 8 - 0 from sprite 0; 7 - (-3) from sprite 1

    // The link shows its target's pixels; without palettes there is no table.
    QCOMPARE(s.imageData(2), s.imageData(0));
    QVERIFY(s.image(2).colorTable().isEmpty());
    QCOMPARE(s.image(2).constScanLine(2)[3], a.constScanLine(2)[3]);

    // Palettes and the remap table: the table sends 0,0 to 1,1.
    s.addPalette(palette(5), false, 0, 0);
    s.addPalette(palette(6), false, 1, 1);
    QCOMPARE(s.image(0).colorTable(), palette(5).toColorTable());
    QCOMPARE(s.image(0, 1).colorTable(), palette(6).toColorTable());
    s.remap()->addRow();
    s.remap()->setRow(0, 0, 0, 1, 1);
    QCOMPARE(s.image(0).colorTable(), palette(6).toColorTable());
    s.remap()->clear();
    QVERIFY(s.image(0, 40).colorTable().isEmpty());

    s.clear();
    QCOMPARE(s.count(), 0);
    QCOMPARE(s.paletteCount(), 0);
    QVERIFY(!s.isModified());
    QCOMPARE(s.cache().count(), 0);
}

void TestSprites::movesHandImagesOver()
{
    QSprites s;
    s.setUndoEnabled(false);
    const QImage a = pattern(6, 6, 10), b = pattern(7, 5, 11);
    addOwner(s, a, 1);     // 0: A
    addLink(s, 0, 2);      // 1: -> A
    addOwner(s, b, 3);     // 2: B
    addLink(s, 0, 4);      // 3: -> A
    addLink(s, 2, 5);      // 4: -> B
    s.setUndoEnabled(true);
    const StoreState before = snapshot(s);
    const auto images = imagesById(s);
    const quint32 entryA = s.items()[0]->cacheId;

    // The owner moved past its first link: that link takes the image, the
    // moved sprite and the other link point at it.
    s.move(0, 2);
    QCOMPARE(s.items()[0]->info.number, quint16(2));
    QVERIFY(s.items()[0]->info.hasImage);
    QCOMPARE(s.items()[0]->cacheId, entryA);
    QCOMPARE(s.items()[2]->info.number, quint16(1));
    QVERIFY(!s.items()[2]->info.hasImage);
    QCOMPARE(s.items()[2]->info.link, quint16(0));
    QCOMPARE(s.items()[3]->info.link, quint16(0));
    QCOMPARE(s.items()[4]->info.link, quint16(1));
    QVERIFY(invariantBroken(s, {}).isEmpty());
    QVERIFY(imagesById(s) == images);

    // A link moved in front of its target takes the image the other way.
    s.move(4, 0); // id 5 -> B
    QVERIFY(s.items()[0]->info.hasImage);
    QCOMPARE(s.items()[0]->info.number, quint16(5));
    QVERIFY(!s.items()[2]->info.hasImage); // B, now a link to 0
    QCOMPARE(s.items()[2]->info.link, quint16(0));
    QVERIFY(invariantBroken(s, {}).isEmpty());
    QVERIFY(imagesById(s) == images);

    QCOMPARE(s.undoStack()->count(), 2);
    s.undoStack()->undo();
    s.undoStack()->undo();
    QCOMPARE(snapshot(s), before);
    QCOMPARE(s.items()[0]->cacheId, entryA);
    s.move(1, 1); // ignored
    s.move(-1, 2);
    s.move(0, 5);
    QCOMPARE(s.undoStack()->count(), 2);
    QCOMPARE(s.undoStack()->index(), 0);
}

void TestSprites::removalHeirsAndQuirk()
{
    QSprites s;
    s.setUndoEnabled(false);
    addOwner(s, pattern(6, 6, 20), 1, 0, true); // 0: A (LZ5)
    addOwner(s, pattern(5, 5, 21), 2);          // 1: B
    addLink(s, 0, 3);                           // 2: heir of A
    addLink(s, 0, 4);                           // 3: -> A
    addOwner(s, pattern(4, 4, 22), 5);          // 4: C
    addLink(s, 0, 6);                           // 5: -> A
    addLink(s, 4, 7);                           // 6: -> C
    s.setUndoEnabled(true);
    const StoreState before = snapshot(s);
    const QImage imageA = s.image(0);
    const quint32 entryA = s.items()[0]->cacheId;
    const int entries = s.cache().count();

    s.remove(0);
    QCOMPARE(s.count(), 6);
    QCOMPARE(s.cache().count(), entries); // the entry went to the heir
    QCOMPARE(s.items()[1]->info.number, quint16(3));
    QVERIFY(s.items()[1]->info.hasImage);
    QCOMPARE(s.items()[1]->cacheId, entryA);
    QCOMPARE(s.items()[1]->filter, quint16(QBFCacheFilter::LZ5));
    QVERIFY(key(s.image(1)) == key(imageA));
    // Behaviour of record: the other links get the heir's position from
    // before the row went (2), one place behind the heir (now 1).
    QCOMPARE(s.items()[2]->info.link, quint16(2));
    QCOMPARE(s.items()[4]->info.link, quint16(2));
    QCOMPARE(s.items()[5]->info.link, quint16(3)); // -> C, simply shifted
    QVERIFY(s.image(2).isNull());                  // linked to itself

    // Undo gives everything back, the heir included; redo repeats it.
    const StoreState after = snapshot(s);
    s.undoStack()->undo();
    QCOMPARE(snapshot(s), before);
    QCOMPARE(s.items()[0]->cacheId, entryA);
    s.undoStack()->redo();
    QCOMPARE(snapshot(s), after);

    // Removing an owner without links drops its entry; undo restores the
    // image from the undo cache.
    const QImage imageC = s.image(3);
    const int removed = s.cache().count();
    s.setUndoEnabled(false);
    s.remove(5);
    s.setUndoEnabled(true);
    s.remove(3);
    QCOMPARE(s.cache().count(), removed - 1);
    s.undoStack()->undo();
    QVERIFY(key(s.image(3)) == key(imageC));
    QVERIFY(s.items()[3]->info.hasImage);
    s.remove(99);
}

void TestSprites::randomEditsUndoToOriginal_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u})
        QTest::newRow(qPrintable(QString::number(seed))) << seed;
}

void TestSprites::randomEditsUndoToOriginal()
{
    QFETCH(quint32, seed);
    QSprites s;
    buildStore(s, seed, 24);
    QRandomGenerator rng(seed * 7919);
    const StoreState original = snapshot(s);
    QSet<quint16> exempt;
    quint16 nextId = 1000;
    QVERIFY2(invariantBroken(s, exempt).isEmpty(), qPrintable(invariantBroken(s, exempt)));

    for (int step = 0; step < 80; ++step) {
        const int n = s.count();
        const int op = int(rng.bounded(9));
        QString what;
        if (op == 0 || n < 4) {
            const int at = int(rng.bounded(n + 1));
            what = QStringLiteral("insert %1").arg(at);
            s.undoStack()->beginMacro(what);
            s.insert(at);
            s.changeImage(at, pattern(5, 4, seed + step), 255, false, 0, 0);
            QSpriteInfo info = s.items()[at]->info;
            info.number = nextId++;
            info.palette = quint16(rng.bounded(std::max(1, s.paletteCount())));
            s.setInfo(at, info);
            s.undoStack()->endMacro();
        } else if (op == 1 || op == 2) {
            const int at = int(rng.bounded(n));
            what = QStringLiteral("remove %1").arg(at);
            QList<int> links;
            for (int k = at + 1; k < n; ++k)
                if (!s.items()[k]->info.hasImage && s.items()[k]->info.link == at)
                    links.append(k);
            const bool owner = s.items()[at]->info.hasImage;
            const QByteArray shown = s.imageData(at);
            s.remove(at);
            if (owner && !links.isEmpty()) {
                QCOMPARE(s.imageData(links[0] - 1), shown);
                for (int k = 1; k < links.size(); ++k) {
                    QCOMPARE(s.items()[links[k] - 1]->info.link, quint16(links[0]));
                    exempt.insert(s.items()[links[k] - 1]->info.number);
                }
            }
        } else if (op == 3 || op == 4) {
            const int from = int(rng.bounded(n)), to = int(rng.bounded(n));
            what = QStringLiteral("move %1 %2").arg(from).arg(to);
            const auto images = imagesById(s);
            s.move(from, to);
            const auto moved = imagesById(s);
            for (auto it = images.cbegin(); it != images.cend(); ++it)
                if (!exempt.contains(it.key()))
                    QVERIFY2(moved.value(it.key()) == it.value(), qPrintable(what));
        } else if (op == 5) {
            const int at = int(rng.bounded(n));
            const bool copy = rng.bounded(2);
            what = QStringLiteral("duplicate %1 %2").arg(at).arg(copy);
            const quint16 id = nextId++;
            if (exempt.contains(s.items()[at]->info.number) && !copy)
                exempt.insert(id);
            s.undoStack()->beginMacro(what);
            s.duplicate(at, copy);
            QSpriteInfo info = s.items()[at + 1]->info;
            info.number = id;
            s.setInfo(at + 1, info);
            s.undoStack()->endMacro();
            if (!exempt.contains(id))
                QVERIFY2(key(s.image(at + 1)) == key(s.image(at)), qPrintable(what));
        } else if (op == 6) {
            const int at = int(rng.bounded(n));
            what = QStringLiteral("crop %1").arg(at);
            s.crop(at);
        } else if (op == 7) {
            if (s.paletteCount() > 1) {
                const int at = int(rng.bounded(s.paletteCount()));
                what = QStringLiteral("remove palette %1").arg(at);
                s.removePalette(at);
            }
        } else {
            what = QStringLiteral("merge palettes");
            if (rng.bounded(2))
                s.mergeDuplicates();
            else
                s.removeUnused();
        }
        const QString broken = invariantBroken(s, exempt);
        QVERIFY2(broken.isEmpty(), qPrintable(QStringLiteral("step %1, %2: %3").arg(step).arg(what, broken)));
    }

    const StoreState final = snapshot(s);
    while (s.undoStack()->canUndo())
        s.undoStack()->undo();
    QVERIFY(snapshot(s) == original);
    while (s.undoStack()->canRedo())
        s.undoStack()->redo();
    QVERIFY(snapshot(s) == final);
    s.undoStack()->setIndex(0);
    QVERIFY(snapshot(s) == original);
}

void TestSprites::autoOrganizeOrder()
{
    QSprites s;
    s.setUndoEnabled(false);
    s.addPalette(palette(1), false, 0, 0); // 0
    s.addPalette(palette(2), false, 1, 1); // 1: the character's group
    s.addPalette(palette(3), false, 2, 0); // 2
    const QImage img = pattern(3, 3, 1);
    struct Spec { quint16 group, number, pal; };
    const QList<Spec> specs = {{20, 0, 2}, {9000, 1, 0}, {0, 0, 1}, {7, 3, 0},
                               {9000, 0, 2}, {5, 1, 1}, {5, 0, 1}, {7, 3, 0}, {3, 9, 2}};
    quint16 id = 0;
    for (const Spec &sp : specs) {
        addOwner(s, img, id++);
        s.items().last()->info.group = sp.group;
        s.items().last()->info.number = sp.number;
        s.items().last()->info.flags = id; // to tell the two 7,3 apart
        s.items().last()->info.palette = sp.pal;
    }
    addLink(s, 0, 0);
    s.items().last()->info.group = 9000;
    s.items().last()->info.number = 2;
    s.items().last()->info.flags = 99;
    s.setUndoEnabled(true);
    const StoreState before = snapshot(s);

    s.autoOrganize();
    QStringList order;
    for (const QSpriteItem *it : std::as_const(s.items()))
        order << QStringLiteral("%1,%2/%3").arg(it->info.group).arg(it->info.number).arg(it->info.flags);
    // Portraits by number, then palette group 1 by group and number, then by
    // palette index; equal keys keep their order.
    QCOMPARE(order.join(' '), QStringLiteral("9000,0/5 9000,1/2 9000,2/99 0,0/3 5,0/7 5,1/6 "
                                             "7,3/4 7,3/8 3,9/9 20,0/1"));
    QVERIFY(invariantBroken(s, {}).isEmpty());
    QCOMPARE(s.undoStack()->count(), 1);
    QCOMPARE(s.undoStack()->text(0), QStringLiteral("autoOrganize"));
    s.undoStack()->undo();
    QVERIFY(snapshot(s) == before);

    // Already in order: nothing is recorded.
    s.undoStack()->redo();
    const int depth = s.undoStack()->count();
    s.autoOrganize();
    QCOMPARE(s.undoStack()->count(), depth);
}

void TestSprites::cropAndChangeImage()
{
    QSprites s;
    s.setUndoEnabled(false);
    QImage framed = pattern(10, 8, 30, 0);
    framed.fill(0);
    framed.scanLine(2)[3] = 7;
    framed.scanLine(5)[6] = 9;
    addOwner(s, framed, 1);
    s.items()[0]->info.x = 5;
    s.items()[0]->info.y = 7;
    addLink(s, 0, 2);
    s.items()[1]->info.x = 1;
    QImage blank = pattern(4, 4, 31);
    blank.fill(0);
    addOwner(s, blank, 3);
    s.setUndoEnabled(true);
    const StoreState before = snapshot(s);

    s.crop(2); // all transparent: nothing
    s.crop(1); // a link: nothing
    QCOMPARE(s.undoStack()->count(), 0);
    s.crop(0);
    QCOMPARE(s.spriteSize(0), quint32(4 | 4 << 16));
    QCOMPARE(s.items()[0]->info.x, qint16(2));
    QCOMPARE(s.items()[0]->info.y, qint16(5));
    QCOMPARE(s.spriteSize(1), quint32(4 | 4 << 16));
    QCOMPARE(s.items()[1]->info.x, qint16(-2));
    QCOMPARE(s.image(0).pixelIndex(0, 0), 7);
    QCOMPARE(s.image(1).pixelIndex(3, 3), 9);
    QCOMPARE(s.undoStack()->text(0), QStringLiteral("crop"));
    s.crop(0); // already tight
    QCOMPARE(s.undoStack()->count(), 1);
    s.undoStack()->undo();
    QVERIFY(snapshot(s) == before);

    // A 32-bit crop compares with the corner pixel.
    QImage rgb(6, 6, QImage::Format_RGB32);
    rgb.fill(qRgb(1, 2, 3));
    rgb.setPixel(4, 1, qRgb(200, 0, 0));
    QVERIFY(s.changeImage(2, rgb, 255, false, 0, 0));
    s.crop(2);
    QCOMPARE(s.spriteSize(2), quint32(1 | 1 << 16));

    // Palette mode 0 adds the image's table once (entry 0 transparent) and
    // reuses it for an identical one.
    QImage indexed = pattern(4, 3, 32);
    QVERIFY(s.changeImage(1, indexed, 0, false, 0, 0));
    QVERIFY(s.items()[1]->info.hasImage);
    QCOMPARE(s.paletteCount(), 1);
    QCOMPARE(s.paletteColors(0)->colors[0].a, quint8(0));
    QVERIFY(s.changeImage(2, indexed, 0, false, 0, 0));
    QCOMPARE(s.paletteCount(), 1);
    QCOMPARE(s.items()[2]->info.palette, quint16(0));
    // Mode 0 with a 32-bit image: palette 0.
    s.addPalette(palette(40), false, 3, 4);
    s.items()[2]->info.palette = 1;
    QVERIFY(s.changeImage(2, rgb, 0, false, 0, 0));
    QCOMPARE(s.items()[2]->info.palette, quint16(0));
    // Mode 2 takes palette 3,4 as it is; mode 1 adapts the pixels to it.
    QVERIFY(s.changeImage(2, indexed, 2, false, 3, 4));
    QCOMPARE(s.items()[2]->info.palette, quint16(1));
    QImage red(2, 1, QImage::Format_RGB32);
    const QRGBColor c = palette(40)[77];
    red.fill(qRgb(c.r, c.g, c.b));
    QVERIFY(s.changeImage(2, red, 1, false, 3, 4));
    QCOMPARE(s.image(2).format(), QImage::Format_Indexed8);
    QCOMPARE(s.image(2).pixelIndex(1, 0), 77);
    // Invert: pixel p becomes 255 - p and the table is reversed.
    QVERIFY(s.changeImage(2, indexed, 255, true, 0, 0));
    QCOMPARE(s.image(2).pixelIndex(1, 1), 255 - indexed.pixelIndex(1, 1));

    // Undo walks all of it back to the first state.
    s.undoStack()->setIndex(0);
    QVERIFY(snapshot(s) == before);
    QVERIFY(!s.changeImage(9, indexed, 0, false, 0, 0));
    QVERIFY(!s.changeImage(0, QImage(), 0, false, 0, 0));
}

void TestSprites::groupsAndDuplicates()
{
    QSprites s;
    buildStore(s, 77, 12);
    for (int k = 0; k < s.count(); ++k)
        s.items()[k]->info.group = quint16(k < 6 ? 3 : 4);
    const StoreState before = snapshot(s);

    s.renameGroup(3, 8, false, 2, 4); // numbers 2..4
    QCOMPARE(s.findSprite(0, 8, 2), 1);
    QCOMPARE(s.findSprite(0, 8, 5), -1);
    QCOMPARE(s.findSprite(0, 3, 1), 0);
    QCOMPARE(s.undoStack()->count(), 1);
    QCOMPARE(s.undoStack()->text(0), QStringLiteral("renameGroup"));
    s.removeGroup(4, true, 0, 0);
    QCOMPARE(s.count(), 6);
    QVERIFY(invariantBroken(s, {}).isEmpty());
    QCOMPARE(s.undoStack()->text(1), QStringLiteral("removeGroup"));
    s.undoStack()->undo();
    s.undoStack()->undo();
    QVERIFY(snapshot(s) == before);

    // Duplicates: a copy owns its own entry with the same stored bytes; a
    // link points at the source's target.
    s.duplicate(0, true);
    QVERIFY(s.items()[1]->info.hasImage);
    QVERIFY(s.items()[1]->cacheId != s.items()[0]->cacheId);
    QVERIFY(s.cache().same(s.items()[0]->cacheId, s.items()[1]->cacheId));
    QVERIFY(key(s.image(1)) == key(s.image(0)));
    int l = -1;
    for (int k = 0; k < s.count() && l < 0; ++k)
        if (!s.items()[k]->info.hasImage)
            l = k;
    QVERIFY(l > 0);
    s.duplicate(l, false);
    QVERIFY(!s.items()[l + 1]->info.hasImage);
    QCOMPARE(s.items()[l + 1]->info.link, s.items()[l]->info.link);
    s.duplicate(l, true);
    QVERIFY(s.items()[l + 1]->info.hasImage);
    QVERIFY(key(s.image(l + 1)) == key(s.image(l)));
    QVERIFY(invariantBroken(s, {}).isEmpty());
    s.undoStack()->setIndex(0);
    QVERIFY(snapshot(s) == before);

    // flattenLinks repairs a chain, with undo.
    s.items()[4]->info.hasImage = false;
    s.items()[4]->info.link = 0;
    s.cache().remove(s.items()[4]->cacheId);
    s.items()[4]->cacheId = 0;
    s.items()[6]->info.hasImage = false;
    s.items()[6]->info.link = 4;
    s.cache().remove(s.items()[6]->cacheId);
    s.items()[6]->cacheId = 0;
    s.flattenLinks();
    QCOMPARE(s.items()[6]->info.link, quint16(0));
    s.undoStack()->undo();
    QCOMPARE(s.items()[6]->info.link, quint16(4));
}

void TestSprites::palettes()
{
    QSprites s;
    QPaletteObject &po = *s.paletteObject();
    QCOMPARE(s.addPalette(palette(1), true, 1, 1), 0);
    QCOMPARE(s.addPalette(palette(2), true, 1, -1), 1);
    QCOMPARE(s.paletteInfo(1).number, qint16(2));
    QCOMPARE(s.addPalette(palette(1), true, 4, 4), 0); // deduped
    QCOMPARE(s.paletteCount(), 2);
    QCOMPARE(po.rowCount(), 2);
    QCOMPARE(po.data(po.index(1, 0)).toString(), QStringLiteral("1, 2"));
    QCOMPARE(s.addPalette(palette(3), true, 0, -1), 2);
    QCOMPARE(s.paletteInfo(2).number, qint16(0));
    s.setUndoEnabled(false);
    addOwner(s, pattern(3, 3, 1), 1, 0);
    addOwner(s, pattern(3, 3, 2), 2, 1);
    addOwner(s, pattern(3, 3, 3), 3, 2);
    s.setUndoEnabled(true);
    s.undoStack()->clear();
    const StoreState before = snapshot(s);

    QCOMPARE(s.insertPalette(1, palette(4), false, 0, 9), 1);
    QCOMPARE(s.items()[0]->info.palette, quint16(0));
    QCOMPARE(s.items()[1]->info.palette, quint16(2));
    QCOMPARE(s.items()[2]->info.palette, quint16(3));
    s.removePalette(0); // sprites of palette 0 fall back to 0, the rest move down
    QCOMPARE(s.items()[0]->info.palette, quint16(0));
    QCOMPARE(s.items()[1]->info.palette, quint16(1));
    QCOMPARE(s.image(1).colorTable(), palette(2).toColorTable());
    QSpriteInfo info = s.items()[0]->info;
    info.palette = 2;
    s.setInfo(0, info);
    s.removeUnused(); // 0,9 goes; 1,2 is the character's and stays
    QCOMPARE(s.paletteCount(), 2);
    QCOMPARE(s.paletteInfo(0).group, qint16(1));
    QCOMPARE(s.image(2).colorTable(), palette(3).toColorTable());

    // Moves keep every sprite on its colours; setPaletteInfo writes the block.
    po.move(1, 0);
    QCOMPARE(s.image(2).colorTable(), palette(3).toColorTable());
    QCOMPARE(s.image(1).colorTable(), palette(2).toColorTable());
    s.setPaletteInfo(0, 1 | (7u << 16), 3, 32);
    QCOMPARE(s.paletteInfo(0).group, qint16(7));
    QCOMPARE(s.paletteInfo(0).number, qint16(3));
    QCOMPARE(s.paletteInfo(0).colorCount, quint16(32));
    po.autoOrganize();
    QCOMPARE(s.paletteInfo(0).group, qint16(1));
    QCOMPARE(s.image(2).colorTable(), palette(3).toColorTable());

    // Equal colours merge into the first; the sprites follow.
    s.addPalette(palette(3), false, 9, 9);
    info = s.items()[0]->info;
    info.palette = 2;
    s.setInfo(0, info);
    s.mergeDuplicates();
    QCOMPARE(s.paletteCount(), 2);
    QCOMPARE(s.image(0).colorTable(), palette(3).toColorTable());

    QRGBPal out;
    s.spritePalette(1, &out);
    QCOMPARE(out, palette(2));
    s.setPaletteColors(0, palette(8));
    QCOMPARE(*s.paletteColors(0), palette(8));

    QTemporaryDir dir;
    const QString act = dir.filePath(QStringLiteral("p.act"));
    QVERIFY(s.savePaletteFile(0, act));
    QRGBPal back;
    QVERIFY(QSprites::loadPaletteFile(act, &back));
    QCOMPARE(back[17].r, palette(8)[17].r);
    QVERIFY(!s.savePaletteFile(9, dir.filePath(QStringLiteral("q.act"))));

    s.undoStack()->setIndex(0);
    QVERIFY(snapshot(s) == before);
}

void TestSprites::clipboard()
{
    QSprites s;
    QRGBPal own = palette(1);
    own[0].a = 0; // colour 0 is the transparent one
    s.addPalette(own, false, 0, 0);
    s.setUndoEnabled(false);
    addOwner(s, pattern(6, 5, 50), 12);
    s.items()[0]->info.x = -4;
    s.items()[0]->info.y = 33;
    s.items()[0]->info.flags = 1;
    s.setUndoEnabled(true);
    s.undoStack()->clear();
    s.copy(0);
    s.paste(1);
    QCOMPARE(s.count(), 2);
    QCOMPARE(s.items()[1]->info.group, quint16(5));
    QCOMPARE(s.items()[1]->info.number, quint16(12));
    QCOMPARE(s.items()[1]->info.x, qint16(-4));
    QCOMPARE(s.items()[1]->info.y, qint16(33));
    QCOMPARE(s.items()[1]->info.flags, quint16(1));
    QCOMPARE(s.paletteCount(), 1); // its table is the palette it came with
    QCOMPARE(s.image(1).constScanLine(2)[2], s.image(0).constScanLine(2)[2]);
    QCOMPARE(s.undoStack()->count(), 1);
    QCOMPARE(s.undoStack()->text(0), QStringLiteral("paste"));

    // An image from elsewhere has no tags: group 0, number 0, axis 0, 0.
    QImage plain(3, 2, QImage::Format_RGB32);
    plain.fill(Qt::green);
    QGuiApplication::clipboard()->setImage(plain);
    s.paste(0);
    QCOMPARE(s.items()[0]->info.group, quint16(0));
    QCOMPARE(s.items()[0]->info.x, qint16(0));
    QCOMPARE(s.image(0).pixel(1, 1), plain.pixel(1, 1));
    s.undoStack()->setIndex(0);
    QCOMPARE(s.count(), 1);
    QGuiApplication::clipboard()->clear();
    s.paste(0);
    QCOMPARE(s.count(), 1);
}

void TestSprites::structuralEditsNeverDecode()
{
    QSprites s;
    buildStore(s, 99, 60);
    for (int k = 0; k < s.count(); k += 5)
        s.items()[k]->info.group = 9000;
    const quint64 decodes = QSpriteCache::decodeCount();
    for (int k = 0; k < 20; ++k) {
        s.move(k, s.count() - 1 - k);
        s.move(s.count() - 1, k / 2);
        s.duplicate(k, k % 2);
        s.insert(k);
        s.remove(k * 2);
    }
    s.autoOrganize();
    s.renameGroup(5, 6, true, 0, 0);
    s.removeGroup(6, false, 3, 9);
    s.setInfo(2, 0x00010001, 0x00020003, 0, 1);
    s.removePalette(1);
    s.mergeDuplicates();
    s.removeUnused();
    s.paletteObject()->move(0, 1);
    s.flattenLinks();
    s.undoStack()->setIndex(0);
    s.undoStack()->setIndex(s.undoStack()->count());
    while (s.count())
        s.remove(s.count() / 2);
    s.undoStack()->setIndex(0);
    QCOMPARE(QSpriteCache::decodeCount(), decodes);
}

void TestSprites::badInputIsHarmless()
{
    QSprites s;
    for (int i : {-1, 0, 5, 70000}) {
        s.remove(i);
        s.move(i, 0);
        s.crop(i);
        s.duplicate(i, true);
        s.setInfo(i, 1, 2, 3, 4);
        QVERIFY(s.image(i).isNull());
        QVERIFY(s.imageData(i).isEmpty());
        QCOMPARE(s.rootOf(i), -1);
        s.removePalette(i);
        s.setPaletteColors(i, QRGBPal());
        QVERIFY(!s.paletteColors(i));
        QCOMPARE(s.paletteInfo(i).group, qint16(0));
        s.copy(i);
        s.paste(-1);
        s.paletteObject()->move(i, 0);
    }
    QCOMPARE(s.count(), 0);
    // Links that point forward, at themselves or out of the list show nothing
    // and never loop.
    s.setUndoEnabled(false);
    addOwner(s, pattern(4, 4, 1), 1);
    addLink(s, 0, 2);
    addLink(s, 0, 3);
    s.items()[1]->info.link = 2;
    s.items()[2]->info.link = 1;
    QCOMPARE(s.rootOf(1), -1);
    QVERIFY(s.image(2).isNull());
    s.items()[2]->info.link = 2;
    QVERIFY(s.image(2).isNull());
    s.items()[2]->info.link = 900;
    QVERIFY(s.image(2).isNull());
    s.items()[0]->info.palette = 300;
    QVERIFY(s.image(0).colorTable().isEmpty());
    s.setUndoEnabled(true);
    s.setInfo(1, 0, 0, 5, 0); // a forward link is refused, the rest kept
    QCOMPARE(s.items()[1]->info.link, quint16(2));
    s.move(2, 0);
    s.move(0, 2);
    s.remove(1);
    s.flattenLinks();
    s.autoOrganize();
    s.undoStack()->setIndex(0);
    QCOMPARE(s.count(), 3);
}

QTEST_MAIN(TestSprites)
#include "tst_sprites.moc"
