#pragma once

class QInterface;
struct QAppObjects;

// The text workspace and the editors of the DEF, the commands and the states.
void registerCodeEditors(QInterface &shell, const QAppObjects &objects);
