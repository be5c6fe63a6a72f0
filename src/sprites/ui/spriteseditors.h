#pragma once

class QInterface;
struct QAppObjects;

// The sprites editor, and the organizer, palettes and thumbnails beside it.
void registerSpriteEditors(QInterface &shell, const QAppObjects &objects);
