#pragma once

#include "code/qmugensyntaxchecker.h"
#include "code/qmugensyntaxhierarchy.h"
#include "code/qsyntaxprocessor.h"

class QMugenSyntaxProperties;
class SyntaxFormats;

// The highlighter of M.U.G.E.N. texts: each line is coloured by role, checked
// against the engine's language and the project's engine version, and given
// its fold level, in one pass. The section a line belongs to travels in the
// block state, so a keystroke re-checks only the lines whose context changed.
// Issues are underlined (warnings orange, errors red) and kept in the block
// data for the editor's tool tips and the issue list.
class QMugenSyntaxProcessor : public QSyntaxProcessor, private QMugenSyntaxChecker::FormatSink
{
    Q_OBJECT

public:
    // formats may be null: then nothing is coloured but the underlines.
    QMugenSyntaxProcessor(QMugenSyntaxProperties *syntax, const SyntaxFormats *formats, QTextDocument *document,
                          bool reportErrors = true);

    QSyntaxHierarchy *hierarchy() override { return &m_hierarchy; }
    QMugenSyntaxChecker &checker() { return m_checker; }
    bool reportErrors() const { return m_checker.reportErrors(); }
    // Re-checks the document when it changes.
    void setReportErrors(bool on);

    static QColor warningColor() { return QColor(255, 127, 0); }

protected:
    void highlightBlock(const QString &text) override;

private:
    void format(int start, int length, int role) override;
    void underline(const BlockIssue &issue, int length);
    static bool lacksTrigger(const QTextBlock &header);

    const SyntaxFormats *m_formats;
    QMugenSyntaxHierarchy m_hierarchy;
    QMugenSyntaxChecker m_checker;
};
