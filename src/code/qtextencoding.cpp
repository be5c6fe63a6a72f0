#include "qtextencoding.h"

#include <QIODevice>
#include <QTextCodec>

#include <uchardet/uchardet.h>

#include <memory>

namespace {

const char *const codepages[QTextEncoding::CodepageCount] = {
    "",           "UTF-8",      "UTF-16",     "UTF-16BE",   "UTF-16LE",   "UTF-32",
    "UTF-32BE",   "UTF-32LE",   "Big5",       "Big5-HKSCS", "eucJP",      "eucKR",
    "GB2312",     "GBK",        "GB18030",    "JIS7",       "Shift-JIS",  "TSCII",
    "KOI8-R",     "KOI8-U",     "ISO8859-1",  "ISO8859-2",  "ISO8859-3",  "ISO8859-4",
    "ISO8859-5",  "ISO8859-6",  "ISO8859-7",  "ISO8859-8",  "ISO8859-8-i", "ISO8859-9",
    "ISO8859-10", "ISO8859-13", "ISO8859-14", "ISO8859-15", "IBM 850",    "IBM 866",
    "CP874",      "CP1250",     "CP1251",     "CP1252",     "CP1253",     "CP1254",
    "CP1255",     "CP1256",     "CP1257",     "CP1258",     "TIS-620",
};

struct DetectorDeleter
{
    void operator()(uchardet *d) const { uchardet_delete(d); }
};

} // namespace

QByteArray QTextEncoding::codepageName(int index)
{
    if (index <= 0 || index >= CodepageCount)
        return QByteArray();
    return QByteArray(codepages[index]);
}

QTextCodec *QTextEncoding::codecForIndex(int index)
{
    if (index <= 0 || index >= CodepageCount)
        return QTextCodec::codecForLocale();
    if (QTextCodec *codec = QTextCodec::codecForName(codepages[index]))
        return codec;
    // Names some codec back ends know only by another name.
    if (qstrcmp(codepages[index], "JIS7") == 0)
        return QTextCodec::codecForName("ISO-2022-JP");
    return nullptr;
}

QByteArray QTextEncoding::detectCharset(const QByteArray &bytes)
{
    std::unique_ptr<uchardet, DetectorDeleter> detector(uchardet_new());
    if (!detector)
        return QByteArray();
    if (uchardet_handle_data(detector.get(), bytes.constData(), size_t(bytes.size())) != 0)
        return QByteArray();
    uchardet_data_end(detector.get());
    const char *name = uchardet_get_charset(detector.get());
    return name ? QByteArray(name) : QByteArray();
}

QTextCodec *QTextEncoding::detectCodec(const QByteArray &bytes, int defaultIndex)
{
    const QByteArray charset = detectCharset(bytes);
    if (!charset.isEmpty()) {
        // Pure 7-bit text is reported as ASCII: the user's code page reads it
        // the same and keeps any later non-ASCII edits in that code page.
        if (charset.compare("ASCII", Qt::CaseInsensitive) != 0) {
            if (QTextCodec *codec = QTextCodec::codecForName(charset))
                return codec;
        }
    }
    return codecForIndex(defaultIndex);
}

QTextCodec *QTextEncoding::detectCodec(QIODevice *file, int defaultIndex)
{
    if (!file)
        return codecForIndex(defaultIndex);
    const QByteArray bytes = file->readAll();
    file->seek(0);
    return detectCodec(bytes, defaultIndex);
}

QString QTextEncoding::decode(const QByteArray &bytes, QTextCodec *codec, int *firstBadLine)
{
    if (!codec)
        codec = QTextCodec::codecForName("UTF-8");
    QString text = codec->toUnicode(bytes);
    if (text.startsWith(QChar(QChar::ByteOrderMark)))
        text.remove(0, 1);
    if (firstBadLine) {
        *firstBadLine = -1;
        const qsizetype bad = text.indexOf(QChar(QChar::ReplacementCharacter));
        if (bad >= 0)
            *firstBadLine = int(QStringView(text).left(bad).count(QLatin1Char('\n')));
    }
    return text;
}

bool QTextEncoding::hasByteOrderMark(const QTextCodec *codec)
{
    if (!codec)
        return true;
    switch (codec->mibEnum()) {
    case 106:  // UTF-8
    case 1013: // UTF-16BE
    case 1014: // UTF-16LE
    case 1015: // UTF-16
    case 1017: // UTF-32
    case 1018: // UTF-32BE
    case 1019: // UTF-32LE
        return true;
    default:
        return false;
    }
}

QByteArray QTextEncoding::encode(const QString &text, QTextCodec *codec, int *firstLossyLine)
{
    if (!codec)
        codec = QTextCodec::codecForName("UTF-8");
    // The mark is written as a character of the text, so that it always comes
    // out in the byte order of the rest, whatever the codec does by itself.
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString out = text;
    if (hasByteOrderMark(codec))
        out.prepend(QChar(QChar::ByteOrderMark));
    const QByteArray bytes = codec->fromUnicode(out.constData(), int(out.size()), &state);
    if (firstLossyLine) {
        *firstLossyLine = -1;
        if (state.invalidChars > 0 || !codec->canEncode(text)) {
            const QStringList lines = text.split(QLatin1Char('\n'));
            for (int i = 0; i < lines.size(); ++i) {
                if (!codec->canEncode(lines.at(i))) {
                    *firstLossyLine = i;
                    break;
                }
            }
        }
    }
    return bytes;
}
