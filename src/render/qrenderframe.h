#pragma once

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>

// Whether the stage shows one sprite of the store or one frame of an action.
enum QRenderMode : quint32 { SpriteMode = 0, AnimationMode = 1 };

// Collision box kinds: bit 0 set for Clsn2, bit 1 set for a default box.
enum QClsnType : int { Clsn1 = 0, Clsn2 = 1, Clsn1Default = 2, Clsn2Default = 3 };

// One animation frame as the stage draws it. The animations editor fills it
// from its store; the stage edits the offset and the boxes in place and
// reports each change, so the editor writes back only what was touched.
struct QRenderFrame
{
    // The sprite as decoded, unflipped: indexed with its colour table, or 32-bit.
    // Null for a frame without a sprite or whose sprite is missing.
    QImage image;
    QPoint axis;       // the sprite's axis
    QPoint offset;     // the frame's x, y
    int group = -1;    // sprite named by the frame; -1: none
    int number = 0;
    bool missing = false; // the frame names a sprite the store lacks
    quint8 flip = 0;   // 1 vertical, 2 horizontal, 3 both
    quint8 trans = 0;  // 0 none, 1 additive, 2 subtractive
    quint16 src = 256; // additive source and destination factors, 256 = 1
    quint16 dst = 256;
    float scaleX = 0;  // 0: not given, drawn as 1
    float scaleY = 0;
    float angle = 0;   // degrees, counter-clockwise on screen

    // Boxes by QClsnType. A default list may belong to an earlier frame: its
    // index is in clsnFrame (-1: the current frame).
    QList<QRect> clsn[4];
    int clsnFrame[4] = {-1, -1, -1, -1};
};
