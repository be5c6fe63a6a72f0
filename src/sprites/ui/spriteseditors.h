#pragma once

class QEditorRegistry;
struct QAppObjects;

// The sprites editor, and the organizer, palettes and thumbnails beside it.
void registerSpriteEditors(QEditorRegistry &registry, const QAppObjects &objects);
