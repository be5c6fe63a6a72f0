#include "spritefile.h"

#include "console.h"
#include "progressmeter.h"

#include <QDir>
#include <QFileInfo>

SpriteFile::SpriteFile()
    : m_store(QSpriteCache::Memory, true)
{
    m_store.messages = &m_messages;
    // What the program shows in a box is, for the tool, one more error line
    // (the reader puts its own in the issue list too: don't say it twice).
    QObject::connect(&m_store, &QSprites::fileError, &m_store, [this](const QString &, const QString &text) {
        const QList<QMessages::Message> said = m_messages.messages();
        if (said.isEmpty() || said.last().text != text)
            m_messages.addError(text);
    });
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

QString SpriteFile::oversizedSprites() const
{
    QStringList found;
    for (int i = 0; i < m_store.count(); ++i) {
        const QSpriteItem &s = *m_store.item(i);
        const qint64 bytes = qint64(s.width) * s.height * (s.imageFormat == QImage::Format_Indexed8 ? 1 : 4);
        if (bytes > kMaxSpriteBytes)
            found << QStringLiteral("%1 (%2,%3: %4x%5)").arg(i).arg(s.info.group).arg(s.info.number)
                         .arg(s.width).arg(s.height);
    }
    return found.join(QStringLiteral(", "));
}

bool SpriteFile::load(const QString &path, bool isCharacter, QString *error)
{
    ProgressMeter meter(QStringLiteral("Loading %1").arg(QFileInfo(path).fileName()));
    QObject::connect(&m_store, &QSprites::progress, &meter, &ProgressMeter::update);
    const bool loaded = m_store.fromFile(path, isCharacter, false);
    meter.finish();
    if (!loaded) {
        // The reason is the last error the store gave, without its place.
        QString reason;
        const QList<QMessages::Message> said = m_messages.messages();
        for (qsizetype i = said.size() - 1; i >= 0 && reason.isEmpty(); --i)
            if (said.at(i).kind == QMessages::Error)
                reason = said.at(i).text.section(QStringLiteral("): "), 1, -1);
        *error = QStringLiteral("'%1': cannot be loaded as a sprite file%2")
                     .arg(QDir::toNativeSeparators(path), reason.isEmpty() ? QString() : QStringLiteral(": ") + reason);
        return false;
    }
    return true;
}
