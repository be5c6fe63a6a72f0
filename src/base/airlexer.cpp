#include "airlexer.h"

namespace {

bool isAsciiDigit(QChar c)
{
    return c.unicode() >= '0' && c.unicode() <= '9';
}

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r');
}

} // namespace

AirLexer::AirLexer(const QString &text)
{
    setText(text);
}

void AirLexer::setText(const QString &text)
{
    m_text = text;
    m_pos = 0;
    m_line = 0;
    m_comment.clear();
    m_commentLine = -1;
    if (next() == LineEnd)
        next();
}

// The text ends at its last character or at the first NUL, whichever is first.
QChar AirLexer::peek() const
{
    return m_pos < m_text.size() ? m_text.at(m_pos) : QChar();
}

void AirLexer::append(QChar c)
{
    if (m_token.size() < MaxTokenLength)
        m_token.append(c);
}

int AirLexer::next()
{
    m_token.clear();
    State state = Start;
    QString commentBuffer;
    int longestRun = 0;
    int run = 0;
    QChar last;

    for (;;) {
        const QChar c = peek();
        const bool atEnd = c.isNull();
        switch (state) {
        case Start:
            if (atEnd)
                return m_kind = End;
            if (isAsciiDigit(c) || c == QLatin1Char('-')) {
                append(c);
                ++m_pos;
                state = Number;
            } else if (c.isLetter()) {
                append(c);
                ++m_pos;
                state = Ident;
            } else if (isBlank(c)) {
                ++m_pos;
            } else if (c == QLatin1Char(';')) {
                ++m_pos;
                m_comment.clear();
                m_commentLine = m_line;
                state = Comment;
            } else if (c == QLatin1Char('.')) {
                // ".5" reads as "0.5"
                append(QLatin1Char('0'));
                append(c);
                ++m_pos;
                state = Fraction;
            } else if (c == QLatin1Char('\n')) {
                ++m_pos;
                ++m_line;
                state = LineEndState;
            } else {
                append(c);
                ++m_pos;
                switch (c.unicode()) {
                case ',': return m_kind = Comma;
                case '=': return m_kind = Equals;
                case '[': return m_kind = OpenBracket;
                case ']': return m_kind = CloseBracket;
                case ':': return m_kind = Colon;
                default: return m_kind = Other;
                }
            }
            break;
        case Ident:
            if (!atEnd && (c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('_'))) {
                append(c);
                ++m_pos;
                break;
            }
            return m_kind = Identifier;
        case Number:
            if (!atEnd && isAsciiDigit(c)) {
                append(c);
                ++m_pos;
            } else if (c == QLatin1Char('.')) {
                append(c);
                ++m_pos;
                state = Fraction;
            } else {
                return m_kind = Integer;
            }
            break;
        case Fraction:
            if (!atEnd && isAsciiDigit(c)) {
                append(c);
                ++m_pos;
                break;
            }
            return m_kind = Float;
        case Comment:
            if (atEnd)
                return m_kind = End;
            ++m_pos;
            if (c == QLatin1Char('\n')) {
                ++m_line;
                // Ruler lines such as ";-------" never name anything.
                if (!commentBuffer.isEmpty() && longestRun <= 4 && m_comment.isEmpty())
                    m_comment = commentBuffer;
                state = LineEndState;
            } else if (c != QLatin1Char('\r') && commentBuffer.size() < MaxCommentLength) {
                // a run of n equal characters counts n - 1
                run = (!commentBuffer.isEmpty() && c == last) ? run + 1 : 0;
                longestRun = qMax(longestRun, run);
                last = c;
                commentBuffer.append(c);
            }
            break;
        case LineEndState:
            if (c == QLatin1Char('\n')) {
                ++m_pos;
                ++m_line;
                resetLine();
            } else if (c == QLatin1Char(';')) {
                ++m_pos;
                if (m_commentLine < 0)
                    m_commentLine = m_line;
                commentBuffer.clear();
                longestRun = run = 0;
                state = Comment;
            } else if (!atEnd && isBlank(c)) {
                ++m_pos;
            } else {
                return m_kind = LineEnd;
            }
            break;
        }
    }
}

void AirLexer::resetLine()
{
    m_comment.clear();
    m_commentLine = -1;
}

int AirLexer::toInt(bool *ok) const
{
    return m_token.toInt(ok, 10);
}

float AirLexer::toFloat(bool *ok) const
{
    return m_token.toFloat(ok);
}

QString AirLexer::takeComment()
{
    const QString c = m_comment;
    resetLine();
    return c;
}

int AirLexer::skipLine()
{
    for (;;) {
        const QChar c = peek();
        if (c.isNull())
            break;
        ++m_pos;
        if (c == QLatin1Char('\n')) {
            ++m_line;
            break;
        }
    }
    return next();
}

QString AirLexer::readRest(QChar stop, bool respectQuotes)
{
    const qsizetype start = m_pos;
    bool quoted = false;
    for (;;) {
        const QChar c = peek();
        if (c.isNull() || c == QLatin1Char('\n'))
            break;
        if (respectQuotes && c == QLatin1Char('"'))
            quoted = !quoted;
        else if (c == stop && !quoted)
            break;
        ++m_pos;
    }
    return m_text.mid(start, m_pos - start);
}
