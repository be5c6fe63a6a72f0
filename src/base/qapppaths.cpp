#include "qapppaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

QAppPaths::QAppPaths(const QString &configDir, const QString &stateDir, const QStringList &dataDirs)
    : m_configDir(QDir::cleanPath(configDir))
    , m_stateDir(QDir::cleanPath(stateDir))
{
    for (const QString &dir : dataDirs) {
        const QString clean = QDir::cleanPath(dir);
        if (!clean.isEmpty() && QFileInfo(clean).isDir() && !m_dataDirs.contains(clean))
            m_dataDirs.append(clean);
    }
    // Missing folders are kept out of the search, but the program's own stays
    // named, so that dataPath() still says where a file was expected.
    if (m_dataDirs.isEmpty() && !dataDirs.isEmpty())
        m_dataDirs.append(QDir::cleanPath(dataDirs.last()));
}

QAppPaths QAppPaths::forApplication()
{
    const QString exeDir = QCoreApplication::applicationDirPath();
    const QString shared = QDir::cleanPath(exeDir + QStringLiteral("/../share/brawlforge"));
    // An installed copy reads share/brawlforge; a build tree has its data
    // copied beside the executable.
    const QString programData = QFileInfo(shared).isDir() ? shared : exeDir;

    if (QFileInfo::exists(exeDir + QStringLiteral("/portable"))
        || QFileInfo::exists(exeDir + QStringLiteral("/config.xml"))) {
        QAppPaths paths(exeDir, exeDir, {exeDir, programData});
        paths.m_portable = true;
        return paths;
    }
    const QString config = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return QAppPaths(config, data, {data, programData});
}

QStringList QAppPaths::dataFolders(const QString &relative) const
{
    QStringList found;
    for (const QString &dir : m_dataDirs) {
        const QString path = dir + QLatin1Char('/') + relative;
        if (QFileInfo(path).isDir())
            found.append(path);
    }
    return found;
}

QString QAppPaths::dataPath(const QString &relative) const
{
    for (const QString &dir : m_dataDirs) {
        const QString path = dir + QLatin1Char('/') + relative;
        if (QFileInfo::exists(path))
            return path;
    }
    return m_dataDirs.isEmpty() ? relative : m_dataDirs.last() + QLatin1Char('/') + relative;
}

bool QAppPaths::makeWritable() const
{
    return QDir().mkpath(m_configDir) && QDir().mkpath(m_stateDir);
}
