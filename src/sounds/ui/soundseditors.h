#pragma once

class QEditorRegistry;
struct QAppObjects;

// The sounds editor.
void registerSoundEditors(QEditorRegistry &registry, const QAppObjects &objects);
