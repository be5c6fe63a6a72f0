#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QtEndian>
#include <QtGlobal>

#include "sprites/qsffversion.h"
#include "sprites/qspritesize.h"

// The SFF sprite container, versions 1.01, 2.00 and 2.01: byte layout and the
// bounded little-endian reading and writing that QSprites::fromFile() and
// QSprites::toFile() (defined in sfffile.cpp) are built on.
//
// Every read is checked against the end of the data: a short read yields
// zeros and marks the reader as overrun, so that a damaged file can never
// make the loader look outside its buffer.
namespace Sff {

constexpr int HeaderSize = 512;
constexpr int SubheaderSize = 32;
constexpr int PaletteNodeSize = 16;
constexpr int SpriteNodeSize = 28;
constexpr int CommentSize = 76;

// "ElecbyteSpr" and a zero byte.
QByteArray signature();
// Three lines naming the maker, zero-terminated, CommentSize bytes.
QByteArray comment();

// Sprite node format codes.
enum FormatCode : quint8 {
    CodeRaw = 0,
    CodeLinked = 1,
    CodeRLE8 = 2,
    CodeRLE5 = 3,
    CodeLZ5 = 4,
    CodePNG8 = 10,
    CodePNG24 = 11,
    CodePNG32 = 12,
};

// Filter slot a format code loads as: the code itself up to 4 (and for the
// unknown codes 5 to 9), PNG for 10 and above.
quint16 filterForCode(quint8 code);
// Image format of a colour depth: 5 and 8 indexed, 24 RGB32, 32 ARGB32;
// Format_Invalid otherwise.
QImage::Format formatForDepth(quint8 depth);
// The depth byte written with a format code.
quint8 depthForCode(quint8 code);
// Bytes per pixel of the uncompressed size word: 1, 3 or 4.
int bytesPerPixel(QImage::Format format);
// Raw pixels as a version 2 file packs them (lines back to back; 24 and
// 32-bit pixels as blue, green, red, alpha) in the padded layout of `size`.
// Missing bytes read as zero.
QByteArray rawToPadded(const QByteArray &packed, const QSpriteSize &size);

class ByteReader
{
public:
    ByteReader(const uchar *data, qint64 size) : m_data(data), m_size(size < 0 ? 0 : size) {}

    qint64 size() const { return m_size; }
    qint64 pos() const { return m_pos; }
    qint64 remaining() const { return m_size - m_pos; }
    bool atEnd() const { return m_pos >= m_size; }
    // True once any read or seek went past the end.
    bool overrun() const { return m_overrun; }
    void clearOverrun() { m_overrun = false; }

    // Seeks within [0, size]; a position past the end leaves the reader at the
    // end and marks it overrun.
    bool seek(qint64 pos);
    void skip(qint64 count) { seek(m_pos + count); }

    quint8 u8();
    // Whole words straight from the data while they fit; byte by byte (and
    // zeros past the end) only at the end.
    quint16 u16()
    {
        if (m_size - m_pos < 2)
            return slowU16();
        const quint16 v = qFromLittleEndian<quint16>(m_data + m_pos);
        m_pos += 2;
        return v;
    }
    qint16 s16() { return qint16(u16()); }
    quint32 u32()
    {
        if (m_size - m_pos < 4)
            return slowU32();
        const quint32 v = qFromLittleEndian<quint32>(m_data + m_pos);
        m_pos += 4;
        return v;
    }
    // Up to `count` bytes; fewer (and the overrun mark) at the end of the data.
    QByteArray bytes(qint64 count);
    // Pointer to the current position, for callers that checked remaining().
    const uchar *current() const { return m_data + m_pos; }

private:
    quint16 slowU16();
    quint32 slowU32();

    const uchar *m_data;
    qint64 m_size;
    qint64 m_pos = 0;
    bool m_overrun = false;
};

class ByteWriter
{
public:
    explicit ByteWriter(QByteArray &out) : m_out(out) {}
    void u8(quint8 v) { m_out.append(char(v)); }
    void u16(quint16 v)
    {
        char b[2];
        qToLittleEndian(v, b);
        m_out.append(b, 2);
    }
    void u32(quint32 v)
    {
        char b[4];
        qToLittleEndian(v, b);
        m_out.append(b, 4);
    }
    void bytes(const QByteArray &b) { m_out.append(b); }
    void bytes(const char *data, qsizetype length) { m_out.append(data, length); }
    void zeros(qint64 count) { m_out.append(qsizetype(count), '\0'); }
    // Zero bytes up to an absolute size.
    void padTo(qint64 size);
    qint64 size() const { return m_out.size(); }

private:
    QByteArray &m_out;
};

// Sixteen bytes at offset 0.
struct Head
{
    bool signatureOk = false;
    quint32 version = 0;

    static Head read(ByteReader &in);
    void write(ByteWriter &out) const;
};

// Version 1 header fields after the head.
struct V1Header
{
    quint32 groups = 0;
    quint32 images = 0;
    quint32 firstOffset = HeaderSize;
    quint32 subheaderSize = SubheaderSize;
    quint8 paletteType = 0;

    static V1Header read(ByteReader &in);
    // The whole 512-byte header, head included.
    void write(ByteWriter &out) const;
};

struct V1Subheader
{
    quint32 next = 0;
    quint32 length = 0;
    qint16 x = 0;
    qint16 y = 0;
    quint16 group = 0;
    quint16 number = 0;
    quint16 link = 0;
    quint8 samePalette = 0;

    static V1Subheader read(ByteReader &in);
    void write(ByteWriter &out) const;
};

struct V2Header
{
    quint32 spriteOffset = 0;
    quint32 spriteCount = 0;
    quint32 paletteOffset = 0;
    quint32 paletteCount = 0;
    quint32 ldataOffset = 0;
    quint32 ldataLength = 0;
    quint32 tdataOffset = 0;
    quint32 tdataLength = 0;

    static V2Header read(ByteReader &in);
    // The whole 512-byte header, head included.
    void write(ByteWriter &out, quint32 version) const;
};

struct V2PaletteNode
{
    qint16 group = 0;
    qint16 number = 0;
    quint16 colorCount = 0;
    quint16 link = 0;
    quint32 offset = 0;
    quint32 length = 0;

    static V2PaletteNode read(ByteReader &in);
    void write(ByteWriter &out) const;
};

struct V2SpriteNode
{
    quint16 group = 0;
    quint16 number = 0;
    quint16 width = 0;
    quint16 height = 0;
    qint16 x = 0;
    qint16 y = 0;
    quint16 link = 0;
    quint8 format = 0;
    quint8 depth = 0;
    quint32 offset = 0;
    quint32 length = 0;
    quint16 palette = 0;
    quint16 flags = 0;

    static V2SpriteNode read(ByteReader &in);
    void write(ByteWriter &out) const;
    // Image format the node loads as: by depth, or by code where the depth
    // byte says nothing usable.
    QImage::Format imageFormat() const;
};

} // namespace Sff
