// Any text through the syntax checker, line by line from every section state
// and as a whole: no crash, no hang, no read or mark outside the line.
#include "code/qmugensyntaxchecker.h"
#include "code/qsyntaxproperties.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

namespace {

const QMugenSyntaxProperties &syntax()
{
    static QMugenSyntaxProperties s;
    static const bool loaded = s.load(QStringLiteral(BF_SOURCE_DIR "/data/syntax_mugen.xml"));
    if (!loaded)
        __builtin_trap();
    return s;
}

struct BoundsSink : QMugenSyntaxChecker::FormatSink
{
    int size = 0;
    void format(int start, int length, int) override
    {
        if (start < 0 || length <= 0 || start + length > size)
            __builtin_trap();
    }
};

void verify(const QMugenSyntaxChecker &checker, int size)
{
    for (const BlockIssue &b : checker.issues()) {
        if (b.start < 0 || b.end < b.start || b.end > size || b.message.isEmpty())
            __builtin_trap();
    }
    for (const Parenthesis &p : checker.parens()) {
        if (p.position < 0 || p.position >= size)
            __builtin_trap();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const uint8_t flags = data[0];
    const int state = data[1] == 255 ? int(QMugenSyntaxChecker::FreeSection)
                                     : data[1] | ((flags & 8) ? int(QMugenSyntaxChecker::TriggerSeen) : 0);
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data + 2), qsizetype(size - 2));

    QMugenSyntaxChecker checker(&syntax());
    checker.setFreeSections(flags & 1);
    checker.setReportErrors(!(flags & 2));
    checker.setEngineVersion((flags & 4) ? 0x01000000 : 0x01010000);
    BoundsSink sink;
    for (QStringView line : QStringView(text).split(QLatin1Char('\n'))) {
        sink.size = int(line.size());
        checker.checkLine(line, state, &sink);
        verify(checker, sink.size);
    }
    const QVector<QMugenSyntaxChecker::Line> lines = checker.checkText(text);
    for (const QMugenSyntaxChecker::Line &l : lines) {
        if (l.foldLevel < 0 || l.foldLevel > 2)
            __builtin_trap();
    }
    return 0;
}
