#include "qlz5cachefilter.h"

#include <cstring>
#include <optional>
#include <vector>

#include "sprites/qcodecreader.h"

QByteArray QLZ5CacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    const QSpriteSize target(size.width, size.height, QImage::Format_Indexed8);
    const qsizetype total = qsizetype(target.width) * target.height;
    if (complete)
        *complete = total == 0;
    if (total == 0)
        return QByteArray();
    // Back references work on a flat buffer, without line padding.
    QByteArray flat(total, '\0');
    uchar *out = reinterpret_cast<uchar *>(flat.data());
    qsizetype pos = 0;

    QCodecReader in(stored);
    int packet = 0;
    quint8 control = 0;
    quint32 recycled = 0;
    int recycledCount = 0;
    while (!in.atEnd() && pos < total) {
        if (packet == 0)
            control = in.next();
        if (control & (1 << packet)) {
            const quint8 b = in.next();
            const quint32 high = b >> 6;
            const quint32 low = b & 63;
            qsizetype offset;
            qsizetype length;
            if (low == 0) {
                offset = qsizetype((high << 8) | in.next()) + 1;
                length = qsizetype(in.next()) + 3;
            } else {
                length = qsizetype(low) + 1;
                if (recycledCount == 3) {
                    offset = qsizetype(recycled | high) + 1;
                    recycled = 0;
                    recycledCount = 0;
                } else {
                    recycled |= high << (6 - 2 * recycledCount);
                    ++recycledCount;
                    offset = qsizetype(in.next()) + 1;
                }
            }
            length = qMin(length, total - pos);
            // A reference before the start of the image reads zeros there.
            qsizetype k = 0;
            for (; k < length && pos < offset; ++k, ++pos)
                out[pos] = 0;
            for (; k < length; ++k, ++pos)
                out[pos] = out[pos - offset];
        } else {
            const quint8 b = in.next();
            const quint8 colour = b & 31;
            qsizetype run = b >> 5;
            if (run == 0)
                run = qsizetype(in.next()) + 8;
            run = qMin(run, total - pos);
            std::memset(out + pos, colour, size_t(run));
            pos += run;
        }
        packet = (packet + 1) & 7;
    }
    if (complete)
        *complete = pos >= total;
    return target.padLines(flat, target.width);
}

namespace {

struct Packet
{
    bool isLz = false;
    bool isShort = false;
    quint32 value = 0; // colour or offset
    quint32 length = 0;
};

struct Match
{
    quint32 length = 0;
    quint32 offset = 0;
};

constexpr qsizetype MaxMatch = 258;
constexpr qsizetype MaxOffset = 1024;

// Finds the same match as trying every offset from 2 to 1,024 in turn, but only
// visits offsets that can qualify. A qualifying match must contain a change of
// byte value, so it copies the whole run that starts at i plus the byte after
// it: its source ends a run of at least that length with the same pair of
// values. Those places are chained by pair, nearest first, which is the order
// in which the plain search would meet them.
class MatchFinder
{
public:
    MatchFinder(const uchar *p, qsizetype n)
        : m_p(p), m_n(n), m_runLen(size_t(n)), m_runStart(size_t(n)), m_changes(size_t(n)),
          m_prevPair(size_t(n), -1)
    {
        if (n == 0)
            return;
        m_runLen[size_t(n - 1)] = 1;
        for (qsizetype x = n - 2; x >= 0; --x)
            m_runLen[size_t(x)] = p[x] == p[x + 1] ? m_runLen[size_t(x + 1)] + 1 : 1;
        std::vector<qint32> head(65536, -1);
        m_runStart[0] = 0;
        m_changes[0] = 0;
        for (qsizetype x = 1; x < n; ++x) {
            const bool change = p[x] != p[x - 1];
            m_runStart[size_t(x)] = change ? qint32(x) : m_runStart[size_t(x - 1)];
            m_changes[size_t(x)] = m_changes[size_t(x - 1)] + (change ? 1 : 0);
            if (change) {
                const int key = (p[x - 1] << 8) | p[x];
                m_prevPair[size_t(x)] = head[size_t(key)];
                head[size_t(key)] = qint32(x);
            }
        }
    }

    Match find(qsizetype i)
    {
        Match best;
        if (i < 2 || i >= m_n)
            return best;
        const qsizetype r = m_runLen[size_t(i)];
        // All bytes of a match inside one run are equal: never accepted.
        if (r >= MaxMatch || i + r >= m_n)
            return best;
        const qsizetype q0 = i + r;
        const qsizetype maxOffset = qMin(i, MaxOffset);
        const qsizetype maxLen = qMin(MaxMatch, m_n - i);
        qsizetype bestLen = 1;
        m_firstLongRun = -1;
        for (qint32 q = m_prevPair[size_t(q0)]; q >= 0; q = m_prevPair[size_t(q)]) {
            const qsizetype d = q0 - q;
            if (d > maxOffset)
                break;
            if (d < 2 || q - m_runStart[size_t(q - 1)] < r)
                continue;
            const uchar *a = m_p + i;
            const uchar *b = m_p + (q - r);
            if (a[bestLen] != b[bestLen])
                continue;
            qsizetype l = r + 1;
            while (l < maxLen && a[l] == b[l])
                ++l;
            if (l > bestLen && accepted(i, l, d)) {
                bestLen = l;
                best.length = quint32(l);
                best.offset = quint32(d);
                if (l == maxLen)
                    break;
            }
        }
        return best;
    }

private:
    bool accepted(qsizetype i, qsizetype l, qsizetype d)
    {
        const qint32 changes = m_changes[size_t(i + l - 1)] - m_changes[size_t(i)];
        if (changes < 1)
            return false;
        const uchar last = m_p[i + l - 1];
        const uchar next = i + l < m_n ? m_p[i + l] : 0;
        if (l <= 64 && d <= 256)
            return changes >= 2 || next != last;
        return (changes == 2 && longRun(i, l)) || (l >= 4 && changes >= 3);
    }

    // Whether eight equal bytes have gone by within the first l bytes from i:
    // the count starts at 1 on the first byte and restarts at 0 on a change.
    bool longRun(qsizetype i, qsizetype l)
    {
        if (m_firstLongRun < 0) {
            m_firstLongRun = MaxMatch + 1;
            int equal = 1;
            const qsizetype end = qMin(MaxMatch, m_n - i);
            for (qsizetype k = 1; k < end; ++k) {
                if (m_p[i + k] == m_p[i + k - 1]) {
                    if (++equal >= 8) {
                        m_firstLongRun = k + 1;
                        break;
                    }
                } else {
                    equal = 0;
                }
            }
        }
        return l >= m_firstLongRun;
    }

    const uchar *m_p;
    qsizetype m_n;
    std::vector<qint32> m_runLen;
    std::vector<qint32> m_runStart;
    std::vector<qint32> m_changes;
    std::vector<qint32> m_prevPair;
    qsizetype m_firstLongRun = -1;
};

void appendMatch(std::vector<Packet> &packets, const Match &m)
{
    Packet pk;
    pk.isLz = true;
    pk.isShort = m.length <= 64 && m.offset <= 256;
    pk.value = m.offset;
    pk.length = m.length;
    packets.push_back(pk);
}

void appendRun(std::vector<Packet> &packets, uchar colour, quint32 run)
{
    Packet pk;
    pk.isShort = run < 8;
    pk.value = colour;
    pk.length = run;
    packets.push_back(pk);
}

QByteArray writePackets(std::vector<Packet> &packets)
{
    QByteArray out;
    out.reserve(qsizetype(packets.size() * 2 + packets.size() / 8 + 8));
    const size_t count = packets.size();
    int group = 0;
    for (size_t k = 0; k < count; ++k) {
        if (k % 8 == 0) {
            quint8 control = 0;
            for (size_t b = 0; b < 8 && k + b < count; ++b)
                if (packets[k + b].isLz)
                    control |= quint8(1 << b);
            out.append(char(control));
        }
        Packet &pk = packets[k];
        if (!pk.isLz) {
            if (pk.isShort) {
                out.append(char((pk.value & 31) | (pk.length << 5)));
            } else {
                out.append(char(pk.value & 31));
                out.append(char(pk.length - 8));
            }
        } else if (pk.isShort) {
            ++group;
            if (group == 1) {
                size_t members[4] = {k, 0, 0, 0};
                int found = 1;
                for (size_t s = k + 1; s < count && found < 4; ++s)
                    if (packets[s].isLz && packets[s].isShort)
                        members[found++] = s;
                for (int m = 0; m < found; ++m) {
                    --packets[members[m]].value;
                    --packets[members[m]].length;
                }
                if (found == 4) {
                    // The fourth offset rides in the top bits of the four lengths.
                    const quint32 v = packets[members[3]].value;
                    packets[members[0]].length |= v & 0xC0;
                    packets[members[1]].length |= (v << 2) & 0xC0;
                    packets[members[2]].length |= (v << 4) & 0xC0;
                    packets[members[3]].length |= (v << 6) & 0xFF;
                }
            }
            out.append(char(pk.length));
            if (group < 4)
                out.append(char(pk.value & 0xFF));
            else
                group = 0;
        } else {
            const quint32 v = pk.value - 1;
            out.append(char((v >> 2) & 0xC0));
            out.append(char(v & 0xFF));
            out.append(char(pk.length - 3));
        }
    }
    return out;
}

} // namespace

QByteArray QLZ5CacheFilter::encode(const QByteArray &pixels, bool search)
{
    return encode(reinterpret_cast<const uchar *>(pixels.constData()), pixels.size(), search);
}

QByteArray QLZ5CacheFilter::encode(const uchar *p, qsizetype n, bool search)
{
    if (n <= 0)
        return QByteArray();
    // Offsets and run tables are 32-bit; a sprite is at most 65,535 squared.
    n = qMin<qsizetype>(n, 0x7FFFFFFF);
    std::vector<Packet> packets;
    packets.reserve(size_t(n / 4 + 16));
    std::optional<MatchFinder> finder;
    if (search)
        finder.emplace(p, n);
    qsizetype i = 0;
    while (i < n) {
        if (search && i >= 1) {
            const Match m = finder->find(i);
            if (m.length) {
                appendMatch(packets, m);
                i += m.length;
                continue;
            }
        }
        const uchar colour = p[i++];
        quint32 run = 1;
        while (run < 7 && i < n && p[i] == colour) {
            ++run;
            ++i;
        }
        if (search && run == 7) {
            const Match m = finder->find(i);
            if (m.length) {
                appendRun(packets, colour, run);
                appendMatch(packets, m);
                i += m.length;
                continue;
            }
        }
        while (run < 263 && i < n && p[i] == colour) {
            ++run;
            ++i;
        }
        appendRun(packets, colour, run);
    }
    return writePackets(packets);
}
