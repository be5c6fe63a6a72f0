#include "qanimationparser.h"

#include "base/qmessages.h"

#include <QHash>
#include <QRegularExpression>

#include <cmath>
#include <limits>

namespace {

constexpr QLatin1StringView ClsnNames[4] = {QLatin1StringView("clsn1"), QLatin1StringView("clsn2"),
                                            QLatin1StringView("clsn1default"), QLatin1StringView("clsn2default")};

int clsnType(const QString &word)
{
    for (int i = 0; i < 4; ++i) {
        if (word.compare(ClsnNames[i], Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

// "Clsn1" or "Clsn2" as the start of a box line: 0, 1, or -1.
int boxLabel(const QString &word)
{
    const int t = clsnType(word);
    return t == 0 || t == 1 ? t : -1;
}

} // namespace

QAnimationParser::QAnimationParser(QMessages *sink, const QString &name, QObject *parent)
    : QObject(parent)
    , m_sink(sink)
    , m_name(name)
{
}

void QAnimationParser::setText(QString text)
{
    prepare(std::move(text));
    moveToHeader();
}


void QAnimationParser::prepare(QString text)
{
    m_text = std::move(text);
    m_lastCodeLine = -1;
    m_beforeHeader = -1;
    m_headerLine = -1;
    m_scanPos = 0;
    m_scanLine = 0;
    // The lexer ends at a NUL; a stray one in a damaged file would hide all
    // that follows, so it reads as a blank instead.
    const qsizetype nul = m_text.indexOf(QChar(0));
    if (nul >= 0) {
        const int at = int(QStringView(m_text).left(nul).count(QLatin1Char('\n')));
        report(false, at, tr("%1(%2): The text holds NUL characters: they are read as blanks"));
        m_text.replace(QChar(0), QLatin1Char(' '));
    }
    m_lx.setText(m_text);
}

bool QAnimationParser::isWord(QLatin1StringView word) const
{
    return kind() == AirLexer::Identifier && m_lx.text().compare(word, Qt::CaseInsensitive) == 0;
}

void QAnimationParser::advance()
{
    if (!atLineEnd())
        m_lastCodeLine = m_lx.line();
    m_lx.next();
}

// On to the next line with code, whatever is left on this one.
void QAnimationParser::skipRest()
{
    if (!atLineEnd()) {
        m_lastCodeLine = m_lx.line();
        m_lx.skipLine();
    }
    while (kind() == AirLexer::LineEnd)
        advance();
}

// The rest of the line must be empty; then on to the next line with code.
void QAnimationParser::endLine()
{
    if (!atLineEnd())
        codeEnds(line());
    skipRest();
}

bool QAnimationParser::nextIsBracket() const
{
    AirLexer probe = m_lx;
    return probe.next() == AirLexer::OpenBracket;
}

// ---------------------------------------------------------------- messages

void QAnimationParser::report(bool error, int line, const QString &text)
{
    if (m_issues > MaxIssues)
        return;
    ++m_issues;
    if (!m_sink)
        return;
    const QString place = QString::number(line + 1);
    QString message;
    if (m_issues > MaxIssues) {
        error = false;
        message = tr("%1(%2): Further issues in this text are not listed").arg(m_name, place);
    } else {
        message = text.arg(m_name, place);
    }
    if (error)
        m_sink->addError(message);
    else
        m_sink->addWarning(message);
}

// The token under the cursor has no place here.
void QAnimationParser::unexpected(int at)
{
    if (atLineEnd())
        report(true, m_lastCodeLine < 0 ? at : m_lastCodeLine, tr("%1(%2): Unexpected end of line"));
    else
        report(true, at, tr("%1(%2): Unexpected token '%3'").replace(QLatin1String("%3"), token()));
}

void QAnimationParser::codeEnds(int at)
{
    report(true, at, tr("%1(%2): Unexpected token '%3' - code ends before line").replace(QLatin1String("%3"), token()));
}

void QAnimationParser::missing(int at, const QString &what)
{
    report(false, at, tr("%1(%2): The line has no %3").replace(QLatin1String("%3"), what));
}

// ---------------------------------------------------------------- actions

// Skips to just after the next "[Begin", or to the end.
void QAnimationParser::moveToHeader()
{
    for (;;) {
        switch (kind()) {
        case AirLexer::End:
            return;
        case AirLexer::LineEnd:
            advance();
            continue;
        case AirLexer::OpenBracket: {
            const int at = line();
            const int before = m_lastCodeLine;
            advance();
            if (isWord(QLatin1StringView("begin"))) {
                m_beforeHeader = before;
                m_headerLine = at;
                advance();
                return;
            }
            if (m_source == AirText) {
                if (kind() == AirLexer::Identifier)
                    report(false, at, tr("%1(%2): Unknown identifier '%3'").replace(QLatin1String("%3"), token()));
                else
                    unexpected(at);
            }
            skipRest();
            continue;
        }
        default:
            if (m_source == AirText) {
                if (kind() == AirLexer::Identifier)
                    report(false, line(), tr("%1(%2): Unknown identifier '%3'").replace(QLatin1String("%3"), token()));
                else
                    unexpected(line());
            }
            skipRest();
            continue;
        }
    }
}

qsizetype QAnimationParser::lineStart(int target)
{
    if (target < m_scanLine) {
        m_scanPos = 0;
        m_scanLine = 0;
    }
    while (m_scanLine < target) {
        const qsizetype nl = m_text.indexOf(QLatin1Char('\n'), m_scanPos);
        if (nl < 0)
            return m_text.size();
        m_scanPos = nl + 1;
        ++m_scanLine;
    }
    return m_scanPos;
}

// The name is the first comment of the run of comment lines right above the
// header, skipping rulers ("; -------"): a blank line or a line of code ends
// the run. A comment at the end of a line of code never names anything.
void QAnimationParser::nameFromComment(AnimAction *action, int headerLine)
{
    action->headerLine = headerLine;
    action->firstLine = headerLine;
    qsizetype end = lineStart(headerLine); // start of the header line
    int lineNo = headerLine;
    while (end > 0 && lineNo - 1 > m_beforeHeader) {
        // The line above: [start, end - 1), the line feed at end - 1.
        qsizetype start = end - 1;
        while (start > 0 && m_text.at(start - 1) != QLatin1Char('\n'))
            --start;
        const QStringView text = QStringView(m_text).mid(start, end - 1 - start);
        qsizetype i = 0;
        while (i < text.size() && (text.at(i) == QLatin1Char(' ') || text.at(i) == QLatin1Char('\t')
                                   || text.at(i) == QLatin1Char('\r')))
            ++i;
        if (i >= text.size() || text.at(i) != QLatin1Char(';'))
            break; // blank line or code
        --lineNo;
        QString buffer;
        int longest = 0;
        int run = 0;
        QChar last;
        for (qsizetype j = i + 1; j < text.size() && buffer.size() < AirLexer::MaxCommentLength; ++j) {
            const QChar c = text.at(j);
            if (c == QLatin1Char('\r'))
                continue;
            run = (!buffer.isEmpty() && c == last) ? run + 1 : 0;
            longest = qMax(longest, run);
            last = c;
            buffer.append(c);
        }
        if (!buffer.isEmpty() && longest <= 4) {
            // At most 255 characters, so that "; " and the name read back the same.
            QString name = buffer.trimmed().left(AirLexer::MaxCommentLength - 1);
            if (!name.isEmpty() && name.back().isHighSurrogate())
                name.chop(1);
            action->name = name.trimmed();
            action->firstLine = lineNo;
        }
        end = start;
    }
}

AnimAction *QAnimationParser::parseAction()
{
    AnimAction *a = AnimPool::takeAction();
    // The line of "[Begin": the token after it may already stand on the next.
    const int header = m_headerLine >= 0 ? m_headerLine : line();
    m_headerLine = -1;
    if (atEnd()) {
        a->headerLine = a->firstLine = header;
        report(true, header, tr("%1(%2): No action header found"));
        m_actionEnd = header;
        return a;
    }
    nameFromComment(a, header);

    // One message for a damaged header is enough.
    bool bad = false;
    auto fail = [&] {
        if (!bad)
            unexpected(header);
        bad = true;
    };
    bool haveNumber = false;
    if (isWord(QLatin1StringView("action"))) {
        advance();
    } else if (kind() == AirLexer::Identifier && token().startsWith(QLatin1String("action"), Qt::CaseInsensitive)) {
        // "[Begin Action7]"
        bool ok = false;
        const int n = token().mid(6).toInt(&ok, 10);
        if (ok) {
            a->number = n;
            haveNumber = true;
        } else {
            fail();
        }
        advance();
    } else {
        fail();
        if (!atLineEnd() && kind() != AirLexer::Integer)
            advance();
    }
    if (!haveNumber) {
        if (kind() == AirLexer::Integer && token() != QLatin1String("-")) {
            bool ok = false;
            const int n = m_lx.toInt(&ok);
            if (ok)
                a->number = n;
            else
                report(false, header, tr("%1(%2): Number out of range '%3'").replace(QLatin1String("%3"), token()));
            advance();
        } else {
            fail();
        }
    }
    if (kind() == AirLexer::CloseBracket)
        advance();
    else
        fail();
    if (bad)
        skipRest();
    else
        endLine();

    while (kind() != AirLexer::OpenBracket && kind() != AirLexer::End) {
        if (AnimFrame *f = parseFrame())
            a->frames.append(f);
    }
    m_actionEnd = m_lastCodeLine;
    moveToHeader();
    return a;
}

QList<AnimAction *> QAnimationParser::parseAll(QList<Extent> *extents)
{
    QList<AnimAction *> actions;
    QHash<qint32, int> seen;
    while (!atEnd()) {
        AnimAction *a = parseAction();
        actions.append(a);
        if (extents)
            extents->append(Extent{a, a->firstLine, qMax(m_actionEnd, a->headerLine)});
        const auto it = seen.constFind(a->number);
        if (it != seen.constEnd()) {
            report(false, a->headerLine,
                   tr("%1(%2): Action %3 is already defined at line %4; only one of them can play")
                       .replace(QLatin1String("%3"), QString::number(a->number))
                       .replace(QLatin1String("%4"), QString::number(it.value() + 1)));
        } else {
            seen.insert(a->number, a->headerLine);
        }
        if (a->frames.isEmpty()) {
            report(false, a->headerLine,
                   tr("%1(%2): Action %3 has no frames").replace(QLatin1String("%3"), QString::number(a->number)));
        }
    }
    return actions;
}

// ---------------------------------------------------------------- frames

AnimFrame *QAnimationParser::parseFrame()
{
    AnimFrame *f = AnimPool::takeFrame();
    f->lines[AnimFrame::FirstLine] = line();
    int keywordLine = -1;
    while (kind() == AirLexer::Identifier) {
        const int at = line();
        if (keywordLine < 0)
            keywordLine = at;
        const int type = clsnType(token());
        if (type >= 0) {
            if ((type == AnimFrame::Clsn1 || type == AnimFrame::Clsn2) && nextIsBracket()) {
                report(false, at, tr("%1(%2): A box line outside a Clsn block is ignored"));
                skipRest();
            } else {
                parseBlock(f, type, false, &f->clsn[type]);
            }
        } else if (isWord(QLatin1StringView("loopstart"))) {
            f->lines[AnimFrame::LoopstartLine] = at;
            f->loopstart = true;
            advance();
            endLine();
        } else if (isWord(QLatin1StringView("interpolate"))) {
            advance();
            if (kind() == AirLexer::Identifier) {
                const QString what = token().toLower();
                if (what == QLatin1String("offset")) {
                    f->interpOffset = true;
                    f->lines[AnimFrame::InterpOffsetLine] = at;
                } else if (what == QLatin1String("blend")) {
                    f->interpBlend = true;
                    f->lines[AnimFrame::InterpBlendLine] = at;
                } else if (what == QLatin1String("scale")) {
                    f->interpScale = true;
                    f->lines[AnimFrame::InterpScaleLine] = at;
                } else if (what == QLatin1String("angle")) {
                    f->interpAngle = true;
                    f->lines[AnimFrame::InterpAngleLine] = at;
                } else {
                    report(false, at,
                           tr("%1(%2): Invalid interpolation type '%3'").replace(QLatin1String("%3"), token()));
                }
                advance();
                endLine();
            } else {
                unexpected(at);
                skipRest();
            }
        } else {
            report(false, at, tr("%1(%2): Unknown identifier '%3'").replace(QLatin1String("%3"), token()));
            skipRest();
        }
    }

    if (kind() == AirLexer::OpenBracket || kind() == AirLexer::End) {
        // Keywords and boxes at the end of an action belong to no frame.
        if (keywordLine >= 0)
            report(false, keywordLine, tr("%1(%2): No frame follows: the lines up to the next action have no effect"));
        AnimPool::giveFrame(f);
        return nullptr;
    }
    parseDataLine(f);
    return f;
}

void QAnimationParser::parseBlock(AnimFrame *f, int type, bool pasted, QList<QRect> *into)
{
    const int head = line();
    if (f) {
        f->lines[AnimFrame::ClsnHeadLine + type] = head;
        f->clsnGiven |= quint8(1u << type);
    }
    advance();
    bool bad = false;
    if (kind() == AirLexer::Colon) {
        advance();
    } else {
        unexpected(head);
        bad = true;
    }
    qint64 count = -1;
    if (kind() == AirLexer::Integer && token() != QLatin1String("-")) {
        bool ok = false;
        count = m_lx.toInt(&ok);
        if (!ok || count < 0 || count > 0xFFFF) {
            report(false, head, tr("%1(%2): Number out of range '%3'").replace(QLatin1String("%3"), token()));
            count = -1;
        }
        advance();
        endLine();
    } else {
        if (!bad)
            unexpected(head);
        skipRest();
    }

    // Box lines are read as long as they come, whatever the count says: the
    // memory goes by the text, and a wrong count costs no frame.
    int read = 0;
    int last = head;
    while (kind() == AirLexer::Identifier && boxLabel(token()) >= 0 && nextIsBracket()) {
        last = line();
        parseBox(type, pasted, into);
        ++read;
    }
    if (count >= 0 && read != count) {
        report(false, head, tr("%1(%2): The block announces %3 boxes but holds %4")
                                .replace(QLatin1String("%3"), QString::number(count))
                                .replace(QLatin1String("%4"), QString::number(read)));
    }
    if (f)
        f->lines[AnimFrame::ClsnEndLine + type] = last;
}

void QAnimationParser::parseBox(int type, bool pasted, QList<QRect> *into)
{
    const int at = line();
    const int label = boxLabel(token());
    // In a file the block's header decides the kind, as the engine reads it:
    // kfm's own "Clsn1: 1" over a "Clsn2[0]" line is an attack box. Pasted
    // blocks check their lines against the other kind, so each box reports
    // itself; it is stored all the same.
    if (pasted && label == (type & 1))
        unexpected(at);
    advance();
    advance(); // the bracket
    if (kind() == AirLexer::Integer)
        advance();
    else
        unexpected(at);
    if (kind() == AirLexer::CloseBracket)
        advance();
    else
        unexpected(at);
    if (kind() == AirLexer::Equals)
        advance();
    else
        unexpected(at);

    Field fields[4];
    QString overflow;
    readFields(fields, 4, &overflow);
    // A box starts as (0, 0, -1, -1): a missing number keeps that value.
    qint64 v[4] = {0, 0, -1, -1};
    static const char *const names[4] = {QT_TR_NOOP("x1"), QT_TR_NOOP("y1"), QT_TR_NOOP("x2"), QT_TR_NOOP("y2")};
    for (int i = 0; i < 4; ++i) {
        if (fields[i].tokens == 0)
            missing(at, tr(names[i]));
        else
            intField(fields[i], at, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max(), &v[i]);
    }
    if (!overflow.isEmpty())
        report(true, at, tr("%1(%2): Unexpected token '%3' - code ends before line").replace(QLatin1String("%3"), overflow));
    into->append(QRect(QPoint(int(v[0]), int(v[1])), QPoint(int(v[2]), int(v[3]))));
    endLine();
}

// Reads the comma-separated fields up to the end of the line. Tokens past the
// `max`-th field are not kept: the first of them goes to `overflow`, trailing
// empty fields (commas) are fine.
int QAnimationParser::readFields(Field *fields, int max, QString *overflow)
{
    int n = 0;
    while (!atLineEnd()) {
        if (kind() == AirLexer::Comma) {
            ++n;
        } else if (n < max) {
            Field &f = fields[n];
            if (f.tokens == 0) {
                f.kind = kind();
                f.text = token();
            } else if (f.tokens == 1) {
                f.extra = token();
            }
            ++f.tokens;
        } else if (overflow->isEmpty()) {
            *overflow = token();
        }
        advance();
    }
    return n + 1;
}

bool QAnimationParser::intField(const Field &field, int at, qint64 min, qint64 max, qint64 *value)
{
    if (field.tokens > 1)
        report(true, at, tr("%1(%2): Unexpected token '%3'").replace(QLatin1String("%3"), field.extra));
    bool ok = false;
    qint64 v = 0;
    if (field.kind == AirLexer::Integer && field.text != QLatin1String("-")) {
        v = field.text.toLongLong(&ok, 10);
    } else if (field.kind == AirLexer::Float) {
        const double d = field.text.toDouble(&ok);
        if (ok && std::isfinite(d) && std::abs(d) < 1e18) {
            // The engine reads whole numbers: "2.5" is 2.
            v = qint64(d);
            report(false, at, tr("%1(%2): '%3' is not a whole number: %4 is used")
                                  .replace(QLatin1String("%3"), field.text)
                                  .replace(QLatin1String("%4"), QString::number(v)));
        } else {
            ok = false;
        }
    } else {
        report(true, at, tr("%1(%2): Unexpected token '%3'").replace(QLatin1String("%3"), field.text));
        return false;
    }
    if (!ok || v < min || v > max) {
        report(false, at, tr("%1(%2): Number out of range '%3'").replace(QLatin1String("%3"), field.text));
        return false;
    }
    *value = v;
    return true;
}

bool QAnimationParser::floatField(const Field &field, int at, float *value)
{
    if (field.tokens == 0)
        return false;
    if (field.tokens > 1)
        report(true, at, tr("%1(%2): Unexpected token '%3'").replace(QLatin1String("%3"), field.extra));
    if ((field.kind != AirLexer::Integer && field.kind != AirLexer::Float) || field.text == QLatin1String("-")) {
        report(true, at, tr("%1(%2): Unexpected token '%3'").replace(QLatin1String("%3"), field.text));
        return false;
    }
    bool ok = false;
    const float v = field.text.toFloat(&ok);
    if (!ok || !std::isfinite(v)) {
        report(false, at, tr("%1(%2): Number out of range '%3'").replace(QLatin1String("%3"), field.text));
        return false;
    }
    *value = v;
    return true;
}

void QAnimationParser::flipField(const Field &field, int at, AnimFrame *f)
{
    if (field.tokens == 0)
        return;
    const QString v = field.tokens == 1 ? field.text.toUpper() : QString();
    if (field.kind == AirLexer::Identifier && v == QLatin1String("H"))
        f->flip = AnimFrame::FlipH;
    else if (field.kind == AirLexer::Identifier && v == QLatin1String("V"))
        f->flip = AnimFrame::FlipV;
    else if (field.kind == AirLexer::Identifier && (v == QLatin1String("VH") || v == QLatin1String("HV")))
        f->flip = AnimFrame::FlipH | AnimFrame::FlipV;
    else
        report(false, at, tr("%1(%2): Invalid flip type '%3'").replace(QLatin1String("%3"), field.text));
}

void QAnimationParser::transField(const Field &field, int at, AnimFrame *f)
{
    if (field.tokens == 0)
        return;
    static const QRegularExpression alpha(QStringLiteral("\\AAS([0-9]{1,3})D([0-9]{1,3})\\z"),
                                          QRegularExpression::CaseInsensitiveOption);
    const QString v = field.tokens == 1 && field.kind == AirLexer::Identifier ? field.text.toUpper() : QString();
    if (v == QLatin1String("A")) {
        f->trans = AnimFrame::TransAdd;
        f->src = 256;
        f->dst = 256;
    } else if (v == QLatin1String("A1")) {
        f->trans = AnimFrame::TransAdd;
        f->src = 256;
        f->dst = 128;
    } else if (v == QLatin1String("S")) {
        f->trans = AnimFrame::TransSub;
    } else if (const QRegularExpressionMatch m = alpha.match(v); !v.isEmpty() && m.hasMatch()) {
        f->trans = AnimFrame::TransAdd;
        f->src = m.captured(1).toUShort();
        f->dst = m.captured(2).toUShort();
    } else {
        report(false, at, tr("%1(%2): Invalid transparency '%3'").replace(QLatin1String("%3"), field.text));
    }
}

void QAnimationParser::parseDataLine(AnimFrame *f)
{
    const int at = line();
    f->lines[AnimFrame::DataLine] = at;
    Field fields[MaxFields];
    QString overflow;
    const int count = readFields(fields, MaxFields, &overflow);

    static const char *const names[5] = {QT_TR_NOOP("sprite group"), QT_TR_NOOP("sprite number"),
                                         QT_TR_NOOP("x offset"), QT_TR_NOOP("y offset"), QT_TR_NOOP("time")};
    qint64 values[5] = {0, 0, 0, 0, 0};
    for (int i = 0; i < 5; ++i) {
        if (i >= count || fields[i].tokens == 0) {
            missing(at, tr(names[i]));
            continue;
        }
        const bool small = i < 2;
        intField(fields[i], at, small ? -32768 : std::numeric_limits<qint32>::min(),
                 small ? 32767 : std::numeric_limits<qint32>::max(), &values[i]);
    }
    f->group = qint16(values[0]);
    f->number = qint16(values[1]);
    f->x = qint32(values[2]);
    f->y = qint32(values[3]);
    f->time = qint32(values[4]);
    flipField(fields[5], at, f);
    transField(fields[6], at, f);
    floatField(fields[7], at, &f->scaleX);
    floatField(fields[8], at, &f->scaleY);
    floatField(fields[9], at, &f->angle);
    if (!overflow.isEmpty())
        report(true, at, tr("%1(%2): Unexpected token '%3' - code ends before line").replace(QLatin1String("%3"), overflow));
    endLine();
}

// ---------------------------------------------------------------- pasted boxes

void QAnimationParser::parseClsn(QString text, QList<QRect> boxes[4])
{
    prepare(std::move(text));
    while (kind() == AirLexer::LineEnd)
        advance();
    while (!atEnd()) {
        const int type = kind() == AirLexer::Identifier ? clsnType(token()) : -1;
        if (type < 0) {
            report(false, line(), tr("%1(%2): Invalid flip type '%3'").replace(QLatin1String("%3"), token()));
            skipRest();
            continue;
        }
        parseBlock(nullptr, type, true, &boxes[type]);
    }
}
