#pragma once

#include <QChar>
#include <QString>
#include <QTextBlock>
#include <QTextBlockUserData>
#include <QVector>

// One syntax issue on a line, columns counted in the block, both inclusive.
struct BlockIssue
{
    enum Kind : quint8 { Warning = 0, Error = 1 };
    quint8 kind = Warning;
    int start = 0;
    int end = 0;
    QString message;
};

// One bracket token of a line, as the syntax processor found it: matching
// reads these and never the text, so brackets inside strings and comments
// are simply never recorded.
struct Parenthesis
{
    enum Type { Opening = 0, Closing = 1 };
    int type = Opening;
    QChar character;
    int position = 0;
};

// What the syntax processors know about a line, kept with the block so the
// editor can fold, match brackets and explain issues without reading text.
class QTextEditorBlockData : public QTextBlockUserData
{
public:
    quint8 sectionHeader = 0;
    quint8 beforeHeader = 0;
    int collapsed = 0;
    int indent = 0; // fold level, never negative
    QVector<BlockIssue> issues;
    QVector<Parenthesis> parens; // in text order

    // The record of a block, or null when the block has none.
    static QTextEditorBlockData *data(const QTextBlock &block);
    // The record of a block, created empty when missing.
    static QTextEditorBlockData *ensure(QTextBlock &block);

    static int foldingIndent(const QTextBlock &block);
    // A zero indent creates no record; a negative one is stored as 0.
    static void setFoldingIndent(QTextBlock &block, int indent);
    // The next block is deeper: this line opens a fold.
    static bool canCollapse(const QTextBlock &block);
    static bool isCollapsed(const QTextBlock &block);
    static void setCollapsed(QTextBlock &block, bool collapsed);
    static bool hasParentheses(const QTextBlock &block);
    static QVector<Parenthesis> parentheses(const QTextBlock &block);
    static QVector<BlockIssue> issuesOf(const QTextBlock &block);
};
