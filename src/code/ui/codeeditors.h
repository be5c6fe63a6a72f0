#pragma once

class QEditorRegistry;
struct QAppObjects;

// The text workspace and the editors of the DEF, the commands and the states.
void registerCodeEditors(QEditorRegistry &registry, const QAppObjects &objects);
