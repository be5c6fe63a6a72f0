#pragma once

#include "code/qsyntaxprocessor.h"
#include "code/qtexteditorblockdata.h"

#include <QHash>

// A small stand-in for the language processors, for the code editor's tests
// and benchmark: it folds the way M.U.G.E.N. texts fold (a [State] block
// under its [Statedef], the lines of a section under its header), records
// brackets outside comments and strings, colours headers, comments and
// numbers, and underlines the issues it is given, by line.
class TestSectionProcessor : public QSyntaxProcessor
{
    Q_OBJECT

public:
    explicit TestSectionProcessor(QTextDocument *document);

    QSyntaxHierarchy *hierarchy() override { return &m_hierarchy; }
    void setIssue(int line, const BlockIssue &issue);

protected:
    void highlightBlock(const QString &text) override;

private:
    QNullSyntaxHierarchy m_hierarchy;
    QHash<int, BlockIssue> m_issues;
};
