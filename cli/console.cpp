#include "console.h"

#include "base/qmessages.h"

#include <QJsonDocument>
#include <QRegularExpression>

#include <cstdio>
#include <unistd.h>

namespace Console {

static void write(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

void out(const QString &text) { write(stdout, text); }

void err(const QString &text)
{
    // Anything said on standard error must come after what was printed before it.
    std::fflush(stdout);
    write(stderr, text);
    std::fflush(stderr);
}

void line(const QString &text) { out(text + QLatin1Char('\n')); }

void json(const QJsonDocument &doc)
{
    const QByteArray bytes = doc.toJson(QJsonDocument::Indented);
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
}

void fail(const QString &text) { err(QStringLiteral("brawlforge-cli: ") + text + QLatin1Char('\n')); }

QString issueLine(const QString &text, const QString &file)
{
    // Readers already start their texts with "file(line): ".
    static const QRegularExpression placed(QStringLiteral("^[^\\n]*\\(\\d+\\): "));
    if (placed.match(text).hasMatch())
        return text;
    return QStringLiteral("%1(0): %2").arg(file, text);
}

int printIssues(const QMessages &messages, const QString &file)
{
    int printed = 0;
    for (const QMessages::Message &m : messages.messages()) {
        if (m.kind == QMessages::Information)
            continue;
        err(issueLine(m.text, file) + QLatin1Char('\n'));
        ++printed;
    }
    return printed;
}

bool errIsTerminal() { return ::isatty(STDERR_FILENO) == 1; }

} // namespace Console
