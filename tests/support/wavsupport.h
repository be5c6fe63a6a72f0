#pragma once

// WAV samples and SND files built in memory, for the tests of the sound store,
// its editor and the tool.
#include <QByteArray>
#include <QList>
#include <QtEndian>

#include <cmath>

namespace TestSupport {

inline void putLe(QByteArray &b, quint32 value, int size = 4)
{
    for (int i = 0; i < size; ++i)
        b.append(char((value >> (8 * i)) & 0xFF));
}

// A RIFF WAVE with `frames` frames of a sine tone (PCM) or of noise-like
// bytes (any other format tag), `seed` making each sample's bytes its own.
inline QByteArray makeWav(int channels, quint32 rate, int bits, quint32 frames, quint16 formatTag = 1, int seed = 0,
                          double hz = 440)
{
    const quint32 align = quint32(channels * bits / 8);
    const quint32 dataSize = frames * align;
    QByteArray b("RIFF");
    putLe(b, 36 + dataSize);
    b.append("WAVEfmt ");
    putLe(b, 16);
    putLe(b, formatTag, 2);
    putLe(b, quint32(channels), 2);
    putLe(b, rate);
    putLe(b, rate * align);
    putLe(b, align, 2);
    putLe(b, quint32(bits), 2);
    b.append("data");
    putLe(b, dataSize);
    for (quint32 f = 0; f < frames; ++f) {
        const double v = std::sin(2 * M_PI * hz * f / rate + seed) * 0.5;
        for (int c = 0; c < channels; ++c) {
            if (bits == 16)
                putLe(b, quint32(quint16(qint16(v * 32767))), 2);
            else
                b.append(char(quint8(128 + v * 127)));
        }
    }
    return b;
}

struct SndEntry
{
    QByteArray bytes;
    quint32 group = 0;
    quint32 number = 0;
    // Written as they are when set; else next is the following sub-header
    // and length the sample's size.
    qint64 next = -1;
    qint64 length = -1;
};

// An SND with the given entries; `count` -1 writes the true count.
inline QByteArray makeSnd(const QList<SndEntry> &entries, QByteArray version = QByteArray("\x01\x00\x01\x00", 4),
                          qint64 count = -1)
{
    QByteArray b("ElecbyteSnd", 12);
    b.append(version);
    putLe(b, quint32(count < 0 ? entries.size() : count));
    putLe(b, 512);
    b.append(QByteArray(488, '\0'));
    for (const SndEntry &e : entries) {
        const quint32 next = e.next >= 0 ? quint32(e.next) : quint32(b.size() + 16 + e.bytes.size());
        putLe(b, next);
        putLe(b, e.length >= 0 ? quint32(e.length) : quint32(e.bytes.size()));
        putLe(b, e.group);
        putLe(b, e.number);
        b.append(e.bytes);
    }
    return b;
}

} // namespace TestSupport
