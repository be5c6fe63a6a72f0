#pragma once

#include <QString>

// What a file given to the tool is, told by its first bytes where the format has
// a signature and by its suffix where it is text.
enum class FileKind { Missing, Unreadable, Sprites, Definitions, Sounds, Unknown };

namespace FileKinds {
FileKind detect(const QString &path);

// The one line that explains why a file can't be used, for the kinds that can't.
QString problem(FileKind kind, const QString &path);
}
