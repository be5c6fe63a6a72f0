#pragma once

class QInterface;
struct QAppObjects;

// The sounds editor.
void registerSoundEditors(QInterface &shell, const QAppObjects &objects);
