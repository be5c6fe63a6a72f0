#include "qgifwriter.h"

#include "animations/qanimations.h"
#include "sprites/qsprites.h"

#include <QSaveFile>

#include <array>
#include <memory>

namespace {

// The LZW coder of the GIF format over a hashed string table (open
// addressing, 5003 slots): codes grow from 9 to 12 bits, and a full table is
// cleared and begun again.
class GifLzw
{
public:
    explicit GifLzw(QByteArray *out)
        : m_out(out)
    {
        m_codeTable.fill(0);
        output(ClearCode);
    }

    void pixel(int c)
    {
        if (m_first) {
            m_prefix = c;
            m_first = false;
            return;
        }
        int h = (c << 4) + m_prefix;
        if (h > HashSize - 1)
            h -= HashSize;
        const quint32 key = (quint32(m_prefix) << 8) | quint32(c);
        if (m_codeTable[size_t(h)] != 0) {
            if (m_hashTable[size_t(h)] == key) {
                m_prefix = m_codeTable[size_t(h)];
                return;
            }
            const int d = h == 0 ? 1 : HashSize - h;
            for (;;) {
                h -= d;
                if (h < 0)
                    h += HashSize;
                if (m_codeTable[size_t(h)] == 0)
                    break;
                if (m_hashTable[size_t(h)] == key) {
                    m_prefix = m_codeTable[size_t(h)];
                    return;
                }
            }
        }
        output(m_prefix);
        if (m_next > MaxCode) {
            m_codeTable.fill(0);
            m_next = ClearCode + 2;
            output(ClearCode);
            m_bits = InitialBits;
            m_maxCode = (1 << m_bits) - 1;
        } else {
            m_codeTable[size_t(h)] = quint16(m_next);
            m_hashTable[size_t(h)] = key;
            ++m_next;
        }
        m_prefix = c;
    }

    void finish()
    {
        if (!m_first)
            output(m_prefix);
        output(EndCode);
        if (m_count > 0)
            emitByte(quint8(m_accumulator & 0xff));
        flush();
        m_out->append(char(0));
    }

private:
    static constexpr int HashSize = 5003;
    static constexpr int InitialBits = 9;
    static constexpr int ClearCode = 256;
    static constexpr int EndCode = 257;
    static constexpr int MaxCode = 4095;

    void output(int code)
    {
        m_accumulator |= quint32(code) << m_count;
        m_count += m_bits;
        while (m_count > 7) {
            emitByte(quint8(m_accumulator & 0xff));
            m_accumulator >>= 8;
            m_count -= 8;
        }
        // The decoder widens its codes one entry later than the table grows;
        // widening here when the next code no longer fits keeps both in step.
        if (m_next > m_maxCode && m_bits < 12) {
            ++m_bits;
            m_maxCode = m_bits == 12 ? 4096 : (1 << m_bits) - 1;
        }
    }

    void emitByte(quint8 byte)
    {
        m_block[size_t(m_blockLength++)] = byte;
        if (m_blockLength == 255)
            flush();
    }

    void flush()
    {
        if (m_blockLength == 0)
            return;
        m_out->append(char(m_blockLength));
        m_out->append(reinterpret_cast<const char *>(m_block.data()), m_blockLength);
        m_blockLength = 0;
    }

    QByteArray *m_out;
    int m_bits = InitialBits;
    int m_maxCode = (1 << InitialBits) - 1;
    quint32 m_accumulator = 0;
    int m_count = 0;
    bool m_first = true;
    int m_prefix = 0;
    int m_next = ClearCode + 2;
    std::array<quint16, HashSize> m_codeTable{};
    std::array<quint32, HashSize> m_hashTable{};
    std::array<quint8, 255> m_block{};
    int m_blockLength = 0;
};

void put16(QByteArray &out, quint16 v)
{
    out.append(char(v & 0xff));
    out.append(char(v >> 8));
}

void putTable(QByteArray &out, const QList<QRgb> &table)
{
    for (int i = 0; i < 256; ++i) {
        const QRgb c = i < table.size() ? table.at(i) : 0;
        out.append(char(qRed(c)));
        out.append(char(qGreen(c)));
        out.append(char(qBlue(c)));
    }
}

// The colours of an indexed image, 256 of them, with the transparency of
// index 0 left to the GIF's own flag.
QList<QRgb> tableOf(const QImage &image)
{
    QList<QRgb> t = image.colorTable();
    t.resize(256, 0);
    for (QRgb &c : t)
        c = c | 0xff000000u;
    return t;
}

} // namespace

QByteArray GifWriter::lzw(const QImage &image)
{
    QByteArray out;
    out.append(char(8));
    GifLzw coder(&out);
    for (int y = 0; y < image.height(); ++y) {
        const uchar *row = image.constScanLine(y);
        for (int x = 0; x < image.width(); ++x)
            coder.pixel(row[x]);
    }
    coder.finish();
    return out;
}

quint16 GifWriter::delayOf(int ticks)
{
    return quint16(qint64(ticks) * 100 / 60);
}

QByteArray GifWriter::encode() const
{
    QByteArray out("GIF89a");
    put16(out, quint16(width));
    put16(out, quint16(height));
    const bool global = !globalPalette.isEmpty();
    out.append(char(global ? 0xF7 : 0x77));
    out.append(char(0));
    out.append(char(0));
    if (global)
        putTable(out, globalPalette);
    for (const GifFrame &f : frames) {
        if (f.loop) {
            out.append("\x21\xFF\x0B", 3);
            out.append("NETSCAPE2.0", 11);
            out.append("\x03\x01\x00\x00\x00", 5);
        }
        out.append("\x21\xF9\x04\x09", 4);
        put16(out, f.delay);
        out.append("\x00\x00", 2);
        out.append(char(0x2C));
        put16(out, f.left);
        put16(out, f.top);
        put16(out, quint16(f.image.width()));
        put16(out, quint16(f.image.height()));
        const bool local = !f.palette.isEmpty();
        out.append(char(local ? 0x87 : 0));
        if (local)
            putTable(out, f.palette);
        out.append(lzw(f.image));
    }
    out.append(char(0x3B));
    return out;
}

bool GifWriter::save(const QString &path, QString *error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    const QByteArray bytes = encode();
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    return true;
}

namespace AnimationGif {

bool build(const QAnimations &store, const QSprites *sprites, int anim, GifWriter *out, QString *why)
{
    const AnimAction *action = store.action(anim);
    if (!action || action->frames.isEmpty() || !sprites || !out) {
        if (why)
            *why = QStringLiteral("the animation has no frame");
        return false;
    }
    *out = GifWriter();

    struct Placed
    {
        const AnimFrame *frame;
        QImage image;
        qint64 ax, ay;
    };
    QList<Placed> placed;
    bool anyLoop = false;
    bool samePalette = true;
    QList<QRgb> firstTable;
    // 64 bits: offsets are whatever the file says.
    qint64 maxLeft = 0, maxTop = 0, maxRight = 0, maxBottom = 0;
    for (const AnimFrame *f : action->frames) {
        const int index = f->group < 0 ? -1 : sprites->findSprite(0, f->group, f->number);
        if (index < 0)
            continue;
        QImage image = sprites->image(index);
        if (image.isNull())
            continue;
        if (image.format() != QImage::Format_Indexed8)
            image = image.convertToFormat(QImage::Format_Indexed8);
        anyLoop = anyLoop || f->loopstart;
        const QSpriteInfo &info = sprites->item(index)->info;
        qint64 ax = info.x, ay = info.y;
        if (f->flip & AnimFrame::FlipH)
            ax = image.width() - 1 - ax;
        if (f->flip & AnimFrame::FlipV)
            ay = image.height() - 1 - ay;
        ax -= f->x;
        ay -= f->y;
        const QList<QRgb> table = tableOf(image);
        if (placed.isEmpty())
            firstTable = table;
        else if (samePalette)
            samePalette = table == firstTable;
        maxLeft = qMax(maxLeft, ax);
        maxTop = qMax(maxTop, ay);
        maxRight = qMax(maxRight, qint64(image.width()) - ax);
        maxBottom = qMax(maxBottom, qint64(image.height()) - ay);
        if (f->flip)
            image = image.mirrored(f->flip & AnimFrame::FlipH, f->flip & AnimFrame::FlipV);
        placed.append({f, image, ax, ay});
    }
    if (placed.isEmpty()) {
        if (why)
            *why = QStringLiteral("no frame of the animation shows a sprite");
        return false;
    }
    if (maxLeft + maxRight > 32767 || maxTop + maxBottom > 32767) {
        if (why)
            *why = QStringLiteral("the frames spread over %1 x %2 pixels, more than a GIF can hold")
                       .arg(maxLeft + maxRight)
                       .arg(maxTop + maxBottom);
        return false;
    }
    out->width = qint16(maxLeft + maxRight);
    out->height = qint16(maxTop + maxBottom);
    if (samePalette)
        out->globalPalette = firstTable;
    for (qsizetype i = 0; i < placed.size(); ++i) {
        const Placed &p = placed.at(i);
        GifFrame g;
        g.image = p.image;
        if (!samePalette)
            g.palette = tableOf(p.image);
        g.delay = GifWriter::delayOf(p.frame->time);
        g.loop = anyLoop ? p.frame->loopstart : i == 0;
        g.left = quint16(maxLeft - p.ax);
        g.top = quint16(maxTop - p.ay);
        out->frames.append(g);
    }
    return true;
}

} // namespace AnimationGif
