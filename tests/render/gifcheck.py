#!/usr/bin/env python3
"""Reads GIF files with PIL and compares every frame with what the writer meant.

Each argument BASE names BASE.gif and BASE.txt; BASE.txt has one line per frame:
"left top width height hexindices". Since every frame clears its area after
showing (disposal 2), the canvas after frame i holds frame i alone: its box must
show the frame's colours where its index is not 0, and be transparent where it is.
"""
import sys
from PIL import Image


def check(base):
    expected = []
    with open(base + ".txt") as f:
        for line in f:
            left, top, width, height, hexdata = line.split()
            expected.append((int(left), int(top), int(width), int(height), bytes.fromhex(hexdata)))
    im = Image.open(base + ".gif")
    frames = getattr(im, "n_frames", 1)
    if frames != len(expected):
        return "%s.gif: %d frames, expected %d" % (base, frames, len(expected))
    for i, (left, top, width, height, indices) in enumerate(expected):
        im.seek(i)
        # The raw indices of this frame's own image, before any compositing.
        raw = im.im if im.mode == "P" else None
        palette = im.getpalette() if im.mode == "P" else None
        rgba = im.convert("RGBA")
        for y in range(height):
            for x in range(width):
                index = indices[y * width + x]
                px = rgba.getpixel((left + x, top + y))
                if index == 0:
                    if px[3] != 0:
                        return "%s.gif frame %d: (%d,%d) should be transparent" % (base, i, x, y)
                elif px[3] == 0:
                    return "%s.gif frame %d: (%d,%d) should show index %d" % (base, i, x, y, index)
                elif raw is not None and palette is not None and im.getpixel((left + x, top + y)) != index:
                    want = tuple(palette[index * 3:index * 3 + 3])
                    if want != px[:3]:
                        return "%s.gif frame %d: (%d,%d) shows %r, index %d is %r" % (base, i, x, y, px, index, want)
    return None


def main():
    for base in sys.argv[1:]:
        problem = check(base)
        if problem:
            print(problem, file=sys.stderr)
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
