#pragma once

#include <QString>
#include <QtGlobal>

#include <array>

// The versions of the SFF sprite file that Brawlforge reads and writes. A
// version is the file's own version word, one byte per dotted number, highest
// first, so that any word a file holds can be shown and compared.
struct QSffVersion
{
    static constexpr quint32 V101 = 0x01000100;
    static constexpr quint32 V200 = 0x02000000;
    static constexpr quint32 V201 = 0x02000100;
    // Oldest first.
    static constexpr std::array<quint32, 3> All{V101, V200, V201};

    static bool isSupported(quint32 version) { return version == V101 || version == V200 || version == V201; }
    // Every byte of the word: "1.0.1.0".
    static QString dotted(quint32 version);
    // The name authors use: "1.01", "2.00", "2.01".
    static QString name(quint32 version);
    // A supported version given by either form of its name; 0 for none.
    static quint32 fromName(const QString &text);
};
