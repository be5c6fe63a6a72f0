#include "shell/qtranslationunit.h"

#include <QAction>

namespace {

// Captions. Several ids repeat the text of another id on purpose: the same
// word ("New", "Save as...") names a different action in each editor, and a
// translator may need to tell them apart.
const char *const kCaptions[QTranslationUnit::Count] = {
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 0
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 1
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close"), // 2
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close all"), // 3
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close others"), // 4
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 5
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 6
    QT_TRANSLATE_NOOP("QTranslationUnit", "Create backup"), // 7
    QT_TRANSLATE_NOOP("QTranslationUnit", "Load backup"), // 8
    QT_TRANSLATE_NOOP("QTranslationUnit", "Run in M.U.G.E.N"), // 9
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exit"), // 10
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo"), // 11
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo"), // 12
    QT_TRANSLATE_NOOP("QTranslationUnit", "Cut"), // 13
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy"), // 14
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paste"), // 15
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find/Replace"), // 16
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find/Replace (multi-line)"), // 17
    QT_TRANSLATE_NOOP("QTranslationUnit", "Left panel"), // 18
    QT_TRANSLATE_NOOP("QTranslationUnit", "Right panel"), // 19
    QT_TRANSLATE_NOOP("QTranslationUnit", "Organizer"), // 20
    QT_TRANSLATE_NOOP("QTranslationUnit", "Action list"), // 21
    QT_TRANSLATE_NOOP("QTranslationUnit", "Calculator"), // 22
    QT_TRANSLATE_NOOP("QTranslationUnit", "Clipboard container"), // 23
    QT_TRANSLATE_NOOP("QTranslationUnit", "Issues"), // 24
    QT_TRANSLATE_NOOP("QTranslationUnit", "State controller list"), // 25
    QT_TRANSLATE_NOOP("QTranslationUnit", "Text toolbar"), // 26
    QT_TRANSLATE_NOOP("QTranslationUnit", "Centralize axis"), // 27
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sprite cross"), // 28
    QT_TRANSLATE_NOOP("QTranslationUnit", "Animation cross"), // 29
    QT_TRANSLATE_NOOP("QTranslationUnit", "Extra cross"), // 30
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rulers"), // 31
    QT_TRANSLATE_NOOP("QTranslationUnit", "Guide lines"), // 32
    QT_TRANSLATE_NOOP("QTranslationUnit", "CLSN 1"), // 33
    QT_TRANSLATE_NOOP("QTranslationUnit", "CLSN 2"), // 34
    QT_TRANSLATE_NOOP("QTranslationUnit", "CLSN 1 default"), // 35
    QT_TRANSLATE_NOOP("QTranslationUnit", "CLSN 2 default"), // 36
    QT_TRANSLATE_NOOP("QTranslationUnit", "Options..."), // 37
    QT_TRANSLATE_NOOP("QTranslationUnit", "Script editor"), // 38
    QT_TRANSLATE_NOOP("QTranslationUnit", "Reference Documentation"), // 39
    QT_TRANSLATE_NOOP("QTranslationUnit", "Report a bug..."), // 40
    QT_TRANSLATE_NOOP("QTranslationUnit", "About..."), // 41
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open recent"), // 42
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of definitions"), // 43
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of sprites"), // 44
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of animations"), // 45
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of commands"), // 46
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of states"), // 47
    QT_TRANSLATE_NOOP("QTranslationUnit", "Editor of sounds"), // 48
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 49
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 50
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 51
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 52
    QT_TRANSLATE_NOOP("QTranslationUnit", "Zoom"), // 53
    QT_TRANSLATE_NOOP("QTranslationUnit", "Actual size"), // 54
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease zoom"), // 55
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase zoom"), // 56
    QT_TRANSLATE_NOOP("QTranslationUnit", "Code"), // 57
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to line..."), // 58
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous syntax error"), // 59
    QT_TRANSLATE_NOOP("QTranslationUnit", "Next syntax error"), // 60
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous deprecation"), // 61
    QT_TRANSLATE_NOOP("QTranslationUnit", "Next deprecation"), // 62
    QT_TRANSLATE_NOOP("QTranslationUnit", "Comment/Uncomment selection"), // 63
    QT_TRANSLATE_NOOP("QTranslationUnit", "Definitions"), // 64
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 65
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 66
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 67
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 68
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sprites"), // 69
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 70
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 71
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 72
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 73
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add"), // 74
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete"), // 75
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change image..."), // 76
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save image..."), // 77
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save image (aligned)..."), // 78
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop image"), // 79
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop all images"), // 80
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate"), // 81
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete group"), // 82
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rename group"), // 83
    QT_TRANSLATE_NOOP("QTranslationUnit", "Alignment Tool"), // 84
    QT_TRANSLATE_NOOP("QTranslationUnit", "Image editor"), // 85
    QT_TRANSLATE_NOOP("QTranslationUnit", "Split channels"), // 86
    QT_TRANSLATE_NOOP("QTranslationUnit", "Export..."), // 87
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import..."), // 88
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import from another project..."), // 89
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch to the frame's sprite"), // 90
    QT_TRANSLATE_NOOP("QTranslationUnit", "Group:"), // 91
    QT_TRANSLATE_NOOP("QTranslationUnit", "Index:"), // 92
    QT_TRANSLATE_NOOP("QTranslationUnit", "X axis:"), // 93
    QT_TRANSLATE_NOOP("QTranslationUnit", "Y axis:"), // 94
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous group"), // 95
    QT_TRANSLATE_NOOP("QTranslationUnit", "Next group"), // 96
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px to the left"), // 97
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px up"), // 98
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px to the right"), // 99
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px down"), // 100
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decompress on load"), // 101
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show transparency color"), // 102
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch to the sprite palette"), // 103
    QT_TRANSLATE_NOOP("QTranslationUnit", "OnionSkin"), // 104
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, left)"), // 105
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, right)"), // 106
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, left)"), // 107
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, right)"), // 108
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, center)"), // 109
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, center)"), // 110
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, center)"), // 111
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, left)"), // 112
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, right)"), // 113
    QT_TRANSLATE_NOOP("QTranslationUnit", "Palettes"), // 114
    QT_TRANSLATE_NOOP("QTranslationUnit", "Clear"), // 115
    QT_TRANSLATE_NOOP("QTranslationUnit", "Clear all unused"), // 116
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add"), // 117
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete"), // 118
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remove all duplicates"), // 119
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change..."), // 120
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 121
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch color count (32-256)"), // 122
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remap"), // 123
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo"), // 124
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo"), // 125
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exchange position of selected colors"), // 126
    QT_TRANSLATE_NOOP("QTranslationUnit", "Color picker"), // 127
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sets the color of the selected slots"), // 128
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply to the sprites"), // 129
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply to the groups"), // 130
    QT_TRANSLATE_NOOP("QTranslationUnit", "Advanced palette editor"), // 131
    QT_TRANSLATE_NOOP("QTranslationUnit", "Group:"), // 132
    QT_TRANSLATE_NOOP("QTranslationUnit", "Index:"), // 133
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous group"), // 134
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous group"), // 135
    QT_TRANSLATE_NOOP("QTranslationUnit", "Animations"), // 136
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 137
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 138
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 139
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 140
    QT_TRANSLATE_NOOP("QTranslationUnit", "Text mode"), // 141
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add"), // 142
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete"), // 143
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate"), // 144
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit as text"), // 145
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as animated GIF..."), // 146
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play"), // 147
    QT_TRANSLATE_NOOP("QTranslationUnit", "Stop"), // 148
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add frame"), // 149
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete frame"), // 150
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply time to all next frames"), // 151
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply flip to all next frames"), // 152
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply transparency to all next frames"), // 153
    QT_TRANSLATE_NOOP("QTranslationUnit", "Alignment Tool"), // 154
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add CLSN 1"), // 155
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add CLSN 2"), // 156
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete selected CLSNs"), // 157
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all CLSNs"), // 158
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all CLSNs of the current animation"), // 159
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch CLSN type"), // 160
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch CLSN default"), // 161
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy CLSNs of the previous frame"), // 162
    QT_TRANSLATE_NOOP("QTranslationUnit", "Use these CLSNs in all other instances of this frame"), // 163
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import from another project..."), // 164
    QT_TRANSLATE_NOOP("QTranslationUnit", "Number:"), // 165
    QT_TRANSLATE_NOOP("QTranslationUnit", "Name:"), // 166
    QT_TRANSLATE_NOOP("QTranslationUnit", "Frames:"), // 167
    QT_TRANSLATE_NOOP("QTranslationUnit", "Group:"), // 168
    QT_TRANSLATE_NOOP("QTranslationUnit", "Index:"), // 169
    QT_TRANSLATE_NOOP("QTranslationUnit", "X axis:"), // 170
    QT_TRANSLATE_NOOP("QTranslationUnit", "Y axis:"), // 171
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px to the left"), // 172
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px up"), // 173
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px to the right"), // 174
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move 1px down"), // 175
    QT_TRANSLATE_NOOP("QTranslationUnit", "Time:"), // 176
    QT_TRANSLATE_NOOP("QTranslationUnit", "Flip:"), // 177
    QT_TRANSLATE_NOOP("QTranslationUnit", "Transparency:"), // 178
    QT_TRANSLATE_NOOP("QTranslationUnit", "Source:"), // 179
    QT_TRANSLATE_NOOP("QTranslationUnit", "Dest:"), // 180
    QT_TRANSLATE_NOOP("QTranslationUnit", "Start loop in this frame"), // 181
    QT_TRANSLATE_NOOP("QTranslationUnit", "X scale:"), // 182
    QT_TRANSLATE_NOOP("QTranslationUnit", "Y scale:"), // 183
    QT_TRANSLATE_NOOP("QTranslationUnit", "Angle:"), // 184
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interpolate:"), // 185
    QT_TRANSLATE_NOOP("QTranslationUnit", "Offset"), // 186
    QT_TRANSLATE_NOOP("QTranslationUnit", "Blend"), // 187
    QT_TRANSLATE_NOOP("QTranslationUnit", "Scale"), // 188
    QT_TRANSLATE_NOOP("QTranslationUnit", "Angle"), // 189
    QT_TRANSLATE_NOOP("QTranslationUnit", "Vertically"), // 190
    QT_TRANSLATE_NOOP("QTranslationUnit", "Horizontally"), // 191
    QT_TRANSLATE_NOOP("QTranslationUnit", "Both"), // 192
    QT_TRANSLATE_NOOP("QTranslationUnit", "Addition"), // 193
    QT_TRANSLATE_NOOP("QTranslationUnit", "Subtraction"), // 194
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commands"), // 195
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 196
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 197
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 198
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 199
    QT_TRANSLATE_NOOP("QTranslationUnit", "States"), // 200
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 201
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 202
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 203
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 204
    QT_TRANSLATE_NOOP("QTranslationUnit", "View variable usage list"), // 205
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert variable usage log"), // 206
    QT_TRANSLATE_NOOP("QTranslationUnit", "PalFX editor"), // 207
    QT_TRANSLATE_NOOP("QTranslationUnit", "Offset viewer"), // 208
    QT_TRANSLATE_NOOP("QTranslationUnit", "Throw creator"), // 209
    QT_TRANSLATE_NOOP("QTranslationUnit", "New State controller"), // 210
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit selected"), // 211
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete selected"), // 212
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sounds"), // 213
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 214
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 215
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 216
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 217
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add"), // 218
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete"), // 219
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change WAV..."), // 220
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save WAV..."), // 221
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate"), // 222
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete group"), // 223
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rename group"), // 224
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play"), // 225
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play with loop"), // 226
    QT_TRANSLATE_NOOP("QTranslationUnit", "Stop"), // 227
    QT_TRANSLATE_NOOP("QTranslationUnit", "Export..."), // 228
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import..."), // 229
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import from another project..."), // 230
    QT_TRANSLATE_NOOP("QTranslationUnit", "Group:"), // 231
    QT_TRANSLATE_NOOP("QTranslationUnit", "Index:"), // 232
    QT_TRANSLATE_NOOP("QTranslationUnit", "Previous group"), // 233
    QT_TRANSLATE_NOOP("QTranslationUnit", "Next group"), // 234
    QT_TRANSLATE_NOOP("QTranslationUnit", "Organizer"), // 235
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move one position up"), // 236
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move one position down"), // 237
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move ten positions up"), // 238
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move ten positions down"), // 239
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move to the top"), // 240
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move to the bottom"), // 241
    QT_TRANSLATE_NOOP("QTranslationUnit", "Organize automatically"), // 242
    QT_TRANSLATE_NOOP("QTranslationUnit", "Thumbnails"), // 243
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add selected to the current animation"), // 244
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add all selected to the current animation"), // 245
    QT_TRANSLATE_NOOP("QTranslationUnit", "New animation with selected"), // 246
    QT_TRANSLATE_NOOP("QTranslationUnit", "New animation with all"), // 247
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save selected images"), // 248
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open palette"), // 249
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save current palette"), // 250
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease zoom"), // 251
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase zoom"), // 252
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open image"), // 253
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save image"), // 254
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exchange position of selected colors"), // 255
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interval of selected colors in gradient"), // 256
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remove the duplicate colors"), // 257
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add different colors from the other palette"), // 258
    QT_TRANSLATE_NOOP("QTranslationUnit", "Optimized palette for the current image"), // 259
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sort colors by tones"), // 260
    QT_TRANSLATE_NOOP("QTranslationUnit", "Generate a minimal grayscale palette"), // 261
    QT_TRANSLATE_NOOP("QTranslationUnit", "Generate palette from images..."), // 262
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert the current palette in the images..."), // 263
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo"), // 264
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo"), // 265
    QT_TRANSLATE_NOOP("QTranslationUnit", "Adapt image to the palette"), // 266
    QT_TRANSLATE_NOOP("QTranslationUnit", "Invert all colors"), // 267
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as group/index..."), // 268
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commit changes"), // 269
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commit sprite changes"), // 270
    QT_TRANSLATE_NOOP("QTranslationUnit", "Color picker"), // 271
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply"), // 272
    QT_TRANSLATE_NOOP("QTranslationUnit", "Reset"), // 273
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send selection to the left palette"), // 274
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send selection to the right palette"), // 275
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send selected colors to the left palette"), // 276
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send selected colors to the right palette"), // 277
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move canvas"), // 278
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rectangle selection"), // 279
    QT_TRANSLATE_NOOP("QTranslationUnit", "Free selection"), // 280
    QT_TRANSLATE_NOOP("QTranslationUnit", "Color picker"), // 281
    QT_TRANSLATE_NOOP("QTranslationUnit", "Pen"), // 282
    QT_TRANSLATE_NOOP("QTranslationUnit", "Eraser"), // 283
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remap pen"), // 284
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paint bucket"), // 285
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 286
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 287
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open current group as layers"), // 288
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 289
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 290
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save in the current sprite"), // 291
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save layers in the current group"), // 292
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo"), // 293
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo"), // 294
    QT_TRANSLATE_NOOP("QTranslationUnit", "Cut"), // 295
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy"), // 296
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paste"), // 297
    QT_TRANSLATE_NOOP("QTranslationUnit", "Original"), // 298
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase zoom"), // 299
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease zoom"), // 300
    QT_TRANSLATE_NOOP("QTranslationUnit", "Actual size"), // 301
    QT_TRANSLATE_NOOP("QTranslationUnit", "Properties"), // 302
    QT_TRANSLATE_NOOP("QTranslationUnit", "Resize"), // 303
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rotate"), // 304
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop"), // 305
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add"), // 306
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete"), // 307
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate"), // 308
    QT_TRANSLATE_NOOP("QTranslationUnit", "Merge visible"), // 309
    QT_TRANSLATE_NOOP("QTranslationUnit", "Merge all"), // 310
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 311
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 312
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 313
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit"), // 314
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert code snippet"), // 315
    QT_TRANSLATE_NOOP("QTranslationUnit", "New code snippet"), // 316
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit code snippet"), // 317
    QT_TRANSLATE_NOOP("QTranslationUnit", "All supported"), // 318
    QT_TRANSLATE_NOOP("QTranslationUnit", "Discard changes"), // 319
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find"), // 320
    QT_TRANSLATE_NOOP("QTranslationUnit", "New"), // 321
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open"), // 322
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save"), // 323
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save as..."), // 324
    QT_TRANSLATE_NOOP("QTranslationUnit", "Run"), // 325
    QT_TRANSLATE_NOOP("QTranslationUnit", "M.U.G.E.N. engines..."), // 326
    QT_TRANSLATE_NOOP("QTranslationUnit", "Restore a bug report..."), // 327
    QT_TRANSLATE_NOOP("QTranslationUnit", "Regular expression"), // 328
    QT_TRANSLATE_NOOP("QTranslationUnit", "Case sensitive"), // 329
    QT_TRANSLATE_NOOP("QTranslationUnit", "Backward"), // 330
    QT_TRANSLATE_NOOP("QTranslationUnit", "Circular"), // 331
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find next"), // 332
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find previous"), // 333
};

// Tool tips; nullptr where the id is a field label.
const char *const kToolTips[QTranslationUnit::Count] = {
    QT_TRANSLATE_NOOP("QTranslationUnit", "Create a new project"), // 0
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a project from its definitions file"), // 1
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close the current project"), // 2
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close all projects"), // 3
    QT_TRANSLATE_NOOP("QTranslationUnit", "Close all projects except the current one"), // 4
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the current project"), // 5
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the current project under a new name"), // 6
    QT_TRANSLATE_NOOP("QTranslationUnit", "Create a dated backup of the current project"), // 7
    QT_TRANSLATE_NOOP("QTranslationUnit", "Load one of the backups of the current project"), // 8
    QT_TRANSLATE_NOOP("QTranslationUnit", "Run the current project in M.U.G.E.N"), // 9
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exit Brawlforge"), // 10
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo the last change"), // 11
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo the last undone change"), // 12
    QT_TRANSLATE_NOOP("QTranslationUnit", "Cut the selection"), // 13
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy the selection"), // 14
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paste from the clipboard"), // 15
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find or replace text in the current document"), // 16
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find or replace text across several documents"), // 17
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the left panel"), // 18
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the right panel"), // 19
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the organizer"), // 20
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the action list"), // 21
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the calculator"), // 22
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the clipboard container"), // 23
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the list of issues of the current project"), // 24
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the state controller list"), // 25
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the text toolbar"), // 26
    QT_TRANSLATE_NOOP("QTranslationUnit", "Centralize the axis in the view"), // 27
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the sprite cross"), // 28
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the animation cross"), // 29
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the extra cross"), // 30
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the rulers"), // 31
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the guide lines"), // 32
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the CLSN 1 boxes"), // 33
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the CLSN 2 boxes"), // 34
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the default CLSN 1 boxes"), // 35
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show or hide the default CLSN 2 boxes"), // 36
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change the options of Brawlforge"), // 37
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the script editor"), // 38
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the reference documentation"), // 39
    QT_TRANSLATE_NOOP("QTranslationUnit", "Create a bug report package"), // 40
    QT_TRANSLATE_NOOP("QTranslationUnit", "About Brawlforge"), // 41
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a recently used project"), // 42
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the definitions file"), // 43
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the sprites"), // 44
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the animations"), // 45
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the commands"), // 46
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the states"), // 47
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the sounds"), // 48
    QT_TRANSLATE_NOOP("QTranslationUnit", "New file in the current editor"), // 49
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a file in the current editor"), // 50
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the file of the current editor"), // 51
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the file of the current editor under a new name"), // 52
    QT_TRANSLATE_NOOP("QTranslationUnit", "Zoom"), // 53
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show at actual size"), // 54
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease the zoom"), // 55
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase the zoom"), // 56
    QT_TRANSLATE_NOOP("QTranslationUnit", "Code"), // 57
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to a line of the document"), // 58
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the previous syntax error"), // 59
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the next syntax error"), // 60
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the previous deprecated element"), // 61
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the next deprecated element"), // 62
    QT_TRANSLATE_NOOP("QTranslationUnit", "Comment or uncomment the selected lines"), // 63
    QT_TRANSLATE_NOOP("QTranslationUnit", "Definitions"), // 64
    QT_TRANSLATE_NOOP("QTranslationUnit", "New definitions file"), // 65
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a definitions file"), // 66
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the definitions file"), // 67
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the definitions file under a new name"), // 68
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sprites"), // 69
    QT_TRANSLATE_NOOP("QTranslationUnit", "New sprite file"), // 70
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a sprite file"), // 71
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the sprite file"), // 72
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the sprite file under a new name"), // 73
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add sprites"), // 74
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected sprite"), // 75
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change the image of the selected sprite"), // 76
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image of the selected sprite"), // 77
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image of the selected sprite aligned by its axis"), // 78
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop the transparent border of the image"), // 79
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop the transparent border of all images"), // 80
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate the selected sprite"), // 81
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all sprites of the current group"), // 82
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rename the current group"), // 83
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align sprites with the alignment tool"), // 84
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the image in the image editor"), // 85
    QT_TRANSLATE_NOOP("QTranslationUnit", "Split the image into its colour channels"), // 86
    QT_TRANSLATE_NOOP("QTranslationUnit", "Export the sprites"), // 87
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import sprites"), // 88
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import sprites from another project"), // 89
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch to the sprite of the current frame"), // 90
    nullptr, // 91
    nullptr, // 92
    nullptr, // 93
    nullptr, // 94
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the previous group"), // 95
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the next group"), // 96
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the axis 1 pixel to the left"), // 97
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the axis 1 pixel up"), // 98
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the axis 1 pixel to the right"), // 99
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the axis 1 pixel down"), // 100
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decompress the sprites when the file is loaded"), // 101
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the transparency colour"), // 102
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch to the palette of the sprite"), // 103
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the neighbouring sprites translucently"), // 104
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, left)"), // 105
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, right)"), // 106
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, left)"), // 107
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, right)"), // 108
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (top, center)"), // 109
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (bottom, center)"), // 110
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, center)"), // 111
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, left)"), // 112
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align with the guides (center, right)"), // 113
    QT_TRANSLATE_NOOP("QTranslationUnit", "Palettes"), // 114
    QT_TRANSLATE_NOOP("QTranslationUnit", "Clear the selected palette"), // 115
    QT_TRANSLATE_NOOP("QTranslationUnit", "Clear all unused colours"), // 116
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add a palette"), // 117
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected palette"), // 118
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remove all duplicate palettes"), // 119
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change the selected palette from a file"), // 120
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the selected palette to a file"), // 121
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch the colour count between 32 and 256"), // 122
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remap the sprites to the selected palette"), // 123
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo the last palette change"), // 124
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo the last undone palette change"), // 125
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exchange the position of the selected colours"), // 126
    QT_TRANSLATE_NOOP("QTranslationUnit", "Pick a colour from the image"), // 127
    QT_TRANSLATE_NOOP("QTranslationUnit", "Set the colour of the selected slots"), // 128
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply the palette to the selected sprites"), // 129
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply the palette to the selected groups"), // 130
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the advanced palette editor"), // 131
    nullptr, // 132
    nullptr, // 133
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the previous group"), // 134
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the next group"), // 135
    QT_TRANSLATE_NOOP("QTranslationUnit", "Animations"), // 136
    QT_TRANSLATE_NOOP("QTranslationUnit", "New animation file"), // 137
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open an animation file"), // 138
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the animation file"), // 139
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the animation file under a new name"), // 140
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch to the text mode"), // 141
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add an animation"), // 142
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected animation"), // 143
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate the selected animation"), // 144
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the animation as text"), // 145
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the animation as an animated GIF"), // 146
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play the animation"), // 147
    QT_TRANSLATE_NOOP("QTranslationUnit", "Stop the animation"), // 148
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add a frame"), // 149
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected frame"), // 150
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply the time to all next frames"), // 151
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply the flip to all next frames"), // 152
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply the transparency to all next frames"), // 153
    QT_TRANSLATE_NOOP("QTranslationUnit", "Align frames with the alignment tool"), // 154
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add a CLSN 1 box"), // 155
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add a CLSN 2 box"), // 156
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected CLSN boxes"), // 157
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all CLSN boxes of the frame"), // 158
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all CLSN boxes of the current animation"), // 159
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch the type of the selected CLSN boxes"), // 160
    QT_TRANSLATE_NOOP("QTranslationUnit", "Switch the selected CLSN boxes between default and frame"), // 161
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy the CLSN boxes of the previous frame"), // 162
    QT_TRANSLATE_NOOP("QTranslationUnit", "Use these CLSN boxes in all other instances of this frame"), // 163
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import animations from another project"), // 164
    nullptr, // 165
    nullptr, // 166
    nullptr, // 167
    nullptr, // 168
    nullptr, // 169
    nullptr, // 170
    nullptr, // 171
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the offset 1 pixel to the left"), // 172
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the offset 1 pixel up"), // 173
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the offset 1 pixel to the right"), // 174
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the offset 1 pixel down"), // 175
    nullptr, // 176
    nullptr, // 177
    nullptr, // 178
    nullptr, // 179
    nullptr, // 180
    QT_TRANSLATE_NOOP("QTranslationUnit", "Start the loop in this frame"), // 181
    nullptr, // 182
    nullptr, // 183
    nullptr, // 184
    nullptr, // 185
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interpolate the offset"), // 186
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interpolate the blending"), // 187
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interpolate the scale"), // 188
    QT_TRANSLATE_NOOP("QTranslationUnit", "Interpolate the angle"), // 189
    QT_TRANSLATE_NOOP("QTranslationUnit", "Flip vertically"), // 190
    QT_TRANSLATE_NOOP("QTranslationUnit", "Flip horizontally"), // 191
    QT_TRANSLATE_NOOP("QTranslationUnit", "Flip both ways"), // 192
    QT_TRANSLATE_NOOP("QTranslationUnit", "Additive transparency"), // 193
    QT_TRANSLATE_NOOP("QTranslationUnit", "Subtractive transparency"), // 194
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commands"), // 195
    QT_TRANSLATE_NOOP("QTranslationUnit", "New commands file"), // 196
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a commands file"), // 197
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the commands file"), // 198
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the commands file under a new name"), // 199
    QT_TRANSLATE_NOOP("QTranslationUnit", "States"), // 200
    QT_TRANSLATE_NOOP("QTranslationUnit", "New states file"), // 201
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a states file"), // 202
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the states file"), // 203
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the states file under a new name"), // 204
    QT_TRANSLATE_NOOP("QTranslationUnit", "View the list of variable usage"), // 205
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert a log of the variable usage"), // 206
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the PalFX editor"), // 207
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the offset viewer"), // 208
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the throw creator"), // 209
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert a new state controller"), // 210
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the selected state controller"), // 211
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected state controller"), // 212
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sounds"), // 213
    QT_TRANSLATE_NOOP("QTranslationUnit", "New sound file"), // 214
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a sound file"), // 215
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the sound file"), // 216
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the sound file under a new name"), // 217
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add sounds"), // 218
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected sound"), // 219
    QT_TRANSLATE_NOOP("QTranslationUnit", "Change the WAV of the selected sound"), // 220
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the selected sound as WAV"), // 221
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate the selected sound"), // 222
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete all sounds of the current group"), // 223
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rename the current group"), // 224
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play the sound"), // 225
    QT_TRANSLATE_NOOP("QTranslationUnit", "Play the sound in a loop"), // 226
    QT_TRANSLATE_NOOP("QTranslationUnit", "Stop playing"), // 227
    QT_TRANSLATE_NOOP("QTranslationUnit", "Export the sounds"), // 228
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import sounds"), // 229
    QT_TRANSLATE_NOOP("QTranslationUnit", "Import sounds from another project"), // 230
    nullptr, // 231
    nullptr, // 232
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the previous group"), // 233
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go to the next group"), // 234
    QT_TRANSLATE_NOOP("QTranslationUnit", "Organizer"), // 235
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move one position up"), // 236
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move one position down"), // 237
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move ten positions up"), // 238
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move ten positions down"), // 239
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move to the top"), // 240
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move to the bottom"), // 241
    QT_TRANSLATE_NOOP("QTranslationUnit", "Organize automatically by group and index"), // 242
    QT_TRANSLATE_NOOP("QTranslationUnit", "Thumbnails"), // 243
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add the selected sprite to the current animation"), // 244
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add all selected sprites to the current animation"), // 245
    QT_TRANSLATE_NOOP("QTranslationUnit", "New animation with the selected sprite"), // 246
    QT_TRANSLATE_NOOP("QTranslationUnit", "New animation with all selected sprites"), // 247
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the selected images"), // 248
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a palette file"), // 249
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the current palette to a file"), // 250
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease the zoom"), // 251
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase the zoom"), // 252
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open an image"), // 253
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image"), // 254
    QT_TRANSLATE_NOOP("QTranslationUnit", "Exchange the position of the selected colours"), // 255
    QT_TRANSLATE_NOOP("QTranslationUnit", "Fill the interval of selected colours with a gradient"), // 256
    QT_TRANSLATE_NOOP("QTranslationUnit", "Remove the duplicate colours"), // 257
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add the different colours of the other palette"), // 258
    QT_TRANSLATE_NOOP("QTranslationUnit", "Make an optimized palette for the current image"), // 259
    QT_TRANSLATE_NOOP("QTranslationUnit", "Sort the colours by tone"), // 260
    QT_TRANSLATE_NOOP("QTranslationUnit", "Generate a minimal grayscale palette"), // 261
    QT_TRANSLATE_NOOP("QTranslationUnit", "Generate a palette from images"), // 262
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert the current palette in the images"), // 263
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo the last change"), // 264
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo the last undone change"), // 265
    QT_TRANSLATE_NOOP("QTranslationUnit", "Adapt the image to the palette"), // 266
    QT_TRANSLATE_NOOP("QTranslationUnit", "Invert all colours"), // 267
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the palette as a group and index"), // 268
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commit the palette changes"), // 269
    QT_TRANSLATE_NOOP("QTranslationUnit", "Commit the sprite changes"), // 270
    QT_TRANSLATE_NOOP("QTranslationUnit", "Pick a colour from the image"), // 271
    QT_TRANSLATE_NOOP("QTranslationUnit", "Apply"), // 272
    QT_TRANSLATE_NOOP("QTranslationUnit", "Reset"), // 273
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send the selection to the left palette"), // 274
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send the selection to the right palette"), // 275
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send the selected colours to the left palette"), // 276
    QT_TRANSLATE_NOOP("QTranslationUnit", "Send the selected colours to the right palette"), // 277
    QT_TRANSLATE_NOOP("QTranslationUnit", "Move the canvas"), // 278
    QT_TRANSLATE_NOOP("QTranslationUnit", "Select a rectangle"), // 279
    QT_TRANSLATE_NOOP("QTranslationUnit", "Select a free shape"), // 280
    QT_TRANSLATE_NOOP("QTranslationUnit", "Pick a colour from the canvas"), // 281
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paint with the pen"), // 282
    QT_TRANSLATE_NOOP("QTranslationUnit", "Erase pixels"), // 283
    QT_TRANSLATE_NOOP("QTranslationUnit", "Replace one colour with another while painting"), // 284
    QT_TRANSLATE_NOOP("QTranslationUnit", "Fill an area with a colour"), // 285
    QT_TRANSLATE_NOOP("QTranslationUnit", "New image"), // 286
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open an image"), // 287
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open the current group as layers"), // 288
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image"), // 289
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image under a new name"), // 290
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the image in the current sprite"), // 291
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the layers in the current group"), // 292
    QT_TRANSLATE_NOOP("QTranslationUnit", "Undo the last change"), // 293
    QT_TRANSLATE_NOOP("QTranslationUnit", "Redo the last undone change"), // 294
    QT_TRANSLATE_NOOP("QTranslationUnit", "Cut the selection"), // 295
    QT_TRANSLATE_NOOP("QTranslationUnit", "Copy the selection"), // 296
    QT_TRANSLATE_NOOP("QTranslationUnit", "Paste from the clipboard"), // 297
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show the original image"), // 298
    QT_TRANSLATE_NOOP("QTranslationUnit", "Increase the zoom"), // 299
    QT_TRANSLATE_NOOP("QTranslationUnit", "Decrease the zoom"), // 300
    QT_TRANSLATE_NOOP("QTranslationUnit", "Show at actual size"), // 301
    QT_TRANSLATE_NOOP("QTranslationUnit", "Image properties"), // 302
    QT_TRANSLATE_NOOP("QTranslationUnit", "Resize the image"), // 303
    QT_TRANSLATE_NOOP("QTranslationUnit", "Rotate the image"), // 304
    QT_TRANSLATE_NOOP("QTranslationUnit", "Crop the image to the selection"), // 305
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add a layer"), // 306
    QT_TRANSLATE_NOOP("QTranslationUnit", "Delete the selected layer"), // 307
    QT_TRANSLATE_NOOP("QTranslationUnit", "Duplicate the selected layer"), // 308
    QT_TRANSLATE_NOOP("QTranslationUnit", "Merge the visible layers"), // 309
    QT_TRANSLATE_NOOP("QTranslationUnit", "Merge all layers"), // 310
    QT_TRANSLATE_NOOP("QTranslationUnit", "New snippet"), // 311
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a snippet"), // 312
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the snippet"), // 313
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit the snippet"), // 314
    QT_TRANSLATE_NOOP("QTranslationUnit", "Insert a code snippet"), // 315
    QT_TRANSLATE_NOOP("QTranslationUnit", "Create a new code snippet"), // 316
    QT_TRANSLATE_NOOP("QTranslationUnit", "Edit a code snippet"), // 317
    nullptr, // 318
    QT_TRANSLATE_NOOP("QTranslationUnit", "Discard the changes"), // 319
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find"), // 320
    QT_TRANSLATE_NOOP("QTranslationUnit", "New script"), // 321
    QT_TRANSLATE_NOOP("QTranslationUnit", "Open a script"), // 322
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the script"), // 323
    QT_TRANSLATE_NOOP("QTranslationUnit", "Save the script under a new name"), // 324
    QT_TRANSLATE_NOOP("QTranslationUnit", "Run the script"), // 325
    QT_TRANSLATE_NOOP("QTranslationUnit", "Add, edit, remove and order the engines that projects run in"), // 326
    QT_TRANSLATE_NOOP("QTranslationUnit", "Unpack a bug report: its log, its description and its animations"), // 327
    QT_TRANSLATE_NOOP("QTranslationUnit", "Search with a regular expression instead of the plain text"), // 328
    QT_TRANSLATE_NOOP("QTranslationUnit", "Tell capital from small letters when searching"), // 329
    QT_TRANSLATE_NOOP("QTranslationUnit", "Search toward the start of the document"), // 330
    QT_TRANSLATE_NOOP("QTranslationUnit", "Go on from the other end when the search reaches one"), // 331
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find the next match of the search bar's text"), // 332
    QT_TRANSLATE_NOOP("QTranslationUnit", "Find the previous match of the search bar's text"), // 333
};

struct LongText
{
    int id;
    const char *text;
};

// Longer what's-this explanations for the actions that need more than a tool tip.
const LongText kWhatsThis[] = {
    {0, QT_TRANSLATE_NOOP("QTranslationUnit", "Creates a new project, optionally from a project template script.")},
    {1, QT_TRANSLATE_NOOP("QTranslationUnit", "Opens a character, stage, storyboard or font from its definitions (DEF) file, with every file the definitions name.")},
    {2, QT_TRANSLATE_NOOP("QTranslationUnit", "Closes the current project. Each editor asks first if it holds unsaved changes.")},
    {5, QT_TRANSLATE_NOOP("QTranslationUnit", "Saves every changed file of the current project. A project that has never been saved asks for a file name.")},
    {6, QT_TRANSLATE_NOOP("QTranslationUnit", "Saves every file of the current project under new names, asking for each one.")},
    {7, QT_TRANSLATE_NOOP("QTranslationUnit", "Copies the current project into a dated folder under backup beside its definitions file.")},
    {8, QT_TRANSLATE_NOOP("QTranslationUnit", "Reads one of the dated backups back into the current project; a later save overwrites the originals with it.")},
    {9, QT_TRANSLATE_NOOP("QTranslationUnit", "Copies the project into the engine's chars folder as a test character and starts the engine.")},
    {21, QT_TRANSLATE_NOOP("QTranslationUnit", "The action list shows every action of the current editor; click one to run it.")},
    {24, QT_TRANSLATE_NOOP("QTranslationUnit", "Errors and warnings found while loading and checking the project. Double-click one to go to its line.")},
    {37, QT_TRANSLATE_NOOP("QTranslationUnit", "Language, appearance, engines, shortcuts and the other settings of Brawlforge.")},
    {101, QT_TRANSLATE_NOOP("QTranslationUnit", "Keeps the sprites decompressed in memory: faster editing, more memory.")},
    {104, QT_TRANSLATE_NOOP("QTranslationUnit", "Shows the previous and the next sprite translucently under the current one.")},
    {123, QT_TRANSLATE_NOOP("QTranslationUnit", "Changes the pixels of the sprites so that they keep their look with the selected palette.")},
    {141, QT_TRANSLATE_NOOP("QTranslationUnit", "Edits the animations as AIR text instead of frame by frame.")},
    {146, QT_TRANSLATE_NOOP("QTranslationUnit", "Writes the current animation as an animated GIF file.")},
    {163, QT_TRANSLATE_NOOP("QTranslationUnit", "Copies the CLSN boxes of this frame to every other frame that shows the same sprite with the same settings.")},
    {242, QT_TRANSLATE_NOOP("QTranslationUnit", "Sorts the items by group, then by index.")},
    {284, QT_TRANSLATE_NOOP("QTranslationUnit", "Paints only over pixels of the chosen colour, replacing it with the pen's colour.")},
};

bool validId(int id)
{
    return id >= 0 && id < QTranslationUnit::Count;
}

} // namespace

QTranslationUnit::QTranslationUnit(QObject *parent)
    : QObject(parent)
{
}

QString QTranslationUnit::text(int id) const
{
    return validId(id) ? tr(kCaptions[id]) : QString();
}

QString QTranslationUnit::toolTip(int id) const
{
    if (!validId(id) || !kToolTips[id])
        return QString();
    return tr(kToolTips[id]);
}

QString QTranslationUnit::whatsThis(int id) const
{
    if (!validId(id))
        return QString();
    for (const LongText &entry : kWhatsThis) {
        if (entry.id == id)
            return tr(entry.text);
    }
    return toolTip(id);
}

void QTranslationUnit::retranslate(QAction *action, int id) const
{
    retranslate(action, id, QString());
}

void QTranslationUnit::retranslate(QAction *action, int id, const QString &shortcutText) const
{
    if (!action)
        return;
    QString caption = text(id);
    if (!shortcutText.isEmpty())
        caption += QStringLiteral(" (") + shortcutText + QLatin1Char(')');
    const QString tip = toolTip(id);
    action->setText(caption);
    action->setToolTip(tip);
    action->setStatusTip(tip);
    action->setWhatsThis(whatsThis(id));
}

void QTranslationUnit::retranslateMenu(QObject *menu, int id) const
{
    if (!menu)
        return;
    const QString tip = toolTip(id);
    menu->setProperty("title", text(id));
    menu->setProperty("toolTip", tip);
    menu->setProperty("statusTip", tip);
}
