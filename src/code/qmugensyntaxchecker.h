#pragma once

#include "code/qtexteditorblockdata.h"

#include <QMap>
#include <QString>
#include <QStringView>
#include <QVector>

class QMugenSyntaxProperties;
struct SyntaxController;
struct SyntaxParam;
using ParamMap = QMap<QString, SyntaxParam>;

// The engine's text language checked one line at a time, without widgets:
// a line goes in with the state of the line above, and out come its state,
// its issues, its brackets and the colour role of each token (through a
// sink, when one is given). All context a line needs from above is in the
// state, so any line can be checked again alone. The highlighter of the
// code editor and the command line's check both run on this.
//
// A line is read in one pass, and nothing is allocated for it but issue
// texts: tokens are copied into fixed buffers of the object.
class QMugenSyntaxChecker
{
public:
    // Colour roles, in the order of the program's role table.
    enum Role { Comment = 0, Number, String, Keyword, Block, Controller, Trigger, Const, Value };

    // Section states carried from line to line.
    enum State {
        NoSection = 0,
        RemapSection = 1,
        DefaultsSection = 2,
        CommandSection = 3,
        StatedefSection = 4,
        DataSection = 5,
        SizeSection = 6,
        VelocitySection = 7,
        MovementSection = 8,
        QuotesSection = 9,
        ActionSection = 10,
        InfoSection = 11,
        FilesSection = 12,
        PaletteKeymapSection = 13,
        ArcadeSection = 14,
        StateSection = 15,
        CameraSection = 16,
        PlayerInfoSection = 17,
        BoundSection = 18,
        ScalingSection = 19,
        StageInfoSection = 20,
        ShadowSection = 21,
        ReflectionSection = 22,
        MusicSection = 23,
        BGDefSection = 24,
        BGSection = 25,
        BGCtrlDefSection = 26,
        BGCtrlSection = 27,
        FontSection = 28,
        DefSection = 29,
        SceneDefSection = 30,
        SceneSection = 31,
        RejectedType = 32,
        FirstStateController = 33,
        FirstBG = 200,
        FirstBGCtrl = 210,
        FirstDef = 250,
        // A section of a file whose sections are not checked (screen packs).
        FreeSection = 0xFFFF,
        // Flag beside the section: the [State] block has had a trigger line.
        TriggerSeen = 0x10000
    };
    static int section(int state) { return state > 0 ? state & 0xFFFF : 0; }

    // Receives the colour role of each span of the line.
    class FormatSink
    {
    public:
        virtual ~FormatSink();
        virtual void format(int start, int length, int role) = 0;
    };

    // The result of one line of a whole text.
    struct Line
    {
        int state = 0;
        int foldLevel = 0;
        bool header = false;
        QVector<BlockIssue> issues;
    };

    explicit QMugenSyntaxChecker(const QMugenSyntaxProperties *syntax);

    quint32 engineVersion() const { return m_version; }
    void setEngineVersion(quint32 version) { m_version = version; }
    // Off: errors are dropped, warnings still recorded.
    bool reportErrors() const { return m_reportErrors; }
    void setReportErrors(bool on) { m_reportErrors = on; }
    // On: headers are checked but every section is taken as free text, for
    // the screen-pack files whose sections the engine reads by name.
    bool freeSections() const { return m_freeSections; }
    void setFreeSections(bool on) { m_freeSections = on; }

    // Checks one line (without its line end). previousState is the state of
    // the line above, 0 or negative for none. Returns the line's state.
    int checkLine(QStringView text, int previousState, FormatSink *sink = nullptr);
    // What the last checkLine found.
    bool lineIsHeader() const { return m_header; }
    const QVector<BlockIssue> &issues() const { return m_issues; }
    const QVector<Parenthesis> &parens() const { return m_parens; }

    // Checks a whole text, lines split at "\n" (a "\r" before it is dropped).
    QVector<Line> checkText(QStringView text);

    // Fold level of a line from its state and what follows it: headers of
    // sections at 0 and a [State] inside a [Statedef] at 1, the lines of a
    // section one deeper. Blank and comment lines right before a header
    // (beforeHeader; nextIsState when that header is a [State]) belong to
    // the next section, so a closed fold never hides them. Nothing depends
    // on the level of the line above, so a level never goes stale when only
    // one line is checked again.
    static int foldLevel(int state, int previousState, bool header, bool beforeHeader, bool nextIsState);
    // Whether a line is blank or a comment: then it is skipped when looking
    // for the next header. For the others, *isHeader and *isState tell what it is.
    static bool isBlankOrComment(QStringView text, bool *isHeader, bool *isState);
    static bool isStateSection(int state)
    {
        state = section(state);
        return state == StateSection || (state >= FirstStateController && state < FirstBG);
    }
    // A [State] block with a known controller that has had no trigger line.
    static bool lacksTrigger(int state)
    {
        return !(state & TriggerSeen) && section(state) >= FirstStateController && section(state) < FirstBG;
    }

private:
    enum Tok {
        TEnd = 0, TOther, TIdent, TInt, TReal, TString, TPlus, TMinus, TSlash, TPercent, TStar, TPow, TAmp, TAnd,
        TBar, TOr, TCaret, TXor, TEq, TLt, TLe, TGt, TGe, TNot, TNe, TComma, TLParen, TRParen, TLBrace, TRBrace,
        TLBracket, TRBracket, TColon, TTilde, TDollar
    };
    static constexpr int MaxToken = 512;
    static constexpr int MaxDepth = 64;

    // Tokenizer.
    void next();
    QStringView tokenText() const { return QStringView(m_text, m_textLength); }
    // The token text lower-cased, in a buffer of its own.
    QString lowerToken();
    bool isIdent(const char *word) const;
    bool isCmp() const { return m_kind == TEq || m_kind == TNe || (m_kind >= TLt && m_kind <= TGe); }
    int tokenEnd() const { return m_start + m_length; }

    void setFormat(int start, int length, int role);
    void formatToken(int role) { setFormat(m_start, m_length, role); }
    void addIssue(int kind, int start, int end, const QString &message);
    void errorOnToken(const QString &message);
    void unexpected(bool warn = false);
    bool expect(int kind, int role = -1);
    bool expectNumber(int kind);
    void consumeRest();

    // Lines.
    void header();
    void sectionLine(int state);
    void typeLine(int state);
    void wordFrom(const char *const *words, const QString &message);
    void keyAndEquals(bool known);
    void remapLine();
    void defaultsLine();
    void commandLine();
    void statedefLine();
    void quotesLine();
    void actionLine();
    void infoLine();
    void paletteKeymapLine();
    void stateLine(int state);
    void integers(int max);

    // Expressions and values.
    void expression();
    void topExpression();
    void exprOr();
    void exprBit();
    void exprAssign();
    void exprEq();
    void exprCmp();
    void exprSum();
    void exprProd();
    void exprPow();
    void operand();
    void triggerArgs(const SyntaxParam &p);
    void word(const QString &pattern);
    QString peekIdent() const;
    void checkParam(const ParamMap &map, const QString &blockName);
    void checkParamIn(const ParamMap *map, const QList<SyntaxController *> *any, const QString &blockName);
    void untypedLine(const QList<SyntaxController *> &list, const QString &blockName);
    void checkValue(const SyntaxParam &p);
    void requireValues(int n);
    bool valueComma(int n);

    const QMugenSyntaxProperties *m_syntax;
    quint32 m_version = 0x01010000;
    bool m_reportErrors = true;
    bool m_freeSections = false;

    // The line and the current token.
    const QChar *m_line = nullptr;
    int m_size = 0;
    int m_pos = 0;
    int m_kind = TEnd;
    int m_start = 0;
    int m_length = 0;
    QChar m_text[MaxToken + 1];
    int m_textLength = 0;
    QChar m_lower[MaxToken + 1];
    QChar m_key[MaxToken + 1];
    bool m_minusIsOperator = false;
    bool m_wholeIdentifiers = true;
    int m_depth = 0;

    int m_state = 0;
    bool m_header = false;
    bool m_trigger = false;
    int m_valueColumn = 0;
    int m_valueIssueMark = 0;
    FormatSink *m_sink = nullptr;
    QVector<BlockIssue> m_issues;
    QVector<Parenthesis> m_parens;
};
