#pragma once

#include <QDomDocument>
#include <QString>

#include <functional>

class QIODevice;

// The one way every XML file of the program is read. A document that fails to
// parse is reported through the installed failure handler with the parser's
// text; the application shows it in a box, tests record it. Models never show
// a box themselves, so the handler is the seam between them and the UI.
class QXmlHelper
{
public:
    using FailureHandler = std::function<void(const QString &message)>;

    // Parses the whole device into doc. On failure the handler (if any) gets a
    // message of the form "<file>: line L, column C: <parser text>" and the
    // result is false; doc is then left empty.
    static bool parse(QDomDocument &doc, QIODevice *device);

    // Opens fileName read-only and parses it. A missing file is not a failure
    // worth a message: it returns false silently, as callers expect for
    // optional files. An unreadable existing file is reported.
    static bool parseFile(QDomDocument &doc, const QString &fileName);

    // Installs the handler and returns the previous one.
    static FailureHandler setFailureHandler(FailureHandler handler);
    static const FailureHandler &failureHandler();

    // Saves doc to fileName with the indent of every file the program writes
    // (4). The previous file survives a failed write.
    static bool save(const QDomDocument &doc, const QString &fileName);

private:
    static void report(const QString &message);
};
