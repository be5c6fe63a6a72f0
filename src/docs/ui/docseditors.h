#pragma once

class QInterface;
struct QAppObjects;

// The reference documentation: its browser workspace and its editor.
void registerDocsEditors(QInterface &shell, const QAppObjects &objects);
