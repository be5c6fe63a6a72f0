#pragma once

#include <QString>

class QProject;
struct QProjectDefFiles;

// A DEF read as the program reads it, for the commands that let a DEF stand
// for the files it names. Failures are reported on standard error.
namespace DefFile {

// Loads `path` into the definitions of `project`.
bool load(QProject &project, const QString &path);

// `name` as the DEF at `def` names it, resolved against the DEF's folder into
// `file`; `what` ("sound", "animation") words the report when it is missing.
bool named(const QString &def, const QProjectDefFiles &files, const QString &name, const char *what, QString *file);

} // namespace DefFile
