#pragma once

#include <QTextCursor>

// Bracket matching over the per-line bracket records of the syntax
// processors (QTextEditorBlockData::parentheses), never over the text: a
// bracket in a comment or a string is not a token and takes no part.
// "(" pairs with ")" and "[" with "]"; braces take no part at all.
class QParenthesesMatcher
{
public:
    enum Result { NoMatch, Mismatch, Match };

    // The bracket right after the cursor, as an opening one searched
    // forwards. On Match or Mismatch the cursor selects from the opening
    // bracket to just past its partner.
    static Result matchForward(QTextCursor *cursor);
    // The bracket right before the cursor, as a closing one searched
    // backwards; the selection is the same as above.
    static Result matchBackward(QTextCursor *cursor);

    // Cursor moves over the brackets, each false when there is nowhere to go.
    // Next closing bracket of the enclosing pair (nested pairs skipped).
    static bool moveToNextClosing(QTextCursor *cursor, QTextCursor::MoveMode mode = QTextCursor::MoveAnchor);
    // Opening bracket of the enclosing pair.
    static bool moveToPreviousOpening(QTextCursor *cursor, QTextCursor::MoveMode mode = QTextCursor::MoveAnchor);
    static bool moveToNextOpening(QTextCursor *cursor, QTextCursor::MoveMode mode = QTextCursor::MoveAnchor);
    static bool moveToPreviousClosing(QTextCursor *cursor, QTextCursor::MoveMode mode = QTextCursor::MoveAnchor);

    static bool isPair(QChar opening, QChar closing);
};
