#pragma once

#include "base/qmugenmodel.h"

#include <QMap>
#include <QString>

#include <functional>

class QFileWatcherManager;
class QMugenSyntaxProperties;
class QSpriteCache;
class QSpriteRecordPool;
class SyntaxFormats;

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
    // The process-wide cache of undo images; a project without one keeps its own.
    QSpriteCache *undoCache = nullptr;
    // The process-wide cache of samples kept by the sounds' undo; a project
    // without one keeps its own.
    QSpriteCache *soundUndoCache = nullptr;
    // The program's pool of cache records; a project without one keeps its own.
    QSpriteRecordPool *records = nullptr;
    // The engine's language and the colours its texts are checked and
    // painted with; without them the documents are checked by no one.
    QMugenSyntaxProperties *mugenSyntax = nullptr;
    const SyntaxFormats *syntaxFormats = nullptr;
    // Tells when another program changes a text file the project has open.
    QFileWatcherManager *fileWatcher = nullptr;

    static QStringList pathKeys()
    {
        return {QStringLiteral("proj_path"), QStringLiteral("spr_path"), QStringLiteral("snd_path"),
                QStringLiteral("pal_path"), QStringLiteral("gif_path")};
    }

    static QProjectSettings fromConfig(const QMugenModel &config)
    {
        QProjectSettings s;
        s.cacheType = config.number(QStringLiteral("cache_type"));
        s.cacheCompression = config.flag(QStringLiteral("cache_compression")) ? 1 : 0;
        for (const QString &key : pathKeys())
            if (config.map.contains(key))
                s.paths.insert(key, config.text(key));
        return s;
    }
};
