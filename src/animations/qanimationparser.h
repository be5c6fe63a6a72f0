#pragma once

#include "base/airlexer.h"
#include "animrecords.h"

#include <QList>
#include <QObject>
#include <QString>

class QMessages;

// Turns AIR text into actions: whole files, DEF files that carry actions among
// their sections, one action edited as text, and box blocks pasted from the
// clipboard. It never stops on bad input: every slip becomes a message in the
// project's issue list (as "file(line): text", the line counted from 1) and the
// value keeps its default. Records come from the animation pools; the caller
// owns what it is given.
class QAnimationParser : public QObject
{
    Q_OBJECT

public:
    // In an AIR file anything outside an action is a slip worth a message; in
    // a DEF (and around an action edited as text) other text stands between
    // the actions and is skipped.
    enum Source { AirText, DefinitionsText };

    // An action with the text lines it covers, for putting edited actions back
    // into a DEF: from its name comment (or header) to its last line of code.
    struct Extent
    {
        AnimAction *action = nullptr;
        int firstLine = 0;
        int lastLine = 0;
    };

    // Messages go to `sink` (dropped when null) under the file name `name`.
    explicit QAnimationParser(QMessages *sink, const QString &name, QObject *parent = nullptr);

    void setSource(Source source) { m_source = source; }
    // Starts at the first line and moves to the first action header.
    void setText(QString text);
    bool atEnd() const { return m_lx.kind() == AirLexer::End; }

    // One action, from the header the parser stands on to the next header.
    // Without a header it gives an action with no frames and the number 0.
    AnimAction *parseAction();
    // Every action to the end of the text, with the checks that need them all
    // (numbers used twice, actions without frames).
    QList<AnimAction *> parseAll(QList<Extent> *extents = nullptr);
    // Box blocks as copied from a frame ("Clsn2: 1" and its box lines), added
    // to the four lists by kind.
    void parseClsn(QString text, QList<QRect> boxes[4]);

    // Errors and warnings reported so far.
    int issueCount() const { return m_issues; }
    static constexpr int MaxIssues = 100;

private:
    struct Field
    {
        int tokens = 0;
        int kind = AirLexer::End;
        QString text;
        QString extra; // the second token of a field that has more than one
    };
    static constexpr int MaxFields = 10;

    int kind() const { return m_lx.kind(); }
    QString token() const { return m_lx.text(); }
    int line() const { return m_lx.line(); }
    bool atLineEnd() const { return kind() == AirLexer::LineEnd || kind() == AirLexer::End; }
    bool isWord(QLatin1StringView word) const;
    void advance();
    void skipRest();
    void endLine();
    bool nextIsBracket() const;

    void report(bool error, int line, const QString &text);
    void unexpected(int line);
    void codeEnds(int line);
    void missing(int line, const QString &what);

    void prepare(QString text);
    void moveToHeader();
    void nameFromComment(AnimAction *action, int headerLine);
    qsizetype lineStart(int line);
    AnimFrame *parseFrame();
    void parseBlock(AnimFrame *frame, int type, bool pasted, QList<QRect> *into);
    void parseBox(int type, bool pasted, QList<QRect> *into);
    void parseDataLine(AnimFrame *frame);
    int readFields(Field *fields, int max, QString *overflow);
    bool intField(const Field &field, int line, qint64 min, qint64 max, qint64 *value);
    bool floatField(const Field &field, int line, float *value);
    void flipField(const Field &field, int line, AnimFrame *frame);
    void transField(const Field &field, int line, AnimFrame *frame);

    QMessages *m_sink;
    QString m_name;
    Source m_source = AirText;
    AirLexer m_lx;
    QString m_text;
    int m_lastCodeLine = -1;   // line of the last token consumed that was not a line end
    int m_beforeHeader = -1;   // last line of code before the current header
    int m_headerLine = -1;     // line of the current header's "[Begin"
    int m_issues = 0;
    int m_actionEnd = -1;
    // Forward cursor over line starts, for reading the comments above a header.
    qsizetype m_scanPos = 0;
    int m_scanLine = 0;
};
