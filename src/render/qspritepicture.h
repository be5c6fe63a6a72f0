#pragma once

#include <QImage>

class QSprites;

// Pictures of one sprite of a store, drawn by the stage's own code, for the
// command-line tool and anything else that needs the stage without a screen.
namespace QSpritePicture {

// The sprite alone on a transparent canvas of its own size times the zoom
// factor of `zoomIndex`, colour 0 transparent, as ARGB32. `palette` < 0 takes
// the sprite's own. Null if the sprite has no picture.
QImage alone(QSprites *sprites, int index, int palette, int zoomIndex);

// The sprite on the stage as the editor shows it at `zoomIndex`: gradient,
// rulers and the sprite cross, the axis in the middle of a canvas that holds
// the whole sprite (at least 320 x 240).
QImage onStage(QSprites *sprites, int index, int palette, int zoomIndex);

} // namespace QSpritePicture
