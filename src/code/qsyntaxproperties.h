#pragma once

#include <QHash>
#include <QList>
#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

// Value types of parameters and trigger arguments, as the definition file
// names them in "type" (the text form is in valueTypeName()).
enum SyntaxValueType : quint32 {
    SyntaxInt = 0,
    SyntaxInt2,
    SyntaxInt3,
    SyntaxIntN,
    SyntaxIntFloat3,
    SyntaxIntFloat3Opt,
    SyntaxFloat,
    SyntaxFloat2,
    SyntaxFloat2Opt,
    SyntaxFloat3,
    SyntaxExp,
    SyntaxExp2,
    SyntaxExp2Value,
    SyntaxExp3,
    SyntaxExp4,
    SyntaxExpN,
    SyntaxExp2Opt,
    SyntaxExp3Nil,
    SyntaxString,
    SyntaxStrExp,
    SyntaxStrExp2,
    SyntaxExpStr,
    SyntaxExpStrExp2,
    SyntaxValue,
    SyntaxNilExp,
    SyntaxExpOpt,
    SyntaxOpInt,
    SyntaxOpInt2,
    SyntaxOp2Int2,
    SyntaxOpStr,
    SyntaxValueEq,
    SyntaxConst,
    SyntaxUnknown = 32
};

struct SyntaxParam
{
    SyntaxValueType type = SyntaxUnknown;
    quint32 minVersion = 0;
    // Engine version in which the name was deprecated; empty when it is not.
    QString deprecated;
    // Meaning by type: the largest count for "intn", the word pattern for the
    // word-taking types, the constant group for "const".
    QString pattern;
};

using ParamMap = QMap<QString, SyntaxParam>;

struct SyntaxController
{
    quint32 minVersion = 0;
    QString name;
    QString deprecated;
    ParamMap params;
};

// A language definition read from a data file beside the program.
class QSyntaxProperties
{
public:
    virtual ~QSyntaxProperties();
    virtual bool load(const QString &path) = 0;
};

// What the checker knows of the engine's language: triggers, controllers and
// their parameters with value types, constants and version limits. All of it
// is data (syntax_mugen.xml), so a new engine version needs no new code.
class QMugenSyntaxProperties : public QSyntaxProperties
{
public:
    QMugenSyntaxProperties();
    ~QMugenSyntaxProperties() override;
    QMugenSyntaxProperties(const QMugenSyntaxProperties &) = delete;
    QMugenSyntaxProperties &operator=(const QMugenSyntaxProperties &) = delete;

    // Clears everything, then reads the file. False, with empty tables, when
    // the file is missing, malformed or its root is not "syntax".
    bool load(const QString &path) override;
    void clear();

    QList<SyntaxController *> stateControllers;
    QList<SyntaxController *> bgControllers;
    QList<SyntaxController *> bgCtrlControllers;
    QList<SyntaxController *> defControllers;
    ParamMap files, arcade, data, size, velocity, movement, camera, playerinfo, bound, scaling, stageinfo, shadow,
        reflection, music, bgdef, bgctrldef, fnt, scenedef, scene;
    ParamMap triggers;
    QMap<QString, QStringList> consts;

    // Packs "1.1" into 0x01010000: one byte per number, highest first. Text
    // that does not start with at least "n.n" gives 0 (any version).
    static quint32 parseVersion(const QString &text);
    static SyntaxValueType valueType(const QString &text);
    static QString valueTypeName(SyntaxValueType type);

    // Look-ups with the pattern rules of the file: a trigger name holding "("
    // and a parameter name holding a backslash are patterns, tried whole
    // against the lower-cased word; the first entry in name order that
    // matches wins. Null when nothing matches.
    const SyntaxParam *findTrigger(const QString &word) const;
    const SyntaxParam *findParam(const ParamMap &map, const QString &key) const;
    // Controllers are named without patterns and compared ignoring case.
    static int indexOfController(const QList<SyntaxController *> &list, const QString &name);
    // Whole match of a lower-cased word against a pattern of the file.
    bool matches(const QString &pattern, const QString &word) const;

private:
    const QRegularExpression &compiled(const QString &pattern) const;

    mutable QHash<QString, QRegularExpression> m_regexCache;
    QStringList m_triggerPatterns; // trigger names that are patterns, in name order
};

// Names known to the Lua highlighter: functions and classes.
class QLuaSyntaxProperties : public QSyntaxProperties
{
public:
    bool load(const QString &path) override;

    QStringList functions;
    QStringList classes;
};
