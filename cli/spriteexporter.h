#pragma once

#include "spritelist.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>

class QSprites;

// Writes every sprite of a store as a PNG into a folder, with sprites.txt as
// the index. Pixels are exported exactly: an indexed sprite keeps its colour
// indices and palette, and a linked sprite is written as the image it shows.
class SpriteExporter
{
public:
    // `fileName` names the sprite file in warnings.
    SpriteExporter(const QSprites &store, const QString &fileName);

    // False, with the one line of the failure in `error`, if the folder or a
    // file could not be written. Sprites that could not be exported are listed
    // by warnings() and keep "-" as their file name.
    bool exportTo(const QString &outDir, QString *error);

    const QStringList &warnings() const { return m_warnings; }
    const QList<SpriteListEntry> &entries() const { return m_entries; }

    // The image written for sprite `index`: what the store shows, in one of the
    // three formats a PNG keeps exactly. Null if the sprite has no image.
    QImage exportImage(int index);

private:
    // The same with the image the store shows given by `shown`, asked for
    // only if the sprite is to be exported.
    QImage exportImage(int index, const std::function<QImage()> &shown);
    void warn(const QString &text);

    const QSprites &m_store;
    QString m_fileName;
    QStringList m_warnings;
    QList<SpriteListEntry> m_entries;
};
