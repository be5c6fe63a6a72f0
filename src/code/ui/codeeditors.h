#pragma once

#include <QList>
#include <QString>

#include <functional>

class QEditorRegistry;
class QProject;
struct QAppObjects;

// The text workspace and the editors of the DEF, the commands and the states.
// `projects` lists the open projects, whose documents a change of options
// paints again.
void registerCodeEditors(QEditorRegistry &registry, const QAppObjects &objects,
                         const std::function<QList<QProject *>()> &projects = {});

// Shows line `line` (0-based) of the project's text document read from
// `file` in its editor: the jump of an issue line. False when no text
// document of the project comes from that file.
bool showTextLine(QEditorRegistry &registry, QProject *project, const QString &file, uint line);
