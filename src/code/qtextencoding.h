#pragma once

#include <QByteArray>
#include <QString>

class QIODevice;
class QTextCodec;

// Encoding of the project's text files. They come in any legacy code page and
// carry no declaration, so each load sniffs the bytes and falls back on the
// code page the user chose once ("default_codepage").
class QTextEncoding
{
public:
    // Size of the code page table; index 0 is the system locale.
    static constexpr int CodepageCount = 47;

    // Codec name of a table row; empty for 0 (system locale) and out of range.
    static QByteArray codepageName(int index);
    // The fallback codec of a table row; an index past the table counts as 0.
    static QTextCodec *codecForIndex(int index);

    // Charset name the detector reports for the bytes, empty when it has none.
    static QByteArray detectCharset(const QByteArray &bytes);

    // Reads the whole device, seeks back to 0 and answers the detected codec,
    // else the fallback of defaultIndex. May be null only if the fallback name
    // is unknown to this system.
    static QTextCodec *detectCodec(QIODevice *file, int defaultIndex);
    static QTextCodec *detectCodec(const QByteArray &bytes, int defaultIndex);

    // Decodes with the codec (UTF-8 when null), dropping a leading byte-order
    // mark. firstBadLine, when given, receives the 0-based line of the first
    // byte the codec could not map (shown as U+FFFD), or -1.
    static QString decode(const QByteArray &bytes, QTextCodec *codec, int *firstBadLine = nullptr);

    // Encodes with the codec (UTF-8 when null), with a byte-order mark when the
    // codec is one of the Unicode forms. firstLossyLine, when given, receives
    // the 0-based line of the first character the codec cannot represent
    // (written as its substitute), or -1.
    static QByteArray encode(const QString &text, QTextCodec *codec, int *firstLossyLine = nullptr);

    // True for the Unicode codecs, which have a byte-order mark.
    static bool hasByteOrderMark(const QTextCodec *codec);
};
