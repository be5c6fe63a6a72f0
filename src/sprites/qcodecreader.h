#pragma once

#include <QByteArray>
#include <QtGlobal>

// Byte-at-a-time reader over stored codec bytes. The streams carry no length
// of their own: reading past the end yields zeros, and decoders stop at the
// start of a packet once atEnd() holds.
class QCodecReader
{
public:
    explicit QCodecReader(const QByteArray &bytes)
        : m_data(reinterpret_cast<const uchar *>(bytes.constData())), m_size(bytes.size()) {}
    QCodecReader(const uchar *data, qsizetype size) : m_data(data), m_size(size) {}

    bool atEnd() const { return m_pos >= m_size; }
    quint8 next() { return m_pos < m_size ? m_data[m_pos++] : quint8(0); }
    qsizetype pos() const { return m_pos; }
    void seek(qsizetype pos) { m_pos = qBound<qsizetype>(0, pos, m_size); }
    quint16 next16()
    {
        const quint8 lo = next();
        return quint16(lo | (next() << 8));
    }

private:
    const uchar *m_data;
    qsizetype m_size;
    qsizetype m_pos = 0;
};
