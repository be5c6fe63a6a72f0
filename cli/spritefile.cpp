#include "spritefile.h"

#include "console.h"
#include "progressmeter.h"

#include <QDir>
#include <QFileInfo>

SpriteFile::SpriteFile()
    : m_store(QSpriteCache::Memory, true)
{
    m_store.messages = &m_messages;
}

QString SpriteFile::versionName(quint32 version)
{
    return QStringLiteral("%1.%2%3").arg(version >> 24).arg((version >> 16) & 0xFF).arg((version >> 8) & 0xFF);
}

QString SpriteFile::versionDotted(quint32 version)
{
    return QStringLiteral("%1.%2.%3.%4")
        .arg(version >> 24)
        .arg((version >> 16) & 0xFF)
        .arg((version >> 8) & 0xFF)
        .arg(version & 0xFF);
}

bool SpriteFile::load(const QString &path, bool isCharacter, QString *error)
{
    ProgressMeter meter(QStringLiteral("Loading %1").arg(QFileInfo(path).fileName()));
    QObject::connect(&m_store, &QSprites::progress, &meter, &ProgressMeter::update);
    const bool loaded = m_store.fromFile(path, isCharacter, false);
    meter.finish();
    if (!loaded) {
        *error = QStringLiteral("'%1': cannot be loaded as a sprite file").arg(QDir::toNativeSeparators(path));
        return false;
    }
    return true;
}
