#pragma once

// Test-only walk over the sprite nodes of SFF files, just enough to lift the
// stored image bytes of each sprite out for codec tests and benchmarks.
#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QList>
#include <QString>
#include <QtEndian>

namespace SffSamples {

struct StoredSprite
{
    QString file;
    int index = 0;
    int version = 1;  // 1 or 2
    int format = 0;   // 1: PCX (version 1), else the node's format code
    int depth = 8;
    quint16 width = 0, height = 0; // version 2 only; version 1 sizes live in the PCX
    QByteArray bytes; // without the four-byte size word of version 2
};

inline quint32 u32(const QByteArray &b, qsizetype at)
{
    return at >= 0 && at + 4 <= b.size() ? qFromLittleEndian<quint32>(b.constData() + at) : 0;
}
inline quint16 u16(const QByteArray &b, qsizetype at)
{
    return at >= 0 && at + 2 <= b.size() ? qFromLittleEndian<quint16>(b.constData() + at) : 0;
}

inline QList<StoredSprite> readFile(const QString &path)
{
    QList<StoredSprite> out;
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return out;
    const QByteArray b = f.readAll();
    if (b.size() < 16 || !b.startsWith(QByteArray("ElecbyteSpr\0", 12)))
        return out;
    const quint32 version = u32(b, 12);
    if (version == 0x01000100) {
        const quint32 images = u32(b, 20);
        qsizetype pos = 512;
        for (quint32 i = 0; i < images && pos + 32 <= b.size(); ++i) {
            const quint32 next = u32(b, pos);
            quint32 length = u32(b, pos + 4);
            if (next != 0)
                length = quint32(qMax<qint64>(0, qint64(next) - pos - 32));
            if (length > 0) {
                StoredSprite s{path, int(i), 1, 1, 8, 0, 0, b.mid(pos + 32, length)};
                out << s;
            }
            if (next == 0)
                break;
            pos = next;
        }
    } else if (version == 0x02000000 || version == 0x02000100) {
        const quint32 table = u32(b, 36), count = u32(b, 40), ldata = u32(b, 52), tdata = u32(b, 60);
        for (quint32 i = 0; i < count; ++i) {
            const qsizetype node = qsizetype(table) + qsizetype(i) * 28;
            if (node + 28 > b.size())
                break;
            const quint32 length = u32(b, node + 20);
            if (length < 4)
                continue;
            const qsizetype at = qsizetype(u16(b, node + 26) == 1 ? tdata : ldata) + u32(b, node + 16);
            StoredSprite s;
            s.file = path;
            s.index = int(i);
            s.version = 2;
            s.format = quint8(b.at(node + 14));
            s.depth = quint8(b.at(node + 15));
            s.width = u16(b, node + 4);
            s.height = u16(b, node + 6);
            s.bytes = b.mid(at + 4, length - 4);
            out << s;
        }
    }
    return out;
}

// Every stored sprite of every SFF file under a folder.
inline QList<StoredSprite> readAll(const QString &dir)
{
    QList<StoredSprite> out;
    QStringList files;
    QDirIterator it(dir, {QStringLiteral("*.sff")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << it.next();
    files.sort();
    for (const QString &f : files)
        out << readFile(f);
    return out;
}

} // namespace SffSamples
