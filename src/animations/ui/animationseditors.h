#pragma once

class QInterface;
struct QAppObjects;

// The stage workspace that sprites, animations and sounds share, and the
// animations editor.
void registerAnimationEditors(QInterface &shell, const QAppObjects &objects);
