#pragma once

#include <QPlainTextDocumentLayout>

// The document layout of the code editor. Folding hides blocks behind the
// layout's back (QTextBlock::setVisible), so the layout is told afterwards
// that its size changed.
class QTextDocLayout : public QPlainTextDocumentLayout
{
    Q_OBJECT

public:
    explicit QTextDocLayout(QTextDocument *document);

    void emitDocumentSizeChanged() { emit documentSizeChanged(documentSize()); }
};
