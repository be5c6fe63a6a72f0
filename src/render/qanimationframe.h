#pragma once

#include "render/qrenderframe.h"

#include <QImage>

class QAnimations;
class QSprites;

// Frames of the animation store as the stage draws them. The editor and the
// command-line tool both go through here, so a picture from the tool is the
// one the editor shows.
namespace QAnimationFrame {

// Frame `frame` of action `anim`: its sprite and axis, its fields, its own
// boxes, and the default boxes in force (clsnFrame names the earlier frame
// that holds them).
QRenderFrame make(const QAnimations &store, const QSprites *sprites, int anim, int frame);

// Writes the boxes of a stage frame back to the store, each list to the frame
// it came from; false when nothing differed.
bool storeBoxes(QAnimations &store, int anim, int frame, const QRenderFrame &shown);

// The frame on the stage at 1:1 with rulers and the animation cross, on a
// canvas that holds the sprite and the boxes; boxes drawn when `boxes`.
QImage picture(const QAnimations &store, QSprites *sprites, int anim, int frame, bool boxes);

} // namespace QAnimationFrame
