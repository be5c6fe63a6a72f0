#include "qparenthesesmatcher.h"

#include "qtexteditorblockdata.h"

#include <QTextBlock>

namespace {

bool takesPart(const Parenthesis &p)
{
    return p.character == QLatin1Char('(') || p.character == QLatin1Char(')') || p.character == QLatin1Char('[')
           || p.character == QLatin1Char(']');
}

const QVector<Parenthesis> *parensOf(const QTextBlock &block)
{
    const QTextEditorBlockData *d = QTextEditorBlockData::data(block);
    return d ? &d->parens : nullptr;
}

// Walks bracket records forwards from (block, index), calling visit(block,
// paren) until it returns true; answers whether it did.
template<typename Visit>
bool walkForward(QTextBlock block, int index, Visit visit)
{
    while (block.isValid()) {
        if (const QVector<Parenthesis> *parens = parensOf(block)) {
            for (int i = index; i < parens->size(); ++i) {
                if (takesPart(parens->at(i)) && visit(block, parens->at(i)))
                    return true;
            }
        }
        block = block.next();
        index = 0;
    }
    return false;
}

// The same backwards, from index down; index -1 means "from the block's end".
template<typename Visit>
bool walkBackward(QTextBlock block, int index, Visit visit)
{
    while (block.isValid()) {
        if (const QVector<Parenthesis> *parens = parensOf(block)) {
            for (int i = index < 0 ? int(parens->size()) - 1 : qMin(index, int(parens->size()) - 1); i >= 0; --i) {
                if (takesPart(parens->at(i)) && visit(block, parens->at(i)))
                    return true;
            }
        }
        block = block.previous();
        index = -1;
    }
    return false;
}

int indexAt(const QTextBlock &block, int column, int type)
{
    if (const QVector<Parenthesis> *parens = parensOf(block)) {
        for (int i = 0; i < parens->size(); ++i) {
            const Parenthesis &p = parens->at(i);
            if (p.position == column && p.type == type && takesPart(p))
                return i;
        }
    }
    return -1;
}

} // namespace

bool QParenthesesMatcher::isPair(QChar opening, QChar closing)
{
    return (opening == QLatin1Char('(') && closing == QLatin1Char(')'))
           || (opening == QLatin1Char('[') && closing == QLatin1Char(']'));
}

QParenthesesMatcher::Result QParenthesesMatcher::matchForward(QTextCursor *cursor)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock();
    const int index = indexAt(block, column, Parenthesis::Opening);
    if (index < 0)
        return NoMatch;
    const QChar opening = parensOf(block)->at(index).character;
    int depth = 0;
    Result result = NoMatch;
    walkForward(block, index + 1, [&](const QTextBlock &b, const Parenthesis &p) {
        if (p.type == Parenthesis::Opening) {
            ++depth;
            return false;
        }
        if (depth > 0) {
            --depth;
            return false;
        }
        cursor->setPosition(block.position() + column);
        cursor->setPosition(b.position() + p.position + 1, QTextCursor::KeepAnchor);
        result = isPair(opening, p.character) ? Match : Mismatch;
        return true;
    });
    return result;
}

QParenthesesMatcher::Result QParenthesesMatcher::matchBackward(QTextCursor *cursor)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock() - 1;
    if (column < 0)
        return NoMatch;
    const int index = indexAt(block, column, Parenthesis::Closing);
    if (index < 0)
        return NoMatch;
    const QChar closing = parensOf(block)->at(index).character;
    int depth = 0;
    Result result = NoMatch;
    const auto visit = [&](const QTextBlock &b, const Parenthesis &p) {
        if (p.type == Parenthesis::Closing) {
            ++depth;
            return false;
        }
        if (depth > 0) {
            --depth;
            return false;
        }
        cursor->setPosition(b.position() + p.position);
        cursor->setPosition(block.position() + column + 1, QTextCursor::KeepAnchor);
        result = isPair(p.character, closing) ? Match : Mismatch;
        return true;
    };
    if (index > 0)
        walkBackward(block, index - 1, visit);
    else
        walkBackward(block.previous(), -1, visit);
    return result;
}

bool QParenthesesMatcher::moveToNextClosing(QTextCursor *cursor, QTextCursor::MoveMode mode)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock();
    int depth = 0;
    return walkForward(block, 0, [&](const QTextBlock &b, const Parenthesis &p) {
        if (b == block && p.position < column)
            return false;
        if (p.type == Parenthesis::Opening) {
            ++depth;
            return false;
        }
        if (depth > 0) {
            --depth;
            return false;
        }
        cursor->setPosition(b.position() + p.position + 1, mode);
        return true;
    });
}

bool QParenthesesMatcher::moveToPreviousOpening(QTextCursor *cursor, QTextCursor::MoveMode mode)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock();
    int depth = 0;
    return walkBackward(block, -1, [&](const QTextBlock &b, const Parenthesis &p) {
        if (b == block && p.position >= column)
            return false;
        if (p.type == Parenthesis::Closing) {
            ++depth;
            return false;
        }
        if (depth > 0) {
            --depth;
            return false;
        }
        cursor->setPosition(b.position() + p.position, mode);
        return true;
    });
}

bool QParenthesesMatcher::moveToNextOpening(QTextCursor *cursor, QTextCursor::MoveMode mode)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock();
    return walkForward(block, 0, [&](const QTextBlock &b, const Parenthesis &p) {
        if (p.type != Parenthesis::Opening || (b == block && p.position <= column))
            return false;
        cursor->setPosition(b.position() + p.position, mode);
        return true;
    });
}

bool QParenthesesMatcher::moveToPreviousClosing(QTextCursor *cursor, QTextCursor::MoveMode mode)
{
    const QTextBlock block = cursor->block();
    const int column = cursor->positionInBlock();
    return walkBackward(block, -1, [&](const QTextBlock &b, const Parenthesis &p) {
        if (p.type != Parenthesis::Closing || (b == block && p.position + 1 >= column))
            return false;
        cursor->setPosition(b.position() + p.position + 1, mode);
        return true;
    });
}
