#pragma once

#include <QList>
#include <QString>

#include <functional>

class QEditorRegistry;
class QProject;
class QPlainTextEdit;
class QWidget;
struct QAppObjects;

// The stage workspace that sprites, animations and sounds share, and the
// animations editor. `textViews` makes the text widget of the animations'
// text views (the code widget lives in a layer of its own); without it they
// are plain text boxes. `openProjects` lists the projects open at the moment,
// for the import of actions from one into another.
void registerAnimationEditors(QEditorRegistry &registry, const QAppObjects &objects,
                              std::function<QPlainTextEdit *(QWidget *)> textViews = {},
                              std::function<QList<QProject *>()> openProjects = {});

// Shows the action at line `line` (0-based) of the project's animation file
// named `file` in the animations editor: the jump of an issue line. False
// when the project's animations don't come from that file, or the file is
// the DEF, whose lines the definitions editor shows.
bool showAnimationLine(QEditorRegistry &registry, QProject *project, const QString &file, uint line);
