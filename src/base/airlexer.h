#pragma once

#include <QString>

// The tokenizer shared by the animation parser, the DEF scan of a project and
// the section outline of M.U.G.E.N. texts. It walks the text once, character by
// character, counts lines from 0 and remembers the comment written directly
// above the current line, which names the action that follows it.
class AirLexer
{
public:
    enum Kind : int {
        Other = 0,        // any other single character
        LineEnd = 1,
        End = 2,
        Identifier = 3,
        Integer = 4,
        Float = 5,
        Equals = 6,
        Comma = 7,
        OpenBracket = 8,
        CloseBracket = 9,
        Colon = 10
    };

    static constexpr int MaxTokenLength = 128;
    static constexpr int MaxCommentLength = 256;

    explicit AirLexer(const QString &text = QString());

    // Restarts at the first line and reads the first token; a leading line end
    // is dropped.
    void setText(const QString &text);

    int next();
    int kind() const { return m_kind; }
    QString text() const { return m_token; }
    int line() const { return m_line; }
    int toInt(bool *ok = nullptr) const;
    float toFloat(bool *ok = nullptr) const;

    // Comment directly above the current line (empty when there is none) and
    // the line it began on (-1 when none).
    QString comment() const { return m_comment; }
    int commentLine() const { return m_commentLine; }
    QString takeComment();

    // Reads up to and including the next line feed and returns the next token.
    int skipLine();

    // Raw text from just after the current token up to a line feed, the stop
    // character or the end, not including them; the next token starts there.
    // With respectQuotes, a stop character inside double quotes does not stop.
    QString readRest(QChar stop, bool respectQuotes = false);

private:
    enum State { Start, Ident, Number, Fraction, Comment, LineEndState };

    QChar peek() const;
    void append(QChar c);
    void resetLine();

    QString m_text;
    qsizetype m_pos = 0;
    int m_line = 0;
    int m_kind = End;
    QString m_token;
    QString m_comment;
    int m_commentLine = -1;
};
