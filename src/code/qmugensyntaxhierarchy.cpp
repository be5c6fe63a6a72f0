#include "qmugensyntaxhierarchy.h"

#include "base/airlexer.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

enum VarKey { IntGroup, FloatGroup, IntVar, FloatVar, VarUse };

// Shared texts, so that the keys of the variable tree cost no allocation.
const QString &keyOf(VarKey which)
{
    static const QString keys[] = {QStringLiteral("int"), QStringLiteral("float"), QStringLiteral("var"),
                                   QStringLiteral("fvar"), QStringLiteral("use")};
    return keys[which];
}

// The line without its comment; a ";" inside double quotes is text.
QStringView withoutComment(QStringView line)
{
    bool quoted = false;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line[i] == QLatin1Char('"'))
            quoted = !quoted;
        else if (line[i] == QLatin1Char(';') && !quoted)
            return line.left(i);
    }
    return line;
}

QString unquote(const QString &value)
{
    if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        return value.mid(1, value.size() - 2);
    return value;
}

QString firstWord(const QString &header)
{
    return header.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty).trimmed().toLower();
}

} // namespace

QMugenSyntaxHierarchy::QMugenSyntaxHierarchy(QObject *parent)
    : QSyntaxHierarchy(parent)
{
    m_view = SectionsView;
    m_root.line = 0;
    m_varRoot.line = -1;
    buildVariableGroups();
}

QMugenSyntaxHierarchy::Node *QMugenSyntaxHierarchy::newNode(Node *parent, int line, const QString &key,
                                                            const QString &title)
{
    Node &node = m_used < m_pool.size() ? m_pool[m_used] : m_pool.emplace_back();
    ++m_used;
    // A reused node keeps the room of its child list, not its old children.
    node.children.clear();
    node.value.clear();
    node.parent = parent;
    node.line = line;
    node.key = key;
    node.title = title;
    parent->children.append(&node);
    return &node;
}

void QMugenSyntaxHierarchy::releaseNodes()
{
    m_root.children.clear();
    m_varRoot.children.clear();
    m_used = 0;
}

void QMugenSyntaxHierarchy::buildVariableGroups()
{
    Node *ints = newNode(&m_varRoot, -1, keyOf(IntGroup), QString());
    for (int i = 0; i < IntVariables; ++i)
        newNode(ints, -1, keyOf(IntVar), QString());
    Node *floats = newNode(&m_varRoot, -1, keyOf(FloatGroup), QString());
    for (int i = 0; i < FloatVariables; ++i)
        newNode(floats, -1, keyOf(FloatVar), QString());
}

void QMugenSyntaxHierarchy::hideRows()
{
    if (m_hidden)
        return;
    const int rows = int(shownRoot()->children.size());
    if (rows > 0)
        beginRemoveRows(QModelIndex(), 0, rows - 1);
    m_hidden = true;
    if (rows > 0)
        endRemoveRows();
}

void QMugenSyntaxHierarchy::showRows()
{
    const int rows = int(shownRoot()->children.size());
    if (rows > 0)
        beginInsertRows(QModelIndex(), 0, rows - 1);
    m_hidden = false;
    if (rows > 0)
        endInsertRows();
}

void QMugenSyntaxHierarchy::setView(uint view)
{
    if (int(view) == m_view || (view != VariablesView && view != SectionsView))
        return;
    hideRows();
    m_view = int(view);
    showRows();
}

// One line of a [State] section: its type and var parameters, and the
// assignments "var(N) :=" inside any expression.
void QMugenSyntaxHierarchy::collectStateLine(QStringView raw, int lineNumber)
{
    static const QRegularExpression entry(QStringLiteral("\\A\\s*([A-Za-z_][\\w.]*)\\s*=(.*)\\z"));
    static const QRegularExpression param(QStringLiteral("\\A\\s*(f?)var\\s*\\(\\s*(\\d{1,3})\\s*\\)\\s*="),
                                          QRegularExpression::CaseInsensitiveOption);
    // The engine reads names in any case; "sysvar(N) :=" is not var(N).
    static const QRegularExpression assign(QStringLiteral("\\b(f?)var\\s*\\(\\s*(\\d{1,3})\\s*\\)\\s*:="),
                                           QRegularExpression::CaseInsensitiveOption);
    const QStringView line = withoutComment(raw);
    StateUses &s = m_state;

    const QRegularExpressionMatch p = param.match(line);
    if (p.hasMatch()) {
        // A parameter named by the variable counts only for the var family,
        // whose type may still come further down.
        s.uses.append({!p.capturedView(1).isEmpty(), -1 - p.capturedView(2).toInt(), lineNumber});
    } else if (const QRegularExpressionMatch e = entry.match(line); e.hasMatch()) {
        const QString key = e.capturedView(1).toString().toLower();
        const QString value = e.capturedView(2).trimmed().toString();
        if (key == QLatin1String("type")) {
            s.type = value.toLower();
            s.typeLine = lineNumber;
        } else if (key == QLatin1String("v")) {
            s.v = value;
            s.vLine = lineNumber;
        } else if (key == QLatin1String("fv")) {
            s.fv = value;
            s.fvLine = lineNumber;
        } else if (key == QLatin1String("first")) {
            s.first = value;
        } else if (key == QLatin1String("last")) {
            s.last = value;
        } else if (key == QLatin1String("value")) {
            s.value = true;
        } else if (key == QLatin1String("fvalue")) {
            s.fvalue = true;
        }
    }
    QRegularExpressionMatchIterator it = assign.globalMatch(line);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        s.uses.append({!m.capturedView(1).isEmpty(), m.capturedView(2).toInt(), lineNumber});
    }
}

void QMugenSyntaxHierarchy::addUse(bool isFloat, int index, int line,
                                   std::bitset<IntVariables + FloatVariables> &seen)
{
    const int count = isFloat ? FloatVariables : IntVariables;
    if (index < 0 || index >= count)
        return;
    const size_t bit = size_t(isFloat ? IntVariables + index : index);
    if (seen.test(bit))
        return;
    seen.set(bit);
    Node *row = m_varRoot.children.at(isFloat ? 1 : 0)->children.at(index);
    // The statedef goes along for the tool tip: state titles often repeat.
    newNode(row, line, keyOf(VarUse), m_state.state->title)->value = m_state.state->parent->title;
}

// Puts the variables the finished [State] section sets under their rows,
// once per section, at the line of the first use, in file order.
void QMugenSyntaxHierarchy::finishState()
{
    StateUses &s = m_state;
    if (!s.state)
        return;
    static const QStringList family = {QStringLiteral("varset"), QStringLiteral("varadd"),
                                       QStringLiteral("varrandom"), QStringLiteral("parentvarset"),
                                       QStringLiteral("parentvaradd")};
    const bool setter = family.contains(s.type);
    QList<StateUses::Use> uses;
    uses.reserve(s.uses.size() + 2);
    for (const StateUses::Use &u : std::as_const(s.uses)) {
        if (u.index >= 0)
            uses.append(u);
        else if (setter)
            uses.append({u.isFloat, -1 - u.index, u.line});
    }
    bool ok = false;
    if (setter && !s.v.isEmpty()) {
        const int n = s.v.toInt(&ok);
        if (ok)
            uses.append({false, n, s.vLine});
    }
    if (setter && !s.fv.isEmpty()) {
        const int n = s.fv.toInt(&ok);
        if (ok)
            uses.append({true, n, s.fvLine});
    }
    std::stable_sort(uses.begin(), uses.end(),
                     [](const StateUses::Use &a, const StateUses::Use &b) { return a.line < b.line; });

    std::bitset<IntVariables + FloatVariables> seen;
    if (s.type == QLatin1String("varrangeset")) {
        // A range whose ends are expressions can't be known before the run.
        for (const bool isFloat : {false, true}) {
            if (!(isFloat ? s.fvalue : s.value))
                continue;
            const int first = s.first.isEmpty() ? 0 : s.first.toInt(&ok);
            if (!s.first.isEmpty() && !ok)
                continue;
            const int last = s.last.isEmpty() ? (isFloat ? FloatVariables : IntVariables) - 1 : s.last.toInt(&ok);
            if (!s.last.isEmpty() && !ok)
                continue;
            for (int i = qMax(first, 0); i <= qMin(last, (isFloat ? FloatVariables : IntVariables) - 1); ++i)
                addUse(isFloat, i, s.typeLine, seen);
        }
    }
    for (const StateUses::Use &u : std::as_const(uses))
        addUse(u.isFloat, u.index, u.line, seen);

    s.state = nullptr;
    s.type.clear();
    s.v.clear();
    s.fv.clear();
    s.first.clear();
    s.last.clear();
    s.typeLine = s.vLine = s.fvLine = -1;
    s.value = s.fvalue = false;
    s.uses.clear();
}

// Group rows ("Commands", constants) are made at their first use.
QMugenSyntaxHierarchy::Node *QMugenSyntaxHierarchy::groupNode(const QString &key, const QString &title, int line)
{
    for (Node *n : std::as_const(m_root.children))
        if (n->key == key)
            return n;
    return newNode(&m_root, line, key, title);
}

void QMugenSyntaxHierarchy::update(const QString &text)
{
    hideRows();
    releaseNodes();
    buildVariableGroups();
    m_name.clear();
    m_lineCount = text.isEmpty() ? 0 : int(text.count(QLatin1Char('\n'))) + 1;

    enum Kind { Plain, StateDef, State, Command, Quotes, Info } kind = Plain;
    Node *section = nullptr;
    Node *lastStateDef = nullptr;
    bool nameTaken = false;

    const QList<QStringView> lines = QStringView(text).split(QLatin1Char('\n'));
    AirLexer lx(text);
    while (lx.kind() != AirLexer::End) {
        if (lx.kind() == AirLexer::LineEnd) {
            lx.next();
            continue;
        }
        if (lx.kind() == AirLexer::OpenBracket) {
            finishState();
            const int line = lx.line();
            const QString header = lx.readRest(QLatin1Char(']')).trimmed();
            const QString key = firstWord(header);
            kind = Plain;
            if (key == QLatin1String("statedef")) {
                section = lastStateDef = newNode(&m_root, line, key, header);
                kind = StateDef;
            } else if (key == QLatin1String("state")) {
                section = newNode(lastStateDef ? lastStateDef : &m_root, line, key, header);
                kind = State;
                m_state.state = section;
            } else if (key == QLatin1String("command")) {
                section = newNode(groupNode(QStringLiteral("commands"), tr("Commands"), line), line, key, header);
                kind = Command;
            } else if (key == QLatin1String("data") || key == QLatin1String("size")
                       || key == QLatin1String("velocity") || key == QLatin1String("movement")) {
                section = newNode(groupNode(QStringLiteral("const"), tr("Constants"), line), line, key, header);
            } else if (key == QLatin1String("begin")
                       && header.section(QLatin1Char(' '), 1, 1, QString::SectionSkipEmpty)
                                  .compare(QLatin1String("action"), Qt::CaseInsensitive) == 0) {
                section = newNode(&m_root, line, QStringLiteral("anim"), header);
            } else if (key.endsWith(QLatin1String("quotes"))) {
                section = newNode(&m_root, line, QStringLiteral("quotes"), header);
                kind = Quotes;
            } else {
                section = newNode(&m_root, line, key, header);
                if (key == QLatin1String("info"))
                    kind = Info;
            }
            lx.skipLine();
            continue;
        }
        if (kind == State && lx.line() < lines.size())
            collectStateLine(lines.at(lx.line()), lx.line());
        if (lx.kind() == AirLexer::Identifier && section) {
            const int line = lx.line();
            const QString word = lx.text();
            if (lx.next() == AirLexer::Equals) {
                const QString value = unquote(lx.readRest(QLatin1Char(';'), true).trimmed());
                const QString key = word.toLower();
                switch (kind) {
                case StateDef:
                    break;
                case State:
                    if (key == QLatin1String("type"))
                        section->value = value;
                    break;
                case Command:
                    if (key == QLatin1String("name") && section->value.isEmpty()) {
                        section->value = value;
                        section->title = value;
                    }
                    break;
                case Quotes:
                    newNode(section, line, QStringLiteral("quote"), value)->value = value;
                    break;
                case Info:
                    if (key == QLatin1String("name") && !nameTaken) {
                        m_name = value;
                        nameTaken = true;
                    }
                    Q_FALLTHROUGH();
                case Plain:
                    newNode(section, line, key, word + QLatin1String(" = ") + value)->value = value;
                    break;
                }
            }
        }
        if (lx.kind() != AirLexer::LineEnd && lx.kind() != AirLexer::End)
            lx.skipLine();
    }
    finishState();
    // A text much smaller than the largest one seen gives most of the room back.
    if (m_pool.size() > 4096 && m_used * 4 < m_pool.size())
        m_pool.resize(std::max<size_t>(m_used * 2, 1024));
    showRows();
    emit updated();
}

QModelIndex QMugenSyntaxHierarchy::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0 || (!parent.isValid() && m_hidden))
        return QModelIndex();
    const Node *p = parent.isValid() ? static_cast<const Node *>(parent.internalPointer()) : shownRoot();
    if (row >= p->children.size())
        return QModelIndex();
    return createIndex(row, 0, p->children.at(row));
}

QModelIndex QMugenSyntaxHierarchy::parent(const QModelIndex &child) const
{
    if (!child.isValid())
        return QModelIndex();
    const Node *node = static_cast<const Node *>(child.internalPointer());
    const Node *p = node->parent;
    if (!p || p == shownRoot() || !p->parent)
        return QModelIndex();
    return createIndex(int(p->parent->children.indexOf(const_cast<Node *>(p))), 0, const_cast<Node *>(p));
}

int QMugenSyntaxHierarchy::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0 || (!parent.isValid() && m_hidden))
        return 0;
    const Node *p = parent.isValid() ? static_cast<const Node *>(parent.internalPointer()) : shownRoot();
    return int(p->children.size());
}

int QMugenSyntaxHierarchy::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant QMugenSyntaxHierarchy::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const Node *node = static_cast<const Node *>(index.internalPointer());
    if (role == LineRole)
        return qMax(node->line, -1);
    if (m_view == VariablesView && node->line < 0) {
        if (role != Qt::DisplayRole)
            return QVariant();
        if (node->key == keyOf(IntGroup))
            return tr("Integer");
        if (node->key == keyOf(FloatGroup))
            return tr("Float");
        return QString::number(index.row());
    }
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return node->title;
    if (role == Qt::ToolTipRole && node->key == keyOf(VarUse))
        return tr("%1, line %2").arg(node->value.isEmpty() ? node->title : node->value).arg(node->line + 1);
    return QVariant();
}

int QMugenSyntaxHierarchy::lineOf(const QModelIndex &index) const
{
    return index.isValid() ? qMax(static_cast<const Node *>(index.internalPointer())->line, -1) : -1;
}

QModelIndex QMugenSyntaxHierarchy::nodeAtLine(uint line) const
{
    const Node *node = &m_root;
    QModelIndex result;
    if (m_view != SectionsView || m_hidden)
        return result;
    for (;;) {
        const Node *found = nullptr;
        int row = -1;
        for (qsizetype i = node->children.size() - 1; i >= 0; --i) {
            if (node->children.at(i)->line <= int(line)) {
                found = node->children.at(i);
                row = int(i);
                break;
            }
        }
        if (!found)
            return result;
        result = createIndex(row, 0, const_cast<Node *>(found));
        node = found;
    }
}

bool QMugenSyntaxHierarchy::sectionExists(const QString &section) const
{
    for (const Node *n : m_root.children)
        if (n->key.compare(section, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

// Depth first, in file order, so that sections kept inside a group row are found too.
const QMugenSyntaxHierarchy::Node *QMugenSyntaxHierarchy::findSection(const Node *under, const QString &key) const
{
    for (const Node *n : under->children) {
        if (n->key.compare(key, Qt::CaseInsensitive) == 0)
            return n;
        if (n->key == QLatin1String("const") || n->key == QLatin1String("commands")) {
            if (const Node *inner = findSection(n, key))
                return inner;
        }
    }
    return nullptr;
}

QString QMugenSyntaxHierarchy::findValue(const QString &section, const QString &key) const
{
    const Node *s = findSection(&m_root, section);
    if (!s)
        return QString();
    for (const Node *n : s->children)
        if (n->key.compare(key, Qt::CaseInsensitive) == 0)
            return n->value;
    return QString();
}
