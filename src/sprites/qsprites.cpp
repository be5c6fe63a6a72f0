#include "sprites/qsprites.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QRect>

#include <algorithm>
#include <array>

#include "sprites/qbfcachefilter.h"
#include "sprites/spriteundocommands.h"

namespace {

constexpr quint16 Portraits = 9000;

quint16 low16(quint32 w) { return quint16(w & 0xFFFF); }
quint16 high16(quint32 w) { return quint16(w >> 16); }

// When owner and link trade places, they trade how the bytes are read too. A
// link normally carries its owner's size already; trading rather than copying
// keeps a move and its inverse exact even for a stale link.
void swapStorage(QSpriteItem &a, QSpriteItem &b)
{
    std::swap(a.filter, b.filter);
    std::swap(a.width, b.width);
    std::swap(a.height, b.height);
    std::swap(a.imageFormat, b.imageFormat);
}

} // namespace

bool QSprites::samePalettes(const QPaletteList &a, const QPaletteList &b)
{
    if (a.count() != b.count())
        return false;
    for (int k = 0; k < a.count(); ++k) {
        const QPaletteItem *x = a.item(k), *y = b.item(k);
        if (!(x->info() == y->info()) || x->colors != y->colors)
            return false;
    }
    return true;
}

namespace {

// Opens a macro on the store's stack only when the first command arrives, so
// that an operation which changes nothing leaves no empty entry behind.
class LazyMacro
{
public:
    LazyMacro(QSprites *s, const QString &text) : m_s(s), m_text(text) {}
    ~LazyMacro()
    {
        if (m_open)
            m_s->undoStack()->endMacro();
    }
    LazyMacro(const LazyMacro &) = delete;
    LazyMacro &operator=(const LazyMacro &) = delete;
    void open()
    {
        if (!m_open && m_s->undoEnabled()) {
            m_s->undoStack()->beginMacro(m_text);
            m_open = true;
        }
    }

private:
    QSprites *m_s;
    QString m_text;
    bool m_open = false;
};

} // namespace

QSprites::QSprites(int cacheMode, bool cacheCompression, QSpriteRecordPool *records, QObject *parent)
    : QOrganizableObject(parent),
      m_cache(QStringLiteral("mugenspr"), cacheMode, cacheCompression, -1, records),
      m_paletteObject(this)
{
    QBFCacheFilter::createFilters();
}

QSprites::~QSprites()
{
    // Commands hold handles in the undo cache: let them go first.
    m_undoStack.clear();
    m_itemPool.destroyMany(m_sprites.constData(), m_sprites.size());
    m_sprites.clear();
}

void QSprites::clearContent()
{
    const QString file = m_fileName;
    clear();
    m_fileName = file;
}

QSpriteCache *QSprites::undoCache()
{
    if (m_undoCache)
        return m_undoCache;
    if (!m_ownUndoCache)
        m_ownUndoCache = std::make_unique<QSpriteCache>(QStringLiteral("sprUndo"), QSpriteCache::TemporaryFile, true, -1);
    return m_ownUndoCache.get();
}

int QSprites::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_sprites.size());
}

QVariant QSprites::data(const QModelIndex &mi, int role) const
{
    if (role != Qt::DisplayRole || !mi.isValid() || mi.column() != 0 || !validIndex(mi.row()))
        return QVariant();
    const QSpriteInfo &i = m_sprites[mi.row()]->info;
    return QStringLiteral("%1, %2").arg(i.group).arg(i.number);
}

QSpriteItem *QSprites::item(int i) const
{
    return validIndex(i) ? m_sprites[i] : nullptr;
}

void QSprites::touch()
{
    m_modified = true;
    emit changed();
}

void QSprites::rowChanged(int i)
{
    if (!validIndex(i))
        return;
    const QModelIndex mi = createIndex(i, 0);
    emit dataChanged(mi, mi, {Qt::DisplayRole});
}

void QSprites::insertRecord(int i)
{
    beginInsertRows(QModelIndex(), i, i);
    m_sprites.insert(i, m_itemPool.create());
    endInsertRows();
}

void QSprites::deleteRecord(int i)
{
    beginRemoveRows(QModelIndex(), i, i);
    m_itemPool.destroy(m_sprites.takeAt(i));
    endRemoveRows();
}

void QSprites::moveRecord(int from, int to)
{
    beginMoveRows(QModelIndex(), from, from, QModelIndex(), to >= from ? to + 1 : to);
    m_sprites.move(from, to);
    endMoveRows();
}

// --- structure ---------------------------------------------------------------

void QSprites::add()
{
    insert(count());
}

void QSprites::insert(int i)
{
    if (i < 0)
        return;
    i = std::min(i, count());
    insertRecord(i);
    for (int k = i + 1; k < count(); ++k) {
        QSpriteInfo &s = m_sprites[k]->info;
        if (!s.hasImage && s.link >= i)
            ++s.link;
    }
    if (m_undoEnabled)
        m_undoStack.push(new SpriteInsert(this, quint32(i), tr("Insert sprite")));
    touch();
}

void QSprites::remove(int i)
{
    if (!validIndex(i))
        return;
    QSpriteItem *it = m_sprites[i];
    const int n = count();
    const bool owner = it->info.hasImage;

    // The first later link to this sprite inherits its image.
    int heir = -1;
    QList<SpriteRemove::Relinked> relinked;
    for (int k = i + 1; k < n; ++k) {
        const QSpriteItem *s = m_sprites[k];
        if (!s->info.hasImage && s->info.link == i) {
            if (heir < 0 && owner)
                heir = k;
            relinked.append({quint32(k), s->info, s->filter, s->spriteSize()});
        }
    }
    if (heir >= 0) {
        QSpriteItem *h = m_sprites[heir];
        h->cacheId = it->cacheId;
        h->filter = it->filter;
        h->setSpriteSize(it->spriteSize());
        h->info.hasImage = true;
        h->info.link = 0;
        it->cacheId = 0;
    }
    // The other links are pointed at the heir's position as it was before the
    // row goes, and are not corrected afterwards: they land one place behind
    // the heir. Files and scripts made with earlier releases rely on this
    // exact outcome, so it is kept. A removed link hands its own target on.
    const quint16 newTarget = heir >= 0 ? quint16(heir) : (owner ? quint16(0xFFFF) : it->info.link);
    for (int k = i + 1; k < n; ++k) {
        QSpriteInfo &s = m_sprites[k]->info;
        if (s.hasImage)
            continue;
        if (s.link > i)
            --s.link;
        else if (s.link == i)
            s.link = newTarget;
    }

    SpriteRemove *cmd = m_undoEnabled ? new SpriteRemove(this, quint32(i), heir, relinked) : nullptr;
    if (it->cacheId)
        m_cache.remove(it->cacheId);
    deleteRecord(i);
    if (cmd)
        m_undoStack.push(cmd);
    touch();
}

void QSprites::clear()
{
    beginResetModel();
    m_paletteObject.beginReset();
    m_undoStack.clear();
    m_itemPool.destroyMany(m_sprites.constData(), m_sprites.size());
    m_sprites.clear();
    m_palettes.clear();
    m_cache.clear();
    m_fileName.clear();
    m_index = 0;
    m_paletteObject.endReset();
    endResetModel();
    m_modified = false;
    emit changed();
}

void QSprites::move(int from, int to)
{
    if (from == to || !validIndex(from) || !validIndex(to))
        return;
    moveRecord(from, to);
    const int n = count();
    QSpriteItem *m = m_sprites[to];

    if (from < to) {
        // Links keep showing the same sprites.
        for (int k = 0; k < n; ++k) {
            QSpriteInfo &s = m_sprites[k]->info;
            if (s.hasImage)
                continue;
            if (s.link > from && s.link <= to)
                --s.link;
            else if (s.link == from)
                s.link = quint16(to);
        }
        // An image owner moved past a link to it: the link takes the image.
        if (m->info.hasImage) {
            int j = -1;
            for (int k = from; k < to; ++k) {
                const QSpriteInfo &s = m_sprites[k]->info;
                if (!s.hasImage && s.link == to) {
                    j = k;
                    break;
                }
            }
            if (j >= 0) {
                QSpriteItem *l = m_sprites[j];
                l->info.hasImage = true;
                l->info.link = 0;
                l->cacheId = m->cacheId;
                swapStorage(*l, *m);
                m->info.hasImage = false;
                m->cacheId = 0;
                m->info.link = quint16(j);
                for (int k = j + 1; k < n; ++k) {
                    QSpriteInfo &s = m_sprites[k]->info;
                    if (!s.hasImage && s.link == to)
                        s.link = quint16(j);
                }
            }
        }
    } else {
        for (int k = 0; k < n; ++k) {
            if (k == to)
                continue;
            QSpriteInfo &s = m_sprites[k]->info;
            if (s.hasImage)
                continue;
            if (s.link >= to && s.link < from)
                ++s.link;
            else if (s.link == from)
                s.link = quint16(to);
        }
        // A link moved in front of its target: it takes the image, and the
        // target becomes the link.
        if (!m->info.hasImage) {
            const int link = m->info.link;
            if (link >= to && link < from) {
                const int t = link + 1;
                QSpriteItem *target = m_sprites[t];
                if (target->info.hasImage) {
                    m->info.hasImage = true;
                    m->info.link = 0;
                    m->cacheId = target->cacheId;
                    swapStorage(*m, *target);
                    target->info.hasImage = false;
                    target->cacheId = 0;
                    target->info.link = quint16(to);
                    for (int k = t + 1; k < n; ++k) {
                        QSpriteInfo &s = m_sprites[k]->info;
                        if (!s.hasImage && s.link == t)
                            s.link = quint16(to);
                    }
                }
            } else if (link == from) {
                m->info.link = quint16(to); // a sprite linked to itself stays so
            }
        }
    }
    if (m_undoEnabled)
        m_undoStack.push(new SpriteMove(this, quint32(from), quint32(to)));
    touch();
}

void QSprites::crop(int i)
{
    if (!validIndex(i) || !m_sprites[i]->info.hasImage || !m_sprites[i]->cacheId)
        return;
    QSpriteItem *it = m_sprites[i];
    const QImage img = it->spriteSize().toImage(decodeOwn(i));
    if (img.isNull())
        return;

    int left = 100000, top = 100000, right = -100000, bottom = -100000;
    const int w = img.width(), h = img.height();
    const bool indexed = img.format() == QImage::Format_Indexed8;
    const QRgb corner = indexed ? 0 : img.pixel(0, 0);
    for (int y = 0; y < h; ++y) {
        int first = -1, last = -1;
        if (indexed) {
            const uchar *line = img.constScanLine(y);
            for (int x = 0; x < w; ++x)
                if (line[x]) {
                    if (first < 0)
                        first = x;
                    last = x;
                }
        } else {
            const QRgb *line = reinterpret_cast<const QRgb *>(img.constScanLine(y));
            for (int x = 0; x < w; ++x)
                if (line[x] != corner) {
                    if (first < 0)
                        first = x;
                    last = x;
                }
        }
        if (first < 0)
            continue;
        left = std::min(left, first);
        right = std::max(right, last);
        top = std::min(top, y);
        bottom = std::max(bottom, y);
    }
    if (right < left || bottom < top)
        return;
    if (left == 0 && top == 0 && right == w - 1 && bottom == h - 1)
        return;

    LazyMacro macro(this, QStringLiteral("crop"));
    if (m_undoEnabled) {
        macro.open();
        m_undoStack.push(new SpriteChangeImage(this, quint32(i), tr("Crop image")));
        m_undoStack.push(new SpriteChangeInfo(this, quint32(i), it->info));
    }
    const QImage cropped = img.copy(left, top, right - left + 1, bottom - top + 1);
    m_cache.replace(it->cacheId, QSpriteSize::rawBytes(cropped), true);
    it->filter = QBFCacheFilter::None;
    it->setSpriteSize(QSpriteSize::of(cropped));
    it->info.x = qint16(it->info.x - left);
    it->info.y = qint16(it->info.y - top);
    for (int k = i + 1; k < count(); ++k) {
        QSpriteItem *l = m_sprites[k];
        if (l->info.hasImage || l->info.link != i)
            continue;
        if (m_undoEnabled)
            m_undoStack.push(new SpriteChangeInfo(this, quint32(k), l->info));
        l->info.x = qint16(l->info.x - left);
        l->info.y = qint16(l->info.y - top);
        l->setSpriteSize(it->spriteSize());
    }
    touch();
}

void QSprites::autoOrganize()
{
    const int n = count();
    if (n < 2)
        return;
    // Sort key: portraits (group 9000) by number; then sprites on a palette of
    // the character's group 1 by group and number; then the rest gathered by
    // palette index, then group and number. Lexicographic on unsigned values.
    auto key = [this](const QSpriteItem *s) {
        const QSpriteInfo &i = s->info;
        if (i.group == Portraits)
            return std::array<quint32, 4>{0, i.number, 0, 0};
        if (m_palettes.info(i.palette).group == 1)
            return std::array<quint32, 4>{1, i.group, i.number, 0};
        return std::array<quint32, 4>{2, i.palette, i.group, i.number};
    };
    QList<std::array<quint32, 4>> keys;
    keys.reserve(n);
    for (const QSpriteItem *s : m_sprites)
        keys.append(key(s));

    // Insertion by move: sprite i goes in front of the first earlier sprite
    // that orders after it. The part before i is always in order, so that
    // first sprite is found by binary search, and equal keys keep their order.
    LazyMacro macro(this, QStringLiteral("autoOrganize"));
    for (int i = 1; i < n; ++i) {
        const auto k = keys[i];
        const auto it = std::upper_bound(keys.begin(), keys.begin() + i, k);
        const int j = int(it - keys.begin());
        if (j >= i)
            continue;
        macro.open();
        move(i, j);
        keys.move(i, j);
    }
}

void QSprites::renameGroup(int group, int newGroup, bool whole, int first, int last)
{
    LazyMacro macro(this, QStringLiteral("renameGroup"));
    bool any = false;
    for (int k = count() - 1; k >= 0; --k) {
        QSpriteInfo &s = m_sprites[k]->info;
        if (s.group != quint16(group))
            continue;
        if (!whole && (s.number < first || s.number > last))
            continue;
        if (m_undoEnabled) {
            macro.open();
            m_undoStack.push(new SpriteChangeInfo(this, quint32(k), s));
        }
        s.group = quint16(newGroup);
        any = true;
        rowChanged(k);
    }
    if (any)
        touch();
}

void QSprites::removeGroup(int group, bool whole, int first, int last)
{
    LazyMacro macro(this, QStringLiteral("removeGroup"));
    for (int k = count() - 1; k >= 0; --k) {
        const QSpriteInfo &s = m_sprites[k]->info;
        if (s.group != quint16(group))
            continue;
        if (!whole && (s.number < first || s.number > last))
            continue;
        macro.open();
        remove(k);
    }
}

void QSprites::duplicate(int i, bool copyImage)
{
    if (!validIndex(i))
        return;
    const bool undo = m_undoEnabled;
    m_undoEnabled = false;
    insert(i + 1);
    m_undoEnabled = undo;

    const QSpriteItem *src = m_sprites[i];
    QSpriteItem *dst = m_sprites[i + 1];
    dst->filter = src->filter;
    dst->info = src->info;
    dst->setSpriteSize(src->spriteSize());
    const int root = src->info.hasImage ? i : rootOf(i);
    if (copyImage && root >= 0 && m_sprites[root]->cacheId) {
        // The stored bytes are copied as they are: nothing is decoded.
        dst->cacheId = m_cache.copyEntry(m_cache, m_sprites[root]->cacheId);
        dst->filter = m_sprites[root]->filter;
        dst->setSpriteSize(m_sprites[root]->spriteSize());
        dst->info.hasImage = true;
        dst->info.link = 0;
    } else if (!copyImage || root >= 0) {
        dst->info.hasImage = false;
        dst->info.link = quint16(src->info.hasImage ? i : src->info.link);
    }
    if (m_undoEnabled)
        m_undoStack.push(new SpriteInsert(this, quint32(i + 1), tr("Duplicate sprite")));
    touch();
}

void QSprites::setInfo(int i, quint32 axis, quint32 groupNumber, quint32 linkPalette, quint32 flags)
{
    if (!validIndex(i))
        return;
    QSpriteInfo info = m_sprites[i]->info;
    info.x = qint16(low16(axis));
    info.y = qint16(high16(axis));
    info.group = low16(groupNumber);
    info.number = high16(groupNumber);
    info.link = low16(linkPalette);
    info.palette = high16(linkPalette);
    info.flags = low16(flags);
    setInfo(i, info);
}

void QSprites::setInfo(int i, const QSpriteInfo &info)
{
    if (!validIndex(i))
        return;
    QSpriteInfo &cur = m_sprites[i]->info;
    QSpriteInfo next = info;
    next.hasImage = cur.hasImage;
    // A link that doesn't point backwards would break every structural rule.
    if (!next.hasImage && next.link >= i && !(next.link == cur.link))
        next.link = cur.link;
    if (next == cur)
        return;
    if (m_undoEnabled)
        m_undoStack.push(new SpriteChangeInfo(this, quint32(i), cur));
    cur = next;
    rowChanged(i);
    touch();
}

void QSprites::flattenLinks()
{
    LazyMacro macro(this, QStringLiteral("flattenLinks"));
    for (int k = 0; k < count(); ++k) {
        QSpriteInfo &s = m_sprites[k]->info;
        if (s.hasImage)
            continue;
        const int r = rootOf(k);
        if (r < 0 || r == s.link)
            continue;
        if (m_undoEnabled) {
            macro.open();
            m_undoStack.push(new SpriteChangeInfo(this, quint32(k), s));
        }
        s.link = quint16(r);
    }
    touch();
}

// --- images ------------------------------------------------------------------

int QSprites::rootOf(int i) const
{
    if (!validIndex(i))
        return -1;
    const int n = count();
    for (int steps = 0; steps <= n; ++steps) {
        const QSpriteInfo &s = m_sprites[i]->info;
        if (s.hasImage)
            return i;
        if (s.link >= n || s.link == i)
            return -1;
        i = s.link;
    }
    return -1; // links in a circle
}

QByteArray QSprites::decodeOwn(int i) const
{
    const QSpriteItem *s = m_sprites[i];
    QByteArray out;
    if (!s->cacheId || s->spriteSize().isEmpty())
        return out;
    if (!m_cache.get(s->cacheId, out, QBFCacheFilter::filter(s->filter), s->spriteSize()))
        return QByteArray();
    return out;
}

QByteArray QSprites::imageData(int i) const
{
    const int r = rootOf(i);
    return r < 0 ? QByteArray() : decodeOwn(r);
}

QImage QSprites::image(int i, int palette) const
{
    if (!validIndex(i) || m_sprites[i]->width == 0 || m_sprites[i]->height == 0)
        return QImage();
    const int r = rootOf(i);
    if (r < 0 || !m_sprites[r]->cacheId)
        return QImage();
    const QSpriteItem *root = m_sprites[r];
    QImage img = root->spriteSize().toImage(decodeOwn(r));
    if (img.isNull())
        return img;
    if (img.format() == QImage::Format_Indexed8) {
        const int pal = remapPalette(palette >= 0 ? palette : m_sprites[i]->info.palette);
        if (const QRGBPal *c = paletteColors(pal))
            img.setColorTable(c->toColorTable());
    }
    return img;
}

void QSprites::propagateSize(int target)
{
    const QSpriteItem *t = m_sprites[target];
    for (int k = target + 1; k < count(); ++k) {
        QSpriteItem *l = m_sprites[k];
        if (!l->info.hasImage && l->info.link == target)
            l->setSpriteSize(t->spriteSize());
    }
}

bool QSprites::changeImage(int i, const QImage &source, int paletteMode, bool invert, int group,
                           int number)
{
    if (!validIndex(i) || source.isNull())
        return false;
    QSpriteItem *it = m_sprites[i];

    LazyMacro macro(this, QStringLiteral("changeImage"));
    const bool undo = m_undoEnabled;
    SpriteChangeImage *imageCmd = nullptr;
    const QSpriteInfo oldInfo = it->info;
    QPaletteList palettesBefore;
    QList<int> refsBefore;
    if (undo) {
        imageCmd = new SpriteChangeImage(this, quint32(i), tr("Change image"));
        palettesBefore = m_palettes;
        refsBefore = spritePaletteIndices();
    }
    m_undoEnabled = false;

    QImage img = source;
    if (img.format() != QImage::Format_Indexed8 && img.format() != QImage::Format_RGB32
        && img.format() != QImage::Format_ARGB32)
        img = img.convertToFormat(QImage::Format_RGB32);

    if (invert && img.format() == QImage::Format_Indexed8) {
        img.detach();
        for (int y = 0; y < img.height(); ++y) {
            uchar *line = img.scanLine(y);
            for (int x = 0; x < img.width(); ++x)
                line[x] = uchar(~line[x]);
        }
        QList<QRgb> table = img.colorTable();
        table.resize(256, qRgb(0, 0, 0));
        for (int k = 0; k < 128; ++k)
            std::swap(table[k], table[255 - k]);
        img.setColorTable(table);
    }

    const int p = m_palettes.find(0, group, number);
    const QRGBPal *pc = p >= 0 ? paletteColors(p) : nullptr;
    switch (paletteMode) {
    case 1:
        if (pc) {
            img = img.convertToFormat(QImage::Format_RGB32)
                      .convertToFormat(QImage::Format_Indexed8, pc->toColorTable(),
                                       Qt::ThresholdDither | Qt::AvoidDither);
            it->info.palette = quint16(p);
        }
        break;
    case 2:
        if (p >= 0)
            it->info.palette = quint16(p);
        break;
    case 0:
        if (img.format() == QImage::Format_Indexed8) {
            QRGBPal pal = QRGBPal::fromColorTable(img.colorTable());
            for (int k = 0; k < 256; ++k)
                pal[k].a = k == 0 ? 0 : 255;
            it->info.palette = quint16(addPalette(pal, true, 0, -1));
        } else {
            it->info.palette = 0;
        }
        break;
    default:
        break;
    }

    const QByteArray raw = QSpriteSize::rawBytes(img);
    it->filter = QBFCacheFilter::None;
    it->info.hasImage = true;
    it->setSpriteSize(QSpriteSize::of(img));
    if (it->cacheId && m_cache.contains(it->cacheId)) {
        m_cache.replace(it->cacheId, raw, true);
    } else {
        it->cacheId = m_cache.add(raw, true);
        it->info.link = 0;
    }
    propagateSize(i);
    m_undoEnabled = undo;

    if (undo) {
        macro.open();
        m_undoStack.push(imageCmd);
        if (!samePalettes(m_palettes, palettesBefore))
            m_undoStack.push(new PaletteChange(this, tr("Change image"), palettesBefore, refsBefore));
        if (it->info != oldInfo)
            m_undoStack.push(new SpriteChangeInfo(this, quint32(i), oldInfo));
    }
    rowChanged(i);
    touch();
    return true;
}

// --- lookups -------------------------------------------------------------------

int QSprites::findSprite(int start, int group, int number) const
{
    for (int k = std::max(start, 0); k < count(); ++k) {
        const QSpriteInfo &s = m_sprites[k]->info;
        if (s.group == quint16(group) && s.number == quint16(number))
            return k;
    }
    return -1;
}

quint32 QSprites::spriteSize(int i) const
{
    if (!validIndex(i))
        return 0;
    return QSpriteInfo::pack(m_sprites[i]->width, m_sprites[i]->height);
}

int QSprites::previousGroupStart(int i) const
{
    if (!validIndex(i))
        return 0;
    int k = i;
    const quint16 g = m_sprites[i]->info.group;
    while (k > 0 && m_sprites[k - 1]->info.group == g)
        --k;
    if (k == 0)
        return 0;
    --k;
    const quint16 pg = m_sprites[k]->info.group;
    while (k > 0 && m_sprites[k - 1]->info.group == pg)
        --k;
    return k;
}

int QSprites::nextGroupStart(int i) const
{
    if (!validIndex(i))
        return 0;
    const quint16 g = m_sprites[i]->info.group;
    for (int k = i + 1; k < count(); ++k)
        if (m_sprites[k]->info.group != g)
            return k;
    return 0;
}

void QSprites::bounds(QPoint &axisMax, QPoint &sizeMax) const
{
    int ax = 0, ay = 0, sx = 0, sy = 0;
    for (const QSpriteItem *s : m_sprites) {
        ax = std::max(ax, int(s->info.x));
        ay = std::max(ay, int(s->info.y));
        sx = std::max(sx, int(s->width) - s->info.x);
        sy = std::max(sy, int(s->height) - s->info.y);
    }
    axisMax = QPoint(ax, ay);
    sizeMax = QPoint(sx, sy);
}

int QSprites::findLinkTo(int start, int i) const
{
    for (int k = std::max(start, 0); k < count(); ++k) {
        const QSpriteInfo &s = m_sprites[k]->info;
        if (!s.hasImage && s.link == i)
            return k;
    }
    return -1;
}

// --- clipboard -------------------------------------------------------------------

namespace {
QClipboard *guiClipboard()
{
    // Without a GUI application there is no clipboard to speak to.
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QGuiApplication::clipboard()
                                                                         : nullptr;
}
} // namespace

void QSprites::copy(int i) const
{
    QClipboard *cb = guiClipboard();
    QImage img = image(i);
    if (!cb || img.isNull())
        return;
    const QSpriteInfo &s = m_sprites[i]->info;
    img.setText(QStringLiteral("group"), QString::number(s.group));
    img.setText(QStringLiteral("index"), QString::number(s.number));
    img.setText(QStringLiteral("xaxis"), QString::number(s.x));
    img.setText(QStringLiteral("yaxis"), QString::number(s.y));
    img.setText(QStringLiteral("flags"), QString::number(s.flags));
    cb->setImage(img);
}

void QSprites::paste(int i)
{
    QClipboard *cb = guiClipboard();
    if (!cb || i < 0)
        return;
    const QImage img = cb->image();
    if (img.isNull())
        return;
    i = std::min(i, count());
    LazyMacro macro(this, QStringLiteral("paste"));
    macro.open();
    insert(i);
    auto tag = [&img](const char *key) { return img.text(QLatin1String(key)).toInt(); };
    QSpriteInfo info = m_sprites[i]->info;
    info.group = quint16(tag("group"));
    info.number = quint16(tag("index"));
    info.x = qint16(tag("xaxis"));
    info.y = qint16(tag("yaxis"));
    info.flags = quint16(tag("flags"));
    setInfo(i, info);
    changeImage(i, img, 0, false, 0, 0);
}

// --- undo support ------------------------------------------------------------------

QByteArray QSprites::storedBytes(int i) const
{
    QByteArray out;
    if (!validIndex(i) || !m_sprites[i]->cacheId)
        return out;
    m_cache.get(m_sprites[i]->cacheId, out, QBFCacheFilter::byPass(), m_sprites[i]->spriteSize());
    return out;
}

void QSprites::adoptEntry(int i, quint32 id, quint16 filter, const QSpriteSize &size)
{
    if (!validIndex(i))
        return;
    QSpriteItem *it = m_sprites[i];
    if (it->cacheId && it->cacheId != id)
        m_cache.remove(it->cacheId);
    it->cacheId = id;
    it->filter = filter;
    it->setSpriteSize(size);
    propagateSize(i);
}

void QSprites::swapCacheIds(int a, int b)
{
    if (validIndex(a) && validIndex(b))
        std::swap(m_sprites[a]->cacheId, m_sprites[b]->cacheId);
}

QList<int> QSprites::spritePaletteIndices() const
{
    QList<int> out;
    out.reserve(count());
    for (const QSpriteItem *s : m_sprites)
        out.append(s->info.palette);
    return out;
}

void QSprites::setSpritePaletteIndices(const QList<int> &indices)
{
    const int n = std::min(count(), int(indices.size()));
    for (int k = 0; k < n; ++k)
        m_sprites[k]->info.palette = quint16(indices[k]);
}
