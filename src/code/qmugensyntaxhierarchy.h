#pragma once

#include "code/qsyntaxhierarchy.h"

#include <QList>
#include <deque>

// Section outline of M.U.G.E.N. texts (DEF, CNS, ST, CMD, AIR): one node per
// [section], grouped the way authors look for them (states under their
// statedef, commands and constants in one node each), with the key = value
// entries of definition-like sections below them.
class QMugenSyntaxHierarchy : public QSyntaxHierarchy
{
    Q_OBJECT

public:
    enum View { VariablesView = 1, SectionsView = 2 };

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
    QModelIndex nodeAtLine(uint line) const override;
    bool sectionExists(const QString &section) const override;
    QString findValue(const QString &section, const QString &key) const override;

    const Node *root() const { return &m_root; }
    // Line of the node behind an index, -1 for an invalid one.
    int lineOf(const QModelIndex &index) const;

private:
    Node *newNode(Node *parent, int line, const QString &key, const QString &title);
    Node *groupNode(const QString &key, const QString &title, int line);
    const Node *findSection(const Node *under, const QString &key) const;

    Node m_root;
    std::deque<Node> m_nodes; // storage of this tree; addresses stay put while it grows
};
