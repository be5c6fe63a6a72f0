#pragma once

// Plain LZ5 encoder that tries every offset at every position, written to be
// read against the description of the format rather than to be fast. The
// tests and the benchmark hold the fast encoder to its output, byte for byte.
#include <QByteArray>
#include <vector>

namespace Lz5Reference {

// The exhaustive search is the slow part of the test suite; let gcc optimise
// it even in debug builds (the logic is untouched by this).
#if defined(__GNUC__) && !defined(__clang__)
#define LZ5_REFERENCE_FAST __attribute__((optimize("O2")))
#else
#define LZ5_REFERENCE_FAST
#endif

struct Packet
{
    bool isLz = false;
    bool isShort = false;
    int value = 0;
    int length = 0;
};

// Returns the match length (0 if none) and sets offset.
LZ5_REFERENCE_FAST inline int search(const unsigned char *p, int n, int i, int &offset)
{
    if (i < 2 || i >= n)
        return 0;
    int best = 1;
    int found = 0;
    const int maxOffset = i < 1024 ? i : 1024;
    for (int d = 2; d <= maxOffset; ++d) {
        if (p[i] != p[i - d])
            continue;
        int l = 0;
        int changes = 0;
        int equal = 0;
        bool longRun = false;
        while (l < 258 && i + l < n && p[i + l] == p[i - d + l]) {
            if (l == 0) {
                equal = 1;
            } else if (p[i + l] == p[i + l - 1]) {
                ++equal;
                if (equal >= 8)
                    longRun = true;
            } else {
                ++changes;
                equal = 0;
            }
            ++l;
        }
        if (changes < 1 || l <= best)
            continue;
        const int next = i + l < n ? p[i + l] : 0;
        bool accept;
        if (l <= 64 && d <= 256)
            accept = changes >= 2 || (changes == 1 && next != p[i + l - 1]);
        else
            accept = (changes == 2 && longRun) || (l >= 4 && changes >= 3);
        if (accept) {
            best = l;
            found = l;
            offset = d;
        }
    }
    return found;
}

inline QByteArray encode(const QByteArray &pixels, bool lzSearch)
{
    const unsigned char *p = reinterpret_cast<const unsigned char *>(pixels.constData());
    const int n = int(pixels.size());
    std::vector<Packet> packets;
    int i = 0;
    while (i < n) {
        int offset = 0;
        int len = 0;
        if (lzSearch && i >= 1 && (len = search(p, n, i, offset)) > 0) {
            packets.push_back({true, len <= 64 && offset <= 256, offset, len});
            i += len;
            continue;
        }
        const int colour = p[i];
        ++i;
        int run = 1;
        while (run < 7 && i < n && p[i] == colour) {
            ++run;
            ++i;
        }
        if (lzSearch && run == 7 && (len = search(p, n, i, offset)) > 0) {
            packets.push_back({false, true, colour, run});
            packets.push_back({true, len <= 64 && offset <= 256, offset, len});
            i += len;
            continue;
        }
        while (run < 263 && i < n && p[i] == colour) {
            ++run;
            ++i;
        }
        packets.push_back({false, run < 8, colour, run});
    }

    QByteArray out;
    int g = 0;
    for (size_t k = 0; k < packets.size(); ++k) {
        if (k % 8 == 0) {
            int control = 0;
            for (size_t b = 0; b < 8 && k + b < packets.size(); ++b)
                if (packets[k + b].isLz)
                    control |= 1 << b;
            out.append(char(control));
        }
        Packet &pk = packets[k];
        if (!pk.isLz && pk.isShort) {
            out.append(char((pk.value & 31) | (pk.length << 5)));
        } else if (!pk.isLz) {
            out.append(char(pk.value & 31));
            out.append(char(pk.length - 8));
        } else if (pk.isShort) {
            ++g;
            if (g == 1) {
                std::vector<size_t> group{k};
                for (size_t s = k + 1; s < packets.size() && group.size() < 4; ++s)
                    if (packets[s].isLz && packets[s].isShort)
                        group.push_back(s);
                for (size_t m : group) {
                    packets[m].value -= 1;
                    packets[m].length -= 1;
                }
                if (group.size() == 4) {
                    const int v = packets[group[3]].value;
                    packets[group[0]].length |= v & 0xC0;
                    packets[group[1]].length |= (v << 2) & 0xC0;
                    packets[group[2]].length |= (v << 4) & 0xC0;
                    packets[group[3]].length |= (v << 6) & 0xFF;
                }
            }
            out.append(char(pk.length));
            if (g < 4) {
                out.append(char(pk.value & 0xFF));
            } else {
                g = 0;
            }
        } else {
            pk.value -= 1;
            out.append(char((pk.value >> 2) & 0xC0));
            out.append(char(pk.value & 0xFF));
            out.append(char(pk.length - 3));
        }
    }
    return out;
}

} // namespace Lz5Reference
