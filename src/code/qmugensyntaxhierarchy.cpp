#include "qmugensyntaxhierarchy.h"

#include "base/airlexer.h"

namespace {

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
}

QMugenSyntaxHierarchy::Node *QMugenSyntaxHierarchy::newNode(Node *parent, int line, const QString &key,
                                                            const QString &title)
{
    Node &node = m_nodes.emplace_back();
    node.parent = parent;
    node.line = line;
    node.key = key;
    node.title = title;
    parent->children.append(&node);
    return &node;
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
    beginResetModel();
    m_root.children.clear();
    m_nodes.clear();
    m_name.clear();
    m_lineCount = text.isEmpty() ? 0 : int(text.count(QLatin1Char('\n'))) + 1;

    enum Kind { Plain, StateDef, State, Command, Quotes, Info } kind = Plain;
    Node *section = nullptr;
    Node *lastStateDef = nullptr;
    bool nameTaken = false;

    AirLexer lx(text);
    while (lx.kind() != AirLexer::End) {
        if (lx.kind() == AirLexer::LineEnd) {
            lx.next();
            continue;
        }
        if (lx.kind() == AirLexer::OpenBracket) {
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
    endResetModel();
    emit updated();
}

QModelIndex QMugenSyntaxHierarchy::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0)
        return QModelIndex();
    const Node *p = parent.isValid() ? static_cast<const Node *>(parent.internalPointer()) : &m_root;
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
    if (!p || p == &m_root || !p->parent)
        return QModelIndex();
    return createIndex(int(p->parent->children.indexOf(const_cast<Node *>(p))), 0, const_cast<Node *>(p));
}

int QMugenSyntaxHierarchy::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    const Node *p = parent.isValid() ? static_cast<const Node *>(parent.internalPointer()) : &m_root;
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
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return node->title;
    return QVariant();
}

int QMugenSyntaxHierarchy::lineOf(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<const Node *>(index.internalPointer())->line : -1;
}

QModelIndex QMugenSyntaxHierarchy::nodeAtLine(uint line) const
{
    const Node *node = &m_root;
    QModelIndex result;
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
