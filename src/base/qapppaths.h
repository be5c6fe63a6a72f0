#pragma once

#include <QString>
#include <QStringList>

// Where the program keeps its files.
//
// Settings (config.xml, shortcuts.xml) live in the user's configuration
// folder and what the program writes as it runs (history.xml, log.txt,
// restored bug reports) in the user's data folder, as Linux users expect. A
// copy of the program in a folder that holds a file named "portable", or an
// existing config.xml, keeps all of them beside its executable instead, so a
// copy on a stick carries its settings along.
//
// Read-only data (presets, icon sets, styles, colour sets, languages,
// syntax definitions, scripts, snippets, docs) is looked for in the user's
// own data folder first, then in the program's: share/brawlforge beside the
// bin folder of an installed copy, or the folder of the executable in a
// build tree, where the build copies data/.
class QAppPaths
{
public:
    QAppPaths() = default;
    // Explicit folders; `dataDirs` in search order, the user's own first.
    QAppPaths(const QString &configDir, const QString &stateDir, const QStringList &dataDirs);

    // The folders of the running program (needs the application object).
    static QAppPaths forApplication();

    QString configDir() const { return m_configDir; }
    QString stateDir() const { return m_stateDir; }
    // Existing data folders, in search order.
    QStringList dataDirs() const { return m_dataDirs; }

    QString configFile(const QString &name) const { return m_configDir + QLatin1Char('/') + name; }
    QString stateFile(const QString &name) const { return m_stateDir + QLatin1Char('/') + name; }

    // Every existing folder `relative` of the data folders, in search order.
    QStringList dataFolders(const QString &relative) const;
    // The first existing data file or folder `relative`; when none exists,
    // where the program's own would be.
    QString dataPath(const QString &relative) const;

    // Creates the configuration and state folders; false if one can't be made.
    bool makeWritable() const;

    // True when everything stays beside the executable.
    bool isPortable() const { return m_portable; }

private:
    QString m_configDir;
    QString m_stateDir;
    QStringList m_dataDirs;
    bool m_portable = false;
};
