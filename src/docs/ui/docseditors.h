#pragma once

class QEditorRegistry;
struct QAppObjects;

// The reference documentation: its browser workspace and its editor.
void registerDocsEditors(QEditorRegistry &registry, const QAppObjects &objects);
