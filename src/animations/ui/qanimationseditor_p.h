#pragma once

// What the parts of the animations editor share: how undo steps merge, the
// store's image for a step, and the modes of the Alignment tool.
#include "animations/qanimations.h"

#include <QByteArray>
#include <QtGlobal>

namespace AnimEditor {

enum MergeKey { NoMerge = 0, MergeOffset, MergeName, MergeNumber, MergeText };

inline QByteArray imageOf(const QAnimations &store)
{
    QByteArray bytes;
    store.writeStream(&bytes);
    return bytes;
}

inline const char *const kAlignModes[] = {
    QT_TRANSLATE_NOOP("QAnimationsEditor", "Offset axis"),
    QT_TRANSLATE_NOOP("QAnimationsEditor", "Offset CLSNs"),
    QT_TRANSLATE_NOOP("QAnimationsEditor", "Resize CLSNs (top-left)"),
    QT_TRANSLATE_NOOP("QAnimationsEditor", "Resize CLSNs (bottom-right)"),
    QT_TRANSLATE_NOOP("QAnimationsEditor", "Scale CLSNs"),
};

} // namespace AnimEditor
