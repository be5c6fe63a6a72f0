#include "qtexteditorblockdata.h"

QTextEditorBlockData *QTextEditorBlockData::data(const QTextBlock &block)
{
    return block.isValid() ? static_cast<QTextEditorBlockData *>(block.userData()) : nullptr;
}

QTextEditorBlockData *QTextEditorBlockData::ensure(QTextBlock &block)
{
    if (!block.isValid())
        return nullptr;
    auto *d = static_cast<QTextEditorBlockData *>(block.userData());
    if (!d) {
        d = new QTextEditorBlockData;
        block.setUserData(d);
    }
    return d;
}

int QTextEditorBlockData::foldingIndent(const QTextBlock &block)
{
    const QTextEditorBlockData *d = data(block);
    return d ? d->indent : 0;
}

void QTextEditorBlockData::setFoldingIndent(QTextBlock &block, int indent)
{
    if (indent <= 0) {
        if (QTextEditorBlockData *d = data(block))
            d->indent = 0;
        return;
    }
    ensure(block)->indent = indent;
}

bool QTextEditorBlockData::canCollapse(const QTextBlock &block)
{
    const QTextBlock next = block.next();
    return next.isValid() && foldingIndent(next) > foldingIndent(block);
}

bool QTextEditorBlockData::isCollapsed(const QTextBlock &block)
{
    const QTextEditorBlockData *d = data(block);
    return d && d->collapsed;
}

void QTextEditorBlockData::setCollapsed(QTextBlock &block, bool collapsed)
{
    if (!collapsed) {
        if (QTextEditorBlockData *d = data(block))
            d->collapsed = 0;
        return;
    }
    if (QTextEditorBlockData *d = ensure(block))
        d->collapsed = 1;
}

bool QTextEditorBlockData::hasParentheses(const QTextBlock &block)
{
    const QTextEditorBlockData *d = data(block);
    return d && !d->parens.isEmpty();
}

QVector<Parenthesis> QTextEditorBlockData::parentheses(const QTextBlock &block)
{
    const QTextEditorBlockData *d = data(block);
    return d ? d->parens : QVector<Parenthesis>();
}

QVector<BlockIssue> QTextEditorBlockData::issuesOf(const QTextBlock &block)
{
    const QTextEditorBlockData *d = data(block);
    return d ? d->issues : QVector<BlockIssue>();
}
