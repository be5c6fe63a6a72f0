#pragma once

class QEditorRegistry;
struct QAppObjects;

// The stage workspace that sprites, animations and sounds share, and the
// animations editor.
void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects);
