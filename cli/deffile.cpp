#include "deffile.h"

#include "console.h"
#include "project/qproject.h"

#include <QDir>
#include <QFileInfo>

namespace DefFile {

bool load(QProject &project, const QString &path)
{
    if (project.definitions()->loadFile(path, 0))
        return true;
    Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(path), project.definitions()->errorString()));
    return false;
}

bool named(const QString &def, const QProjectDefFiles &files, const QString &name, const char *what, QString *file)
{
    *file = QProject::resolveFile(files.folder, name);
    if (QFileInfo(*file).isFile())
        return true;
    Console::fail(QStringLiteral("'%1' names the %2 file '%3', which does not exist")
                      .arg(QDir::toNativeSeparators(def), QLatin1String(what), QDir::toNativeSeparators(*file)));
    return false;
}

} // namespace DefFile
