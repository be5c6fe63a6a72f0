#include "qsyntaxproperties.h"

#include "base/qxmlhelper.h"

#include <QDomDocument>
#include <QDomElement>

namespace {

const char *const typeNames[] = {"int",       "int2",    "int3",   "intn",      "intfloat3", "intfloat3opt", "float",
                                 "float2",    "float2opt", "float3", "exp",       "exp2",      "exp2value",    "exp3",
                                 "exp4",      "expn",    "exp2opt", "exp3nil",   "string",    "strexp",       "strexp2",
                                 "expstr",    "expstrexp2", "value", "nilexp",   "expopt",    "opint",        "opint2",
                                 "op2int2",   "opStr",   "valueeq", "const"};
constexpr int typeCount = int(sizeof(typeNames) / sizeof(typeNames[0]));

bool isTriggerType(SyntaxValueType t)
{
    switch (t) {
    case SyntaxNilExp:
    case SyntaxConst:
    case SyntaxExp:
    case SyntaxExpOpt:
    case SyntaxExp2:
    case SyntaxExp3:
    case SyntaxOpInt:
    case SyntaxOpInt2:
    case SyntaxOp2Int2:
    case SyntaxOpStr:
    case SyntaxValue:
    case SyntaxValueEq:
        return true;
    default:
        return false;
    }
}

bool isWrappedParamType(SyntaxValueType t)
{
    return t == SyntaxStrExp || t == SyntaxStrExp2 || t == SyntaxExpStr || t == SyntaxExpStrExp2 || t == SyntaxValue;
}

QString wrap(const QString &pattern)
{
    return QStringLiteral("^(?:") + pattern + QStringLiteral(")$");
}

bool isWrapped(const QString &pattern)
{
    return pattern.startsWith(QLatin1String("^(?:")) && pattern.endsWith(QLatin1String(")$"));
}

// One parameter of a controller or a section: "param" attributes.
SyntaxParam readParam(const QDomElement &e)
{
    SyntaxParam p;
    p.type = QMugenSyntaxProperties::valueType(e.attribute(QStringLiteral("type")));
    if (p.type > SyntaxValue)
        p.type = SyntaxUnknown;
    p.minVersion = QMugenSyntaxProperties::parseVersion(e.attribute(QStringLiteral("minver")));
    p.deprecated = e.attribute(QStringLiteral("deprecated"));
    if (p.type == SyntaxIntN)
        p.pattern = e.attribute(QStringLiteral("max"), QStringLiteral("1"));
    else if (isWrappedParamType(p.type))
        p.pattern = wrap(e.attribute(QStringLiteral("reg_exp")));
    else if (p.type == SyntaxExp2Value)
        p.pattern = e.attribute(QStringLiteral("reg_exp"));
    return p;
}

SyntaxController *readController(const QDomElement &e)
{
    auto *c = new SyntaxController;
    c->name = e.attribute(QStringLiteral("name"));
    c->minVersion = QMugenSyntaxProperties::parseVersion(e.attribute(QStringLiteral("minver")));
    c->deprecated = e.attribute(QStringLiteral("deprecated"));
    for (QDomElement p = e.firstChildElement(QStringLiteral("param")); !p.isNull();
         p = p.nextSiblingElement(QStringLiteral("param")))
        c->params.insert(p.attribute(QStringLiteral("name")), readParam(p));
    return c;
}

} // namespace

QSyntaxProperties::~QSyntaxProperties() = default;

QMugenSyntaxProperties::QMugenSyntaxProperties() = default;

QMugenSyntaxProperties::~QMugenSyntaxProperties()
{
    clear();
}

void QMugenSyntaxProperties::clear()
{
    for (QList<SyntaxController *> *list : {&stateControllers, &bgControllers, &bgCtrlControllers, &defControllers}) {
        qDeleteAll(*list);
        list->clear();
    }
    for (ParamMap *map : {&files, &arcade, &data, &size, &velocity, &movement, &camera, &playerinfo, &bound, &scaling,
                          &stageinfo, &shadow, &reflection, &music, &bgdef, &bgctrldef, &fnt, &scenedef, &scene,
                          &triggers})
        map->clear();
    consts.clear();
    m_regexCache.clear();
    m_triggerPatterns.clear();
}

bool QMugenSyntaxProperties::load(const QString &path)
{
    clear();
    QDomDocument doc;
    if (!QXmlHelper::parseFile(doc, path))
        return false;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("syntax"))
        return false;

    const QHash<QString, ParamMap *> sections = {
        {QStringLiteral("files"), &files},           {QStringLiteral("arcade"), &arcade},
        {QStringLiteral("data"), &data},             {QStringLiteral("size"), &size},
        {QStringLiteral("velocity"), &velocity},     {QStringLiteral("movement"), &movement},
        {QStringLiteral("camera"), &camera},         {QStringLiteral("playerinfo"), &playerinfo},
        {QStringLiteral("bound"), &bound},           {QStringLiteral("scaling"), &scaling},
        {QStringLiteral("stageinfo"), &stageinfo},   {QStringLiteral("shadow"), &shadow},
        {QStringLiteral("reflection"), &reflection}, {QStringLiteral("music"), &music},
        {QStringLiteral("bgdef"), &bgdef},           {QStringLiteral("bg_control_def"), &bgctrldef},
        {QStringLiteral("bgctrldef"), &bgctrldef},   {QStringLiteral("fnt"), &fnt},
        {QStringLiteral("scene_def"), &scenedef},    {QStringLiteral("scenedef"), &scenedef},
        {QStringLiteral("scene"), &scene}};

    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        const QString tag = e.tagName();
        const QString name = e.attribute(QStringLiteral("name"));
        if (tag == QLatin1String("consts")) {
            QStringList &group = consts[name];
            for (QDomElement c = e.firstChildElement(QStringLiteral("const")); !c.isNull();
                 c = c.nextSiblingElement(QStringLiteral("const")))
                group.append(c.attribute(QStringLiteral("name")));
        } else if (tag == QLatin1String("trigger")) {
            SyntaxParam p;
            p.type = valueType(e.attribute(QStringLiteral("type")));
            if (!isTriggerType(p.type))
                p.type = SyntaxUnknown;
            p.minVersion = parseVersion(e.attribute(QStringLiteral("minver")));
            p.deprecated = e.attribute(QStringLiteral("deprecated"));
            p.pattern = e.attribute(QStringLiteral("reg_exp"));
            triggers.insert(name, p);
            if (name.contains(QLatin1Char('(')) && !m_triggerPatterns.contains(name)) {
                m_triggerPatterns.append(name);
                m_triggerPatterns.sort();
            }
        } else if (tag == QLatin1String("state_controller")) {
            stateControllers.append(readController(e));
        } else if (tag == QLatin1String("bg_controller")) {
            bgControllers.append(readController(e));
        } else if (tag == QLatin1String("bg_control")) {
            bgCtrlControllers.append(readController(e));
        } else if (tag == QLatin1String("fnt_def")) {
            defControllers.append(readController(e));
        } else if (ParamMap *map = sections.value(tag)) {
            map->insert(name, readParam(e));
        }
    }
    return true;
}

quint32 QMugenSyntaxProperties::parseVersion(const QString &text)
{
    static const QRegularExpression re(
        QStringLiteral("^(\\d{1,3})\\.(\\d{1,3})\\.?(\\d{1,3})?\\.?(\\d{1,3})?"));
    const QRegularExpressionMatch m = re.match(text);
    if (!m.hasMatch())
        return 0;
    quint32 v = 0;
    for (int i = 1; i <= 4; ++i)
        v |= (m.captured(i).toUInt() & 0xFFu) << (8 * (4 - i));
    return v;
}

SyntaxValueType QMugenSyntaxProperties::valueType(const QString &text)
{
    for (int i = 0; i < typeCount; ++i) {
        if (text.compare(QLatin1String(typeNames[i]), Qt::CaseInsensitive) == 0)
            return SyntaxValueType(i);
    }
    return SyntaxUnknown;
}

QString QMugenSyntaxProperties::valueTypeName(SyntaxValueType type)
{
    return int(type) < typeCount ? QString::fromLatin1(typeNames[type]) : QString();
}

const QRegularExpression &QMugenSyntaxProperties::compiled(const QString &pattern) const
{
    auto it = m_regexCache.find(pattern);
    if (it == m_regexCache.end())
        it = m_regexCache.insert(pattern, QRegularExpression(isWrapped(pattern) ? pattern : wrap(pattern)));
    return *it;
}

bool QMugenSyntaxProperties::matches(const QString &pattern, const QString &word) const
{
    if (pattern.isEmpty())
        return true;
    return compiled(pattern).match(word).hasMatch();
}

const SyntaxParam *QMugenSyntaxProperties::findTrigger(const QString &word) const
{
    const QString lower = word.toLower();
    // The exact entry, unless a pattern that sorts before it also matches.
    auto exact = triggers.constFind(lower);
    for (const QString &pattern : m_triggerPatterns) {
        if (exact != triggers.constEnd() && !(pattern < exact.key()))
            break;
        if (compiled(pattern).match(lower).hasMatch())
            return &triggers.constFind(pattern).value();
    }
    return exact != triggers.constEnd() ? &exact.value() : nullptr;
}

const SyntaxParam *QMugenSyntaxProperties::findParam(const ParamMap &map, const QString &key) const
{
    auto exact = map.constFind(key);
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        if (exact != map.constEnd() && !(it.key() < exact.key()))
            break;
        if (it.key().contains(QLatin1Char('\\')) && compiled(it.key()).match(key).hasMatch())
            return &it.value();
    }
    return exact != map.constEnd() ? &exact.value() : nullptr;
}

int QMugenSyntaxProperties::indexOfController(const QList<SyntaxController *> &list, const QString &name)
{
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i)->name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

bool QLuaSyntaxProperties::load(const QString &path)
{
    functions.clear();
    classes.clear();
    QDomDocument doc;
    if (!QXmlHelper::parseFile(doc, path))
        return false;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("syntax"))
        return false;
    for (QDomElement e = root.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (e.tagName() == QLatin1String("function"))
            functions.append(e.attribute(QStringLiteral("name")));
        else if (e.tagName() == QLatin1String("class"))
            classes.append(e.attribute(QStringLiteral("name")));
    }
    return true;
}
