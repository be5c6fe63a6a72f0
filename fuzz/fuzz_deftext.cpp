// Text of any encoding through detection, decoding, the tokenizer and the
// section outline: none of it may crash, hang or read out of bounds.
#include "base/airlexer.h"
#include "code/qmugensyntaxhierarchy.h"
#include "code/qtextencoding.h"

#include <QByteArray>
#include <QTextCodec>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    int badLine = -1;
    const QString text = QTextEncoding::decode(bytes, QTextEncoding::detectCodec(bytes, 39), &badLine);

    AirLexer lx(text);
    for (qsizetype guard = 0; lx.kind() != AirLexer::End; ++guard) {
        if (guard > text.size() + 2)
            __builtin_trap(); // every token consumes input
        if (lx.kind() == AirLexer::Equals) {
            lx.readRest(QLatin1Char(';'), true);
            lx.next();
        } else if (lx.kind() == AirLexer::Other)
            lx.skipLine();
        else
            lx.next();
    }

    QMugenSyntaxHierarchy h;
    h.update(text);
    h.findValue(QStringLiteral("info"), QStringLiteral("name"));
    h.sectionExists(QStringLiteral("files"));
    h.nodeAtLine(uint(size));
    return 0;
}
