#pragma once

#include "code/qquickfindoption.h"

#include <QRegularExpression>
#include <QString>

class QTextEditor;

// Find and replace in the document of a code widget, as the search bar and
// the multi-line find dialog ask for it. A plain pattern is matched literally;
// a regular expression sees the document as lines, so "^" and "$" are the
// ends of each line. A pattern that is not a valid expression never matches.
namespace QTextFind {

QRegularExpression expression(const QString &pattern, const QQuickFindOptions &options);

// Selects the next match after the selection (before it, backward), going
// round the document once when circular is set. False when nothing matches.
bool find(QTextEditor *edit, const QString &pattern, const QQuickFindOptions &options);

// Replaces the selection when it is a match, then finds the next one; false
// when no match is left.
bool replace(QTextEditor *edit, const QString &pattern, const QString &with, const QQuickFindOptions &options);

// Replaces every match from the start of the document, as one undo step; the
// replacement's own text is never searched again. Returns the count.
int replaceAll(QTextEditor *edit, const QString &pattern, const QString &with, const QQuickFindOptions &options);

// The replacement for one match: in a regular expression "\N" and "%N" (N a
// digit) stand for the match's capture N.
QString expand(const QString &with, const QRegularExpressionMatch &match, bool regex);

} // namespace QTextFind
