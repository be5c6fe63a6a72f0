#pragma once

#include "code/qsyntaxhierarchy.h"

#include <QList>
#include <bitset>
#include <deque>

// Outline of M.U.G.E.N. texts (DEF, CNS, ST, CMD, AIR), in two trees of which
// one is shown at a time. The section tree has one node per [section],
// grouped the way authors look for them (states under their statedef,
// commands and constants in one node each), with the key = value entries of
// definition-like sections below them. The variable tree lists var(0)-var(59)
// and fvar(0)-fvar(39), each with the states that set it.
class QMugenSyntaxHierarchy : public QSyntaxHierarchy
{
    Q_OBJECT

public:
    enum View { VariablesView = 1, SectionsView = 2 };
    static constexpr int IntVariables = 60;
    static constexpr int FloatVariables = 40;

    // A node of either tree. In the variable tree the group and variable rows
    // have line -1; the rows below a variable are the states that set it.
    struct Node
    {
        QList<Node *> children;
        int line = 0;
        QString key;   // lower-cased section or entry word
        QString title; // text shown
        QString value;
        Node *parent = nullptr;
    };

    explicit QMugenSyntaxHierarchy(QObject *parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    void update(const QString &text) override;
    // In the variable view no node stands for a line: an invalid index.
    QModelIndex nodeAtLine(uint line) const override;
    bool sectionExists(const QString &section) const override;
    QString findValue(const QString &section, const QString &key) const override;
    void setView(uint view) override;

    const Node *root() const { return &m_root; }
    const Node *variablesRoot() const { return &m_varRoot; }
    // Line of the node behind an index, -1 for an invalid one or a row that
    // stands for no place in the text.
    int lineOf(const QModelIndex &index) const;
    // Nodes kept for reuse by the next update, in use or not.
    int pooledNodes() const { return int(m_pool.size()); }

private:
    // What a [State] section tells about variables, gathered until it ends.
    struct StateUses
    {
        Node *state = nullptr;
        QString type;
        int typeLine = -1;
        // Parameters of the var family: v, fv, first, last, value, fvalue.
        QString v, fv, first, last;
        int vLine = -1, fvLine = -1;
        bool value = false, fvalue = false;
        // Uses in file order: (float group, index, line).
        struct Use
        {
            bool isFloat;
            int index;
            int line;
        };
        QList<Use> uses;
    };

    Node *newNode(Node *parent, int line, const QString &key, const QString &title);
    Node *groupNode(const QString &key, const QString &title, int line);
    const Node *findSection(const Node *under, const QString &key) const;
    const Node *shownRoot() const { return m_view == VariablesView ? &m_varRoot : &m_root; }
    void releaseNodes();
    void buildVariableGroups();
    void collectStateLine(QStringView line, int lineNumber);
    void finishState();
    void addUse(bool isFloat, int index, int line, std::bitset<IntVariables + FloatVariables> &seen);
    // Row changes as views want them: the shown rows go, then come back.
    void hideRows();
    void showRows();

    Node m_root;
    Node m_varRoot;
    // Every update takes its nodes from here and gives them back at the next
    // one, so a rebuild after each pause in typing doesn't go through the
    // allocator; deque addresses stay put while it grows.
    std::deque<Node> m_pool;
    size_t m_used = 0;
    StateUses m_state;
    bool m_hidden = false;
};
