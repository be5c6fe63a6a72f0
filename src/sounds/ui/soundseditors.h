#pragma once

class QEditorRegistry;
class QSoundsEditor;
struct QAppObjects;

// The sounds editor, with its actions and panel controls. Returns the editor
// (owned by the registry) so that the composition root can hand it the stage.
QSoundsEditor *registerSoundEditors(QEditorRegistry &registry, const QAppObjects &objects);
