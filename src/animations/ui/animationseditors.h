#pragma once

#include <functional>

class QEditorRegistry;
class QPlainTextEdit;
class QWidget;
struct QAppObjects;

// The stage workspace that sprites, animations and sounds share, and the
// animations editor. `textViews` makes the text widget of the animations'
// text views (the code widget lives in a layer of its own); without it they
// are plain text boxes.
void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects,
                              std::function<QPlainTextEdit *(QWidget *)> textViews = {});
