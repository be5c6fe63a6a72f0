#pragma once

#include <QString>

class QJsonDocument;
class QMessages;

// The two streams of the tool. Results go to standard output, everything meant
// for the person or log watching (issues, failures, progress) to standard error,
// so that a script can pipe the results and still see what went wrong.
namespace Console {

void out(const QString &text);
void err(const QString &text);

// One line on standard output, or a whole JSON document.
void line(const QString &text = QString());
void json(const QJsonDocument &doc);

// "brawlforge-cli: <text>" on standard error: the single line of a failure.
void fail(const QString &text);

// The errors and warnings of a load as "file(line): text" lines on standard
// error. Texts that carry no place of their own are put on line 0 of `file`.
// Returns how many lines were printed.
int printIssues(const QMessages &messages, const QString &file);

// A message text in the "file(line): text" form.
QString issueLine(const QString &text, const QString &file);

// True when standard error is a terminal: only then is progress drawn.
bool errIsTerminal();

} // namespace Console
