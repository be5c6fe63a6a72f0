#include "qmugensyntaxchecker.h"

#include "code/qsyntaxproperties.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text, int n = -1)
{
    return QCoreApplication::translate("QMugenSyntaxProcessor", text, nullptr, n);
}

bool identStart(QChar c)
{
    return c.isLetter();
}

bool identChar(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('.') || c == QLatin1Char('_');
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool lineEnd(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r') || c.isNull();
}

bool blank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

const char *const remapWords[] = {"x", "y", "z", "a", "b", "c", "s", nullptr};
const char *const keymapWords[] = {"x", "y", "z", "a", "b", "c", "x2", "y2", "z2", "a2", "b2", "c2", nullptr};
const char *const statedefTypes[] = {"s", "c", "a", "l", "u", nullptr};
const char *const statedefMoveTypes[] = {"a", "i", "h", "u", nullptr};
const char *const statedefPhysics[] = {"s", "c", "a", "n", "u", nullptr};
const char *const statedefExpressions[] = {"anim",           "ctrl",            "poweradd",    "juggle",
                                           "facep2",         "hitdefpersist",   "movehitpersist",
                                           "hitcountpersist", "sprpriority",   nullptr};
const char *const interpolations[] = {"offset", "blend", "scale", "angle", nullptr};
const char *const flips[] = {"h", "v", "hv", "vh", nullptr};

bool inList(QStringView word, const char *const *list)
{
    for (; *list; ++list) {
        if (word.compare(QLatin1String(*list), Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

} // namespace

QMugenSyntaxChecker::FormatSink::~FormatSink() = default;

QMugenSyntaxChecker::QMugenSyntaxChecker(const QMugenSyntaxProperties *syntax)
    : m_syntax(syntax)
{
    m_issues.reserve(8);
    m_parens.reserve(16);
}

// ---------------------------------------------------------------- tokenizer

void QMugenSyntaxChecker::next()
{
    while (m_pos < m_size && blank(m_line[m_pos]))
        ++m_pos;
    m_start = m_pos;
    m_textLength = 0;
    auto put = [this](QChar c) {
        if (m_textLength < MaxToken)
            m_text[m_textLength++] = c;
    };
    auto at = [this](int i) { return i < m_size ? m_line[i] : QChar(); };
    auto number = [&]() {
        m_kind = TInt;
        while (isDigit(at(m_pos)))
            put(m_line[m_pos++]);
        if (at(m_pos) == QLatin1Char('.')) {
            m_kind = TReal;
            put(m_line[m_pos++]);
            while (isDigit(at(m_pos)))
                put(m_line[m_pos++]);
        }
    };

    const QChar c = at(m_pos);
    if (m_pos >= m_size || lineEnd(c)) {
        m_kind = TEnd;
        m_length = 0;
        m_pos = m_size;
        return;
    }
    if (c == QLatin1Char(';')) {
        setFormat(m_pos, m_size - m_pos, Comment);
        m_kind = TEnd;
        m_length = 0;
        m_pos = m_size;
        return;
    }
    if (isDigit(c)) {
        number();
    } else if (identStart(c)) {
        m_kind = TIdent;
        put(m_line[m_pos++]);
        while (identChar(at(m_pos))) {
            const QChar d = m_line[m_pos];
            if (!m_wholeIdentifiers && isDigit(d)) {
                const QChar after = at(m_pos + 1);
                if (!(after.isLetter() || after == QLatin1Char('.') || after == QLatin1Char('_')))
                    break;
            }
            put(d);
            ++m_pos;
        }
    } else if (c == QLatin1Char('-') && !m_minusIsOperator
               && (isDigit(at(m_pos + 1)) || at(m_pos + 1) == QLatin1Char('.'))) {
        put(m_line[m_pos++]);
        if (at(m_pos) == QLatin1Char('.'))
            put(QLatin1Char('0'));
        number();
    } else if (c == QLatin1Char('.')) {
        put(QLatin1Char('0'));
        number();
    } else if (c == QLatin1Char('"')) {
        int end = m_pos + 1;
        while (end < m_size && m_line[end] != QLatin1Char('"') && !lineEnd(m_line[end]))
            ++end;
        if (end >= m_size || m_line[end] != QLatin1Char('"')) {
            // An unterminated string hides the rest of the line.
            m_kind = TEnd;
            m_length = 0;
            m_pos = m_size;
            return;
        }
        for (int i = m_pos + 1; i < end; ++i)
            put(m_line[i]);
        m_kind = TString;
        m_pos = end + 1;
    } else {
        put(m_line[m_pos++]);
        const QChar n = at(m_pos);
        auto twice = [&](int single, int doubled) {
            if (n == c) {
                put(m_line[m_pos++]);
                m_kind = doubled;
            } else {
                m_kind = single;
            }
        };
        auto withEquals = [&](int single, int combined) {
            if (n == QLatin1Char('=')) {
                put(m_line[m_pos++]);
                m_kind = combined;
            } else {
                m_kind = single;
            }
        };
        switch (c.unicode()) {
        case '+': m_kind = TPlus; break;
        case '-': m_kind = TMinus; break;
        case '/': m_kind = TSlash; break;
        case '%': m_kind = TPercent; break;
        case '*': twice(TStar, TPow); break;
        case '&': twice(TAmp, TAnd); break;
        case '|': twice(TBar, TOr); break;
        case '^': twice(TCaret, TXor); break;
        case '=': m_kind = TEq; break;
        case '<': withEquals(TLt, TLe); break;
        case '>': withEquals(TGt, TGe); break;
        case '!': withEquals(TNot, TNe); break;
        case ',': m_kind = TComma; break;
        case '(': m_kind = TLParen; break;
        case ')': m_kind = TRParen; break;
        case '{': m_kind = TLBrace; break;
        case '}': m_kind = TRBrace; break;
        case '[': m_kind = TLBracket; break;
        case ']': m_kind = TRBracket; break;
        case ':': m_kind = TColon; break;
        case '~': m_kind = TTilde; break;
        case '$': m_kind = TDollar; break;
        default: m_kind = TOther; break;
        }
        if (m_kind == TLParen || m_kind == TLBracket || m_kind == TRParen || m_kind == TRBracket) {
            Parenthesis p;
            p.type = (m_kind == TLParen || m_kind == TLBracket) ? Parenthesis::Opening : Parenthesis::Closing;
            p.character = c;
            p.position = m_start;
            m_parens.append(p);
        }
    }
    m_length = m_pos - m_start;
}

QString QMugenSyntaxChecker::lowerToken()
{
    for (int i = 0; i < m_textLength; ++i)
        m_lower[i] = m_text[i].toLower();
    return QString::fromRawData(m_lower, m_textLength);
}

bool QMugenSyntaxChecker::isIdent(const char *word) const
{
    return m_kind == TIdent && tokenText().compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

// ---------------------------------------------------------------- issues and formats

void QMugenSyntaxChecker::setFormat(int start, int length, int role)
{
    if (m_sink && length > 0)
        m_sink->format(start, length, role);
}

void QMugenSyntaxChecker::addIssue(int kind, int start, int end, const QString &message)
{
    if (kind == BlockIssue::Error && !m_reportErrors)
        return;
    BlockIssue issue;
    issue.kind = quint8(kind);
    issue.start = start;
    issue.end = qMax(start, end);
    issue.message = message;
    m_issues.append(issue);
}

void QMugenSyntaxChecker::errorOnToken(const QString &message)
{
    addIssue(BlockIssue::Error, m_start, tokenEnd() - 1, message);
}

void QMugenSyntaxChecker::unexpected(bool warn)
{
    const int kind = warn ? BlockIssue::Warning : BlockIssue::Error;
    if (m_kind == TEnd)
        addIssue(kind, m_start, m_start, tr("Unexpected end of line"));
    else
        addIssue(kind, m_start, tokenEnd() - 1, tr("Unexpected token '%1'").arg(tokenText()));
}

bool QMugenSyntaxChecker::expect(int kind, int role)
{
    if (m_kind == kind) {
        if (role >= 0)
            formatToken(role);
        next();
        return true;
    }
    unexpected();
    if (m_kind != TEnd)
        next();
    return false;
}

bool QMugenSyntaxChecker::expectNumber(int kind)
{
    if (m_kind == TMinus) {
        formatToken(Number);
        next();
    }
    // A whole number is a good real number.
    if (kind == TReal && m_kind == TInt)
        kind = TInt;
    return expect(kind, Number);
}

void QMugenSyntaxChecker::consumeRest()
{
    while (m_kind != TEnd)
        next();
}

// ---------------------------------------------------------------- lines

int QMugenSyntaxChecker::checkLine(QStringView text, int previousState, FormatSink *sink)
{
    m_sink = sink;
    m_issues.clear();
    m_parens.clear();
    m_header = false;
    m_trigger = false;
    m_depth = 0;
    m_minusIsOperator = false;
    m_wholeIdentifiers = true;
    m_line = text.data();
    m_size = int(qMin<qsizetype>(text.size(), 0x7FFFFFF));
    m_pos = 0;
    m_state = 0;
    const int previous = section(previousState);

    if (m_size > 0) {
        next();
        if (m_kind == TLBracket) {
            m_header = true;
            header();
        } else {
            sectionLine(previous);
        }
        if (m_kind != TEnd) {
            const int first = m_start;
            // A trailing comma is a slip the engine reads past.
            const bool trailingComma = m_kind == TComma && (next(), m_kind == TEnd);
            int last = m_start;
            while (m_kind != TEnd) {
                last = tokenEnd() - 1;
                next();
            }
            if (trailingComma)
                addIssue(BlockIssue::Warning, first, first, tr("Trailing comma"));
            else
                addIssue(BlockIssue::Error, first, qMax(first, last), tr("Syntax error - code ends before line"));
        }
    }
    if (m_state == 0)
        m_state = previous;
    if (!m_header && isStateSection(m_state) && ((previousState > 0 && (previousState & TriggerSeen)) || m_trigger))
        m_state |= TriggerSeen;
    m_sink = nullptr;
    return m_state;
}

void QMugenSyntaxChecker::header()
{
    const int open = m_start;
    const int issueMark = m_issues.size();
    next();
    bool bad = false;
    auto invalid = [&]() {
        if (!bad)
            errorOnToken(tr("Invalid block"));
        bad = true;
    };
    auto skipTo = [&](int kind) {
        while (m_kind != TEnd && m_kind != kind)
            next();
    };
    if (m_kind != TIdent) {
        invalid();
    } else if (m_freeSections) {
        m_state = FreeSection;
        skipTo(TRBracket);
        if (m_kind != TRBracket)
            invalid();
    } else {
        const QString w = lowerToken();
        auto bgFamily = [&](QStringView word) {
            // Storyboard layers and screen-pack backgrounds name their
            // sections after the background: [BG0], [BG0Def], [BG0Ctrl x].
            if (word.endsWith(QLatin1String("ctrldef")))
                return int(BGCtrlDefSection);
            if (word.endsWith(QLatin1String("ctrl")))
                return int(BGCtrlSection);
            if (word.endsWith(QLatin1String("def")))
                return int(BGDefSection);
            return int(BGSection);
        };
        static const struct { const char *word; int state; } plain[] = {
            {"command", CommandSection},   {"data", DataSection},         {"size", SizeSection},
            {"velocity", VelocitySection}, {"movement", MovementSection}, {"info", InfoSection},
            {"files", FilesSection},       {"arcade", ArcadeSection},     {"remap", RemapSection},
            {"defaults", DefaultsSection}, {"camera", CameraSection},     {"playerinfo", PlayerInfoSection},
            {"bound", BoundSection},       {"scaling", ScalingSection},   {"stageinfo", StageInfoSection},
            {"shadow", ShadowSection},     {"reflection", ReflectionSection}, {"music", MusicSection},
            {"bgdef", BGDefSection},       {"scenedef", SceneDefSection}, {"def", DefSection}};
        int general = -1;
        for (const auto &p : plain) {
            if (w == QLatin1String(p.word)) {
                general = p.state;
                break;
            }
        }
        if (w == QLatin1String("begin")) {
            next();
            if (!isIdent("action")) {
                invalid();
            } else {
                next();
                if (m_kind != TInt) {
                    invalid();
                } else {
                    m_state = ActionSection;
                    next();
                    if (m_kind != TRBracket)
                        invalid();
                }
            }
        } else if (w == QLatin1String("state")) {
            m_state = StateSection;
            skipTo(TRBracket);
            if (m_kind != TRBracket && !bad) {
                addIssue(BlockIssue::Error, open, qMax(open, m_start - 1), tr("Wrong State"));
                bad = true;
            }
        } else if (w == QLatin1String("statedef")) {
            next();
            if (m_kind != TInt) {
                invalid();
            } else {
                m_state = StatedefSection;
                next();
                if (m_kind == TComma)
                    skipTo(TRBracket);
                if (m_kind != TRBracket) {
                    if (!bad)
                        errorOnToken(m_kind == TEnd ? tr("Invalid block") : tr("Wrong StateDef"));
                    bad = true;
                    skipTo(TRBracket);
                }
            }
        } else if (w == QLatin1String("bg") || w == QLatin1String("bgctrl") || w == QLatin1String("bgctrldef")) {
            m_state = w == QLatin1String("bg")       ? BGSection
                      : w == QLatin1String("bgctrl") ? BGCtrlSection
                                                     : BGCtrlDefSection;
            skipTo(TRBracket);
            if (m_kind != TRBracket)
                invalid();
        } else if (w.size() > 2 && w.startsWith(QLatin1String("bg")) && isDigit(w.at(2))) {
            m_state = bgFamily(w);
            skipTo(TRBracket);
            if (m_kind != TRBracket)
                invalid();
        } else if (w == QLatin1String("palette") || w == QLatin1String("fnt") || w == QLatin1String("scene")
                   || general >= 0 || m_syntax->matches(QStringLiteral("([a-z]{2,2}.)?quotes"), w)) {
            if (w == QLatin1String("palette")) {
                next();
                if (isIdent("keymap"))
                    m_state = PaletteKeymapSection;
            } else if (w == QLatin1String("fnt")) {
                next();
                if (isIdent("v2"))
                    m_state = FontSection;
            } else if (w == QLatin1String("scene")) {
                m_state = SceneSection;
                next();
            } else {
                m_state = general >= 0 ? general : int(QuotesSection);
            }
            if (m_state == 0) {
                invalid();
            } else {
                next();
                if (m_kind != TRBracket && m_kind != TEnd)
                    next();
                if (m_kind != TRBracket)
                    invalid();
            }
        } else {
            invalid();
        }
    }
    // A bad header is one issue: the rest of it up to "]" goes with it.
    if (bad)
        skipTo(TRBracket);
    if (m_kind == TRBracket)
        next();
    const int end = m_start;
    int last = end;
    while (last > open && blank(m_line[last - 1]))
        --last;
    setFormat(open, last - open, Block);
    if (bad && m_issues.size() == issueMark)
        addIssue(BlockIssue::Error, open, qMax(open, last - 1), tr("Invalid block"));
}

void QMugenSyntaxChecker::sectionLine(int state)
{
    if (m_kind == TEnd)
        return;
    if (state == FreeSection) {
        consumeRest();
        return;
    }
    if (m_kind == TIdent && isIdent("type") && state != StatedefSection && state != ActionSection) {
        typeLine(state);
        return;
    }
    switch (state) {
    case NoSection: return;
    case RemapSection: remapLine(); return;
    case DefaultsSection: defaultsLine(); return;
    case CommandSection: commandLine(); return;
    case StatedefSection: statedefLine(); return;
    case QuotesSection: quotesLine(); return;
    case ActionSection: actionLine(); return;
    case InfoSection: infoLine(); return;
    case PaletteKeymapSection: paletteKeymapLine(); return;
    case DataSection: checkParam(m_syntax->data, QStringLiteral("Data")); return;
    case SizeSection: checkParam(m_syntax->size, QStringLiteral("Size")); return;
    case VelocitySection: checkParam(m_syntax->velocity, QStringLiteral("Velocity")); return;
    case MovementSection: checkParam(m_syntax->movement, QStringLiteral("Movement")); return;
    case FilesSection: checkParam(m_syntax->files, QStringLiteral("Files")); return;
    case ArcadeSection: checkParam(m_syntax->arcade, QStringLiteral("Arcade")); return;
    case CameraSection: checkParam(m_syntax->camera, QStringLiteral("Camera")); return;
    case PlayerInfoSection: checkParam(m_syntax->playerinfo, QStringLiteral("PlayerInfo")); return;
    case BoundSection: checkParam(m_syntax->bound, QStringLiteral("Bound")); return;
    case ScalingSection: checkParam(m_syntax->scaling, QStringLiteral("Scaling")); return;
    case StageInfoSection: checkParam(m_syntax->stageinfo, QStringLiteral("StageInfo")); return;
    case ShadowSection: checkParam(m_syntax->shadow, QStringLiteral("Shadow")); return;
    case ReflectionSection: checkParam(m_syntax->reflection, QStringLiteral("Reflection")); return;
    case MusicSection: checkParam(m_syntax->music, QStringLiteral("Music")); return;
    case BGDefSection: checkParam(m_syntax->bgdef, QStringLiteral("BGDef")); return;
    case BGCtrlDefSection: checkParam(m_syntax->bgctrldef, QStringLiteral("BGCtrlDef")); return;
    case FontSection: checkParam(m_syntax->fnt, QStringLiteral("FNT v2")); return;
    case SceneDefSection: checkParam(m_syntax->scenedef, QStringLiteral("SceneDef")); return;
    case SceneSection: checkParam(m_syntax->scene, QStringLiteral("Scene")); return;
    case BGCtrlSection: untypedLine(m_syntax->bgCtrlControllers, QStringLiteral("BGCtrl")); return;
    case DefSection: untypedLine(m_syntax->defControllers, QStringLiteral("Def")); return;
    default: break;
    }
    stateLine(state);
}

void QMugenSyntaxChecker::typeLine(int state)
{
    formatToken(Keyword);
    next();
    expect(TEq);
    const QList<SyntaxController *> *list = nullptr;
    int base = 0;
    QString message = tr("Unknown 'State' type");
    switch (state) {
    case StateSection: list = &m_syntax->stateControllers; base = FirstStateController; break;
    case BGCtrlSection:
        list = &m_syntax->bgCtrlControllers;
        base = FirstBGCtrl;
        message = tr("Unknown 'BG Ctrl' type");
        break;
    case BGSection: list = &m_syntax->bgControllers; base = FirstBG; message = tr("Unknown 'BG' type"); break;
    case DefSection: list = &m_syntax->defControllers; base = FirstDef; message = tr("Unknown 'Def' type"); break;
    default:
        if (state >= FirstBGCtrl && state < FirstDef)
            message = tr("Unknown 'BG Ctrl' type");
        else if (state >= FirstBG && state < FirstBGCtrl)
            message = tr("Unknown 'BG' type");
        else if (state >= FirstDef)
            message = tr("Unknown 'Def' type");
        break;
    }
    int index = -1;
    for (qsizetype i = 0; list && m_kind == TIdent && index < 0 && i < list->size(); ++i) {
        if (tokenText().compare(list->at(i)->name, Qt::CaseInsensitive) == 0)
            index = int(i);
    }
    if (index < 0) {
        if (m_kind == TEnd)
            addIssue(BlockIssue::Error, m_start, m_start, message);
        else
            errorOnToken(message);
        m_state = RejectedType;
        if (m_kind != TEnd)
            next();
        return;
    }
    const SyntaxController *c = list->at(index);
    if (base == FirstStateController && c->minVersion > m_version) {
        errorOnToken(tr("Controller invalid for the M.U.G.E.N. version of the current project"));
        m_state = RejectedType;
        next();
        return;
    }
    if (base == FirstStateController && !c->deprecated.isEmpty())
        addIssue(BlockIssue::Warning, m_start, tokenEnd() - 1,
                 tr("State controller deprecated in the M.U.G.E.N %1").arg(c->deprecated));
    formatToken(Controller);
    m_state = base + index;
    next();
}

void QMugenSyntaxChecker::keyAndEquals(bool known)
{
    if (known) {
        formatToken(Keyword);
        next();
    }
    expect(TEq);
}

void QMugenSyntaxChecker::wordFrom(const char *const *words, const QString &message)
{
    if (m_kind != TIdent) {
        unexpected();
        if (m_kind != TEnd)
            next();
        return;
    }
    if (inList(tokenText(), words))
        formatToken(Value);
    else
        errorOnToken(message);
    next();
}

void QMugenSyntaxChecker::remapLine()
{
    const bool known = m_kind == TIdent && inList(tokenText(), remapWords);
    if (!known)
        errorOnToken(tr("Unknown 'Remap' parameter"));
    keyAndEquals(known);
    wordFrom(remapWords, tr("Unknown 'Remap' value"));
}

void QMugenSyntaxChecker::defaultsLine()
{
    const bool known = isIdent("command.time") || isIdent("command.buffer.time");
    if (!known)
        errorOnToken(tr("Unknown 'Defaults' parameter"));
    keyAndEquals(known);
    expectNumber(TInt);
}

void QMugenSyntaxChecker::commandLine()
{
    if (isIdent("name")) {
        keyAndEquals(true);
        expect(TString, String);
    } else if (isIdent("command")) {
        keyAndEquals(true);
        consumeRest();
    } else if (isIdent("time") || isIdent("buffer.time")) {
        keyAndEquals(true);
        expectNumber(TInt);
    } else {
        errorOnToken(tr("Unknown 'Command' parameter"));
        keyAndEquals(false);
        consumeRest();
    }
}

void QMugenSyntaxChecker::statedefLine()
{
    if (isIdent("type")) {
        keyAndEquals(true);
        wordFrom(statedefTypes, tr("Unknown 'StateDef type' value"));
    } else if (isIdent("movetype")) {
        keyAndEquals(true);
        wordFrom(statedefMoveTypes, tr("Unknown 'StateDef movetype' value"));
    } else if (isIdent("physics")) {
        keyAndEquals(true);
        wordFrom(statedefPhysics, tr("Unknown 'StateDef physics' value"));
    } else if (m_kind == TIdent && inList(tokenText(), statedefExpressions)) {
        keyAndEquals(true);
        topExpression();
    } else if (isIdent("velset")) {
        keyAndEquals(true);
        m_minusIsOperator = true;
        expression();
        // The engine takes a lone x velocity as well.
        if (m_kind == TComma) {
            next();
            expression();
        }
        m_minusIsOperator = false;
    } else {
        errorOnToken(tr("Unknown 'StateDef' parameter"));
        keyAndEquals(false);
        consumeRest();
    }
}

void QMugenSyntaxChecker::quotesLine()
{
    static const QString pattern = QStringLiteral("victory[0-9]{1,2}");
    const bool known = m_kind == TIdent && m_syntax->matches(pattern, lowerToken());
    if (!known)
        errorOnToken(tr("Unknown 'Quotes' parameter"));
    keyAndEquals(known);
    expect(TString, String);
}

void QMugenSyntaxChecker::paletteKeymapLine()
{
    const bool known = m_kind == TIdent && inList(tokenText(), keymapWords);
    if (!known)
        errorOnToken(tr("Unknown 'Palette Keymap' parameter"));
    keyAndEquals(known);
    expectNumber(TInt);
}

void QMugenSyntaxChecker::infoLine()
{
    if (isIdent("name") || isIdent("displayname") || isIdent("author")) {
        keyAndEquals(true);
        if (m_kind == TString) {
            expect(TString, String);
        } else if (m_kind != TEnd) {
            // The engine reads the text as it stands; the quotes are the rule.
            addIssue(BlockIssue::Warning, m_start, m_size - 1, tr("The text should be in double quotes"));
            consumeRest();
        }
    } else if (isIdent("localcoord")) {
        keyAndEquals(true);
        expectNumber(TInt);
        expect(TComma);
        expectNumber(TInt);
    } else if (isIdent("versiondate")) {
        // Free text for the engine: dates in every form are found.
        keyAndEquals(true);
        setFormat(m_start, m_size - m_start, Value);
        consumeRest();
    } else if (isIdent("pal.defaults")) {
        keyAndEquals(true);
        expectNumber(TInt);
        while (m_kind == TComma) {
            next();
            if (m_kind == TEnd)
                break;
            expectNumber(TInt);
        }
    } else if (isIdent("mugenversion")) {
        keyAndEquals(true);
        if (m_kind == TReal) {
            expect(TReal, Number);
        } else {
            expectNumber(TInt);
            if (m_kind == TComma || m_kind == TSlash || m_kind == TMinus || m_kind == TReal) {
                for (int i = 0; i < 2; ++i) {
                    if (m_kind == TReal) {
                        // 04.14.2002 reads as real numbers: a date all the same.
                        expect(TReal, Number);
                        continue;
                    }
                    if (m_kind == TComma || m_kind == TSlash || m_kind == TMinus)
                        next();
                    else
                        unexpected();
                    expectNumber(TInt);
                }
            }
        }
    } else {
        errorOnToken(tr("Unknown 'Info'' parameter"));
        keyAndEquals(false);
        consumeRest();
    }
}

void QMugenSyntaxChecker::integers(int max)
{
    expectNumber(TInt);
    for (int n = 1; n < max && m_kind == TComma; ++n) {
        next();
        expectNumber(TInt);
    }
}

void QMugenSyntaxChecker::actionLine()
{
    if (isIdent("clsn1default") || isIdent("clsn2default")) {
        formatToken(Keyword);
        next();
        expect(TColon);
        expectNumber(TInt);
    } else if (isIdent("clsn1") || isIdent("clsn2")) {
        formatToken(Keyword);
        next();
        if (m_kind == TColon) {
            next();
            expectNumber(TInt);
        } else {
            expect(TLBracket);
            expectNumber(TInt);
            expect(TRBracket);
            expect(TEq);
            for (int i = 0; i < 4; ++i) {
                if (i)
                    expect(TComma);
                expectNumber(TInt);
            }
        }
    } else if (isIdent("loopstart")) {
        formatToken(Keyword);
        next();
    } else if (isIdent("interpolate")) {
        formatToken(Keyword);
        next();
        wordFrom(interpolations, tr("Unknown interpolation"));
    } else if (m_kind == TInt || m_kind == TMinus) {
        for (int i = 0; i < 5; ++i) {
            if (i)
                expect(TComma);
            expectNumber(TInt);
        }
        for (int field = 0; field < 5 && m_kind == TComma; ++field) {
            next();
            if (m_kind == TComma || m_kind == TEnd)
                continue;
            if (field == 0) {
                wordFrom(flips, tr("Unknown flip type"));
            } else if (field == 1) {
                const QString t = lowerToken();
                static const QString as = QStringLiteral("as[0-9]{1,3}d[0-9]{1,3}");
                if (m_kind == TIdent && (t == QLatin1String("a") || t == QLatin1String("a1") || t == QLatin1String("s")
                                         || m_syntax->matches(as, t)))
                    formatToken(Value);
                else
                    errorOnToken(tr("Unknown transparency"));
                next();
            } else {
                expectNumber(m_kind == TReal ? TReal : TInt);
            }
        }
    }
}

void QMugenSyntaxChecker::stateLine(int state)
{
    const bool typed = state >= FirstStateController && state < FirstBG;
    if (typed && (isIdent("ignorehitpause") || isIdent("persistent"))) {
        keyAndEquals(true);
        topExpression();
        return;
    }
    if (state > FirstBGCtrl && state < FirstDef && (isIdent("time") || isIdent("ctrlid"))) {
        const int max = isIdent("time") ? 3 : 2;
        keyAndEquals(true);
        integers(max);
        return;
    }
    if (state >= FirstBG) {
        const QList<SyntaxController *> &list = state >= FirstDef ? m_syntax->defControllers
                                               : state >= FirstBGCtrl ? m_syntax->bgCtrlControllers
                                                                       : m_syntax->bgControllers;
        const int index = state - (state >= FirstDef ? FirstDef : state >= FirstBGCtrl ? FirstBGCtrl : FirstBG);
        if (index < list.size())
            checkParam(list.at(index)->params, list.at(index)->name);
        else
            consumeRest();
        return;
    }
    const bool triggerSection =
        state == StateSection || state == BGSection || (state >= RejectedType && state < FirstBG);
    if (triggerSection && m_kind == TIdent) {
        static const QString pattern = QStringLiteral("trigger([0-9]{1,2})|triggerall");
        if (m_syntax->matches(pattern, lowerToken())) {
            m_trigger = true;
            keyAndEquals(true);
            topExpression();
            return;
        }
    }
    if (state == StateSection)
        untypedLine(m_syntax->stateControllers, QStringLiteral("State"));
    else if (state == BGSection)
        untypedLine(m_syntax->bgControllers, QStringLiteral("BG"));
    if (!typed)
        return;
    const int index = state - FirstStateController;
    if (index >= m_syntax->stateControllers.size()) {
        consumeRest();
        return;
    }
    const SyntaxController *c = m_syntax->stateControllers.at(index);
    if (c->name.compare(QLatin1String("null"), Qt::CaseInsensitive) == 0) {
        consumeRest();
        return;
    }
    checkParam(c->params, c->name);
}

// The engine reads the lines of a block in any order: a parameter before the
// "type" line is checked as the parameter of that name of any type.
void QMugenSyntaxChecker::untypedLine(const QList<SyntaxController *> &list, const QString &blockName)
{
    if (m_kind != TIdent)
        return;
    checkParamIn(nullptr, &list, blockName);
}

// ---------------------------------------------------------------- expressions

void QMugenSyntaxChecker::topExpression()
{
    m_minusIsOperator = true;
    expression();
    m_minusIsOperator = false;
}

void QMugenSyntaxChecker::expression()
{
    if (m_depth >= MaxDepth) {
        // Deeper nesting than any real expression: the rest is not read.
        if (m_kind != TEnd)
            addIssue(BlockIssue::Error, m_start, m_size - 1, tr("Expression nested too deeply"));
        consumeRest();
        return;
    }
    ++m_depth;
    exprOr();
    --m_depth;
}

void QMugenSyntaxChecker::exprOr()
{
    exprBit();
    while (m_kind == TOr || m_kind == TAnd || m_kind == TXor) {
        next();
        exprBit();
    }
}

void QMugenSyntaxChecker::exprBit()
{
    exprAssign();
    while (m_kind == TBar || m_kind == TAmp || m_kind == TCaret) {
        next();
        exprAssign();
    }
}

void QMugenSyntaxChecker::exprAssign()
{
    exprEq();
    while (m_kind == TColon) {
        next();
        expect(TEq);
        exprEq();
    }
}

void QMugenSyntaxChecker::exprEq()
{
    exprCmp();
    while (m_kind == TEq || m_kind == TNe) {
        next();
        if (m_kind == TLBracket) {
            next();
            exprCmp();
            expect(TComma);
            exprCmp();
            if (m_kind == TRBracket || m_kind == TRParen)
                next();
            else
                expect(TRBracket);
        } else {
            exprCmp();
        }
    }
}

void QMugenSyntaxChecker::exprCmp()
{
    exprSum();
    while (m_kind >= TLt && m_kind <= TGe) {
        next();
        exprSum();
    }
}

void QMugenSyntaxChecker::exprSum()
{
    exprProd();
    while (m_kind == TPlus || m_kind == TMinus) {
        next();
        exprProd();
    }
}

void QMugenSyntaxChecker::exprProd()
{
    exprPow();
    while (m_kind == TStar || m_kind == TSlash || m_kind == TPercent) {
        next();
        exprPow();
    }
}

void QMugenSyntaxChecker::exprPow()
{
    operand();
    while (m_kind == TPow) {
        next();
        operand();
    }
}

void QMugenSyntaxChecker::operand()
{
    switch (m_kind) {
    case TInt:
    case TReal: formatToken(Number); next(); return;
    case TString: formatToken(String); next(); return;
    case TMinus:
        formatToken(Number);
        next();
        if (m_kind != TMinus)
            operand();
        return;
    case TNot:
    case TTilde:
        next();
        expression();
        return;
    case TLParen:
        next();
        expression();
        if (m_kind == TComma) {
            next();
            expression();
            if (m_kind == TRParen || m_kind == TRBracket)
                next();
            else
                expect(TRBracket);
        } else {
            expect(TRParen);
        }
        return;
    case TEnd:
        unexpected();
        return;
    default: break;
    }
    const QString name = lowerToken();
    if (m_kind == TIdent && (name == QLatin1String("root") || name == QLatin1String("parent") || name == QLatin1String("partner"))) {
        formatToken(Trigger);
        next();
        expect(TComma);
        expression();
        return;
    }
    if (m_kind == TIdent && (name == QLatin1String("enemy") || name == QLatin1String("enemynear") || name == QLatin1String("playerid")
                             || name == QLatin1String("helper") || name == QLatin1String("target"))) {
        formatToken(Trigger);
        next();
        if (m_kind == TLParen) {
            next();
            expression();
            expect(TRParen);
        }
        expect(TComma);
        expression();
        return;
    }
    const SyntaxParam *p = m_syntax->findTrigger(name);
    if (!p) {
        errorOnToken(tr("Unknown trigger '%1'").arg(tokenText()));
        return;
    }
    if (p->minVersion > m_version) {
        errorOnToken(tr("Trigger invalid for the M.U.G.E.N. version of the current project"));
    } else {
        formatToken(Trigger);
        if (!p->deprecated.isEmpty())
            addIssue(BlockIssue::Warning, m_start, tokenEnd() - 1,
                     tr("Trigger deprecated in the M.U.G.E.N %1").arg(p->deprecated));
    }
    next();
    triggerArgs(*p);
}

void QMugenSyntaxChecker::triggerArgs(const SyntaxParam &p)
{
    auto args = [this](int n) {
        expect(TLParen);
        for (int i = 0; i < n; ++i) {
            if (i)
                expect(TComma);
            expression();
        }
        expect(TRParen);
    };
    auto cmp = [this](bool report) {
        if (isCmp()) {
            next();
        } else if (report) {
            // The engine reads a missing comparison as "=".
            addIssue(BlockIssue::Warning, m_start, qMax(m_start, tokenEnd() - 1),
                     tr("No comparison before the value: read as '='"));
        }
    };
    switch (p.type) {
    case SyntaxExp: args(1); return;
    case SyntaxExp2: args(2); return;
    case SyntaxExp3: args(3); return;
    case SyntaxNilExp:
    case SyntaxExpOpt:
        if (m_kind == TLParen)
            args(1);
        return;
    case SyntaxValue: word(p.pattern); return;
    case SyntaxValueEq:
        if (m_kind == TEq || m_kind == TNe)
            next();
        else
            expect(TEq);
        word(p.pattern);
        return;
    case SyntaxOpInt:
        expect(TEq);
        expectNumber(TInt);
        if (m_kind == TComma) {
            next();
            cmp(true);
            expectNumber(TInt);
        }
        return;
    case SyntaxOpInt2:
        if (isCmp())
            next();
        else
            expect(TLt);
        expectNumber(TInt);
        expect(TComma);
        expectNumber(TInt);
        return;
    case SyntaxOp2Int2:
        if (isCmp())
            next();
        else
            expect(TLt);
        expectNumber(TInt);
        if (m_kind == TComma) {
            next();
            cmp(false);
            expectNumber(TInt);
        }
        return;
    case SyntaxOpStr:
        if (m_kind == TEq || m_kind == TNe)
            next();
        else
            expect(TEq);
        expect(TString, String);
        return;
    case SyntaxConst: {
        const auto group = m_syntax->consts.constFind(p.pattern);
        if (group == m_syntax->consts.constEnd())
            return;
        expect(TLParen);
        if (m_kind == TIdent) {
            if (group->contains(lowerToken()))
                formatToken(Const);
            else
                errorOnToken(tr("Unknown constant '%1'").arg(tokenText()));
            next();
        } else {
            unexpected();
            if (m_kind != TEnd)
                next();
        }
        expect(TRParen);
        return;
    }
    default: return;
    }
}

QString QMugenSyntaxChecker::peekIdent() const
{
    int i = m_pos;
    while (i < m_size && blank(m_line[i]))
        ++i;
    const int start = i;
    while (i < m_size && identChar(m_line[i]))
        ++i;
    return QString::fromRawData(m_line + start, i - start);
}

void QMugenSyntaxChecker::word(const QString &pattern)
{
    if (m_kind != TIdent) {
        if (m_kind == TEnd)
            addIssue(BlockIssue::Error, m_start, m_start, tr("Unknown value"));
        else
            errorOnToken(tr("Unknown value"));
        return;
    }
    const int start = m_start;
    int n = 0;
    auto append = [&](QStringView s) {
        for (QChar c : s) {
            if (n < MaxToken)
                m_key[n++] = c.toLower();
        }
    };
    append(tokenText());
    int end = tokenEnd();
    next();
    if (pattern.contains(QLatin1Char(','))) {
        while (m_kind == TComma) {
            const QString ahead = peekIdent();
            if (ahead.isEmpty() || m_syntax->findTrigger(ahead) || !identStart(ahead.at(0)))
                break;
            append(u",");
            next();
            append(tokenText());
            end = tokenEnd();
            next();
        }
    }
    if (m_syntax->matches(pattern, QString::fromRawData(m_key, n)))
        setFormat(start, end - start, Value);
    else
        addIssue(BlockIssue::Error, start, end - 1, tr("Unknown value"));
}

// ---------------------------------------------------------------- parameters

void QMugenSyntaxChecker::checkParam(const ParamMap &map, const QString &blockName)
{
    checkParamIn(&map, nullptr, blockName);
}

void QMugenSyntaxChecker::checkParamIn(const ParamMap *map, const QList<SyntaxController *> *any,
                                       const QString &blockName)
{
    const int start = m_start;
    int n = 0;
    int lengths = 0;
    while (m_kind != TEnd && m_kind != TEq) {
        for (int i = 0; i < m_textLength && n < MaxToken; ++i)
            m_key[n++] = m_text[i].toLower();
        lengths += m_length;
        next();
    }
    const QString key = QString::fromRawData(m_key, n);
    const SyntaxParam *p = map ? m_syntax->findParam(*map, key) : nullptr;
    for (qsizetype i = 0; !p && any && i < any->size(); ++i)
        p = m_syntax->findParam(any->at(i)->params, key);
    if (!p) {
        addIssue(BlockIssue::Error, start, start + lengths - 1,
                 tr("Unknown parameter '%1' for the '%2' controller").arg(key, blockName));
        consumeRest();
        return;
    }
    if (p->minVersion > m_version) {
        addIssue(BlockIssue::Error, start, start + lengths - 1,
                 tr("Parameter invalid for the M.U.G.E.N. version of the current project"));
        consumeRest();
        return;
    }
    if (!p->deprecated.isEmpty())
        addIssue(BlockIssue::Warning, start, start + lengths - 1,
                 tr("Parameter deprecated in the M.U.G.E.N %1").arg(p->deprecated));
    // The key is coloured over the sum of its token lengths less its column:
    // short for an indented key, as the issue spans have always been.
    setFormat(start, lengths - start, Keyword);
    checkValue(*p);
}

void QMugenSyntaxChecker::requireValues(int n)
{
    m_issues.resize(qMin(m_issues.size(), qsizetype(m_valueIssueMark)));
    addIssue(BlockIssue::Error, m_valueColumn, qMax(m_valueColumn, tokenEnd() - 1), tr("This parameter requires %n values(s)", n));
    consumeRest();
}

// A comma before the next value; a gap is the "requires" error.
bool QMugenSyntaxChecker::valueComma(int n)
{
    if (m_kind == TComma) {
        next();
        if (m_kind != TEnd)
            return true;
    }
    requireValues(n);
    return false;
}

void QMugenSyntaxChecker::checkValue(const SyntaxParam &p)
{
    m_wholeIdentifiers = !(p.type == SyntaxStrExp || p.type == SyntaxStrExp2);
    expect(TEq);
    m_valueIssueMark = int(m_issues.size());
    m_valueColumn = m_start;
    auto numbers = [this](int count, bool real) {
        for (int i = 0; i < count; ++i) {
            if (i && !valueComma(count))
                return;
            expectNumber(real && m_kind == TReal ? TReal : TInt);
        }
    };
    auto expressions = [this](int count) {
        m_minusIsOperator = true;
        for (int i = 0; i < count; ++i) {
            if (i && !valueComma(count))
                break;
            expression();
        }
        m_minusIsOperator = false;
    };
    auto valueWord = [this](const QString &pattern) {
        if (m_kind != TIdent) {
            unexpected();
            if (m_kind != TEnd)
                next();
            return;
        }
        if (m_syntax->matches(pattern, lowerToken()))
            formatToken(Value);
        else
            errorOnToken(tr("Unknown parameter value '%1'").arg(lowerToken()));
        next();
    };
    switch (p.type) {
    case SyntaxInt: expectNumber(TInt); break;
    case SyntaxInt2: numbers(2, false); break;
    case SyntaxInt3: numbers(3, false); break;
    case SyntaxIntN: {
        const int max = qMax(1, p.pattern.toInt());
        expectNumber(TInt);
        for (int i = 1; i < max && m_kind == TComma; ++i) {
            next();
            expectNumber(TInt);
        }
        break;
    }
    case SyntaxIntFloat3:
        expectNumber(TInt);
        for (int i = 0; i < 3; ++i) {
            if (!valueComma(4))
                break;
            expectNumber(m_kind == TReal ? TReal : TInt);
        }
        break;
    case SyntaxIntFloat3Opt:
        expectNumber(TInt);
        for (int i = 0; i < 3 && m_kind == TComma; ++i) {
            next();
            expectNumber(m_kind == TReal ? TReal : TInt);
        }
        break;
    case SyntaxFloat: expectNumber(m_kind == TReal ? TReal : TInt); break;
    case SyntaxFloat2: numbers(2, true); break;
    case SyntaxFloat2Opt:
        expectNumber(m_kind == TReal ? TReal : TInt);
        if (m_kind == TComma) {
            next();
            if (m_kind != TEnd)
                expectNumber(m_kind == TReal ? TReal : TInt);
        }
        break;
    case SyntaxFloat3: numbers(3, true); break;
    case SyntaxExp: expressions(1); break;
    case SyntaxExp2: expressions(2); break;
    case SyntaxExp2Value:
        expressions(2);
        // Real characters give a third value beside the position: the part
        // of the target to bind to, or a plain number the engine reads past.
        if (m_kind == TComma) {
            next();
            if (m_kind == TIdent && !m_syntax->findTrigger(lowerToken())) {
                valueWord(p.pattern);
            } else {
                expressions(1);
            }
        }
        break;
    case SyntaxExp3: expressions(3); break;
    case SyntaxExp3Nil:
        if (m_kind == TInt && tokenText() == QLatin1String("-1")) {
            formatToken(Number);
            next();
            if (m_kind == TEnd)
                break;
            // Not alone: the first of three values.
            m_minusIsOperator = true;
            for (int i = 1; i < 3 && valueComma(3); ++i)
                expression();
            m_minusIsOperator = false;
            break;
        }
        expressions(3);
        break;
    case SyntaxExp4: expressions(4); break;
    case SyntaxExpN:
        m_minusIsOperator = true;
        expression();
        while (m_kind == TComma) {
            next();
            if (m_kind == TEnd)
                break;
            expression();
        }
        m_minusIsOperator = false;
        break;
    case SyntaxExp2Opt:
        m_minusIsOperator = true;
        expression();
        if (m_kind == TComma) {
            next();
            if (m_kind != TEnd)
                expression();
        }
        m_minusIsOperator = false;
        break;
    case SyntaxString:
        if (m_kind == TString)
            expect(TString, String);
        else if (m_kind != TEnd) {
            addIssue(BlockIssue::Warning, m_start, m_size - 1, tr("The text should be in double quotes"));
            consumeRest();
        } else {
            unexpected();
        }
        break;
    case SyntaxStrExp:
    case SyntaxStrExp2:
        if (m_kind == TIdent && m_syntax->matches(p.pattern, lowerToken())) {
            formatToken(Value);
            next();
        }
        m_wholeIdentifiers = true;
        expressions(1);
        if (p.type == SyntaxStrExp2 && valueComma(2)) {
            m_minusIsOperator = true;
            expression();
            m_minusIsOperator = false;
        }
        break;
    case SyntaxExpStr:
        expressions(1);
        if (m_kind == TComma) {
            next();
            valueWord(p.pattern);
        }
        break;
    case SyntaxExpStrExp2: break;
    case SyntaxValue: {
        const int start = m_start;
        int n = 0;
        int end = start;
        while (m_kind != TEnd) {
            for (int i = m_start; i < tokenEnd() && n < MaxToken; ++i) {
                if (!blank(m_line[i]))
                    m_key[n++] = m_line[i].toLower();
            }
            end = tokenEnd();
            next();
        }
        const QString value = QString::fromRawData(m_key, n);
        if (m_syntax->matches(p.pattern, value))
            setFormat(start, end - start, Value);
        else
            addIssue(BlockIssue::Error, start, qMax(start, end - 1), tr("Unknown parameter value '%1'").arg(value));
        break;
    }
    default: consumeRest(); break;
    }
    m_wholeIdentifiers = true;
    m_minusIsOperator = false;
}

// ---------------------------------------------------------------- folding and whole texts

bool QMugenSyntaxChecker::isBlankOrComment(QStringView text, bool *isHeader, bool *isState)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\r') || c == QLatin1Char('\n'))
            continue;
        if (c == QLatin1Char(';'))
            return true;
        *isHeader = c == QLatin1Char('[');
        *isState = *isHeader && text.mid(i + 1, 5).compare(QLatin1String("state"), Qt::CaseInsensitive) == 0
                   && !(i + 6 < text.size() && text.at(i + 6).isLetter());
        return false;
    }
    return true;
}

int QMugenSyntaxChecker::foldLevel(int state, int previousState, bool header, bool beforeHeader, bool nextIsState)
{
    auto inStatedef = [](int s) { return section(s) == StatedefSection || isStateSection(s); };
    if (header)
        return isStateSection(state) && inStatedef(previousState) ? 1 : 0;
    if (beforeHeader)
        return nextIsState && inStatedef(state) ? 1 : 0;
    if (section(state) == NoSection)
        return 0;
    return isStateSection(state) ? 2 : 1;
}

QVector<QMugenSyntaxChecker::Line> QMugenSyntaxChecker::checkText(QStringView text)
{
    QVector<QStringView> lines;
    qsizetype from = 0;
    for (;;) {
        const qsizetype nl = text.indexOf(QLatin1Char('\n'), from);
        QStringView l = text.mid(from, (nl < 0 ? text.size() : nl) - from);
        if (l.endsWith(QLatin1Char('\r')))
            l.chop(1);
        lines.append(l);
        if (nl < 0)
            break;
        from = nl + 1;
    }
    QVector<Line> out(lines.size());
    // Walking back: whether the next significant line is a header.
    QVector<quint8> before(lines.size());
    bool nextHeader = false;
    bool nextState = false;
    for (qsizetype i = lines.size() - 1; i >= 0; --i) {
        bool h = false;
        bool s = false;
        if (!isBlankOrComment(lines.at(i), &h, &s)) {
            nextHeader = h;
            nextState = s;
        }
        before[i] = quint8((nextHeader ? 1 : 0) | (nextState ? 2 : 0));
    }
    int state = 0;
    int stateHeader = -1;
    auto closeBlock = [&](int previous) {
        // The engine never runs a controller without a trigger.
        if (stateHeader >= 0 && lacksTrigger(previous) && m_reportErrors) {
            const QStringView l = lines.at(stateHeader);
            BlockIssue issue;
            issue.kind = BlockIssue::Error;
            issue.start = int(l.indexOf(QLatin1Char('[')));
            issue.end = qMax(issue.start, int(l.indexOf(QLatin1Char(']'))));
            issue.message = tr("State controller without a trigger");
            out[stateHeader].issues.append(issue);
        }
    };
    for (qsizetype i = 0; i < lines.size(); ++i) {
        Line &line = out[i];
        const int previous = state;
        state = checkLine(lines.at(i), state);
        if (m_header) {
            closeBlock(previous);
            stateHeader = section(state) == StateSection ? int(i) : -1;
        }
        line.state = state;
        line.header = m_header;
        line.issues = m_issues;
        line.foldLevel = foldLevel(state, previous, m_header, before.at(i) & 1, before.at(i) & 2);
    }
    closeBlock(state);
    return out;
}
