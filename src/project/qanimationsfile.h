#pragma once

#include <QString>

class QAnimations;

// The animation store's file: reading the bytes, telling and keeping their
// encoding, and the write through a temporary file. The store itself deals in
// text only; code pages and their detection belong to the project's side.
class QAnimationsFile
{
public:
    // Reads the whole file through the encoding detection, defaultCodepage
    // being the fallback (an index of the code page table); keepPath keeps the
    // store bound to its own file (a backup read back). False, with the
    // reason, when the file can't be read; the store is then left as it was.
    static bool load(QAnimations &store, const QString &path, int defaultCodepage = 0, bool keepPath = false,
                     QString *error = nullptr);
    // Writes the store in the program's layout, in the encoding found at load
    // (UTF-8 when forceUtf8), with a byte-order mark where it has one. A
    // failed write leaves the old file whole; asCopy leaves the store as it was.
    static bool save(QAnimations &store, const QString &path, bool forceUtf8 = false, bool asCopy = false,
                     QString *error = nullptr);
    // Saves to the store's own file; nothing when that file doesn't exist.
    static bool saveCurrent(QAnimations &store, QString *error = nullptr);
};
