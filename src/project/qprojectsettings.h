#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include <functional>

// What a project takes from the configuration. The interface fills it from the
// configuration store, so the project model never reaches for process-wide
// objects and stays testable on its own.
struct QProjectSettings
{
    // Cache mode and compression of the sprite and sound stores
    // ("cache_type", "cache_compression"); a project keeps what it got.
    int cacheType = 0;
    int cacheCompression = 0;
    // Last-used folders known to the configuration, by key (proj_path, spr_path,
    // snd_path, pal_path, gif_path): the start values of the project's own.
    QMap<QString, QString> paths;
    // Called by QProject::setPath() so that the configuration learns the folder too.
    std::function<void(const QString &key, const QString &value)> storePath;

    static QStringList pathKeys()
    {
        return {QStringLiteral("proj_path"), QStringLiteral("spr_path"), QStringLiteral("snd_path"),
                QStringLiteral("pal_path"), QStringLiteral("gif_path")};
    }

    // From a configuration map, whose values read from file are strings.
    static QProjectSettings fromMap(const QMap<QString, QVariant> &map)
    {
        QProjectSettings s;
        s.cacheType = map.value(QStringLiteral("cache_type")).toString().toInt();
        // "true" from the file and true set in code both mean on.
        s.cacheCompression = map.value(QStringLiteral("cache_compression")).toBool() ? 1 : 0;
        for (const QString &key : pathKeys())
            if (map.contains(key))
                s.paths.insert(key, map.value(key).toString());
        return s;
    }
};
