#pragma once

#include "base/qmessages.h"
#include "sprites/qsffversion.h"
#include "sprites/qsprites.h"

#include <QString>

// A sprite file opened through the program's own store, with the issue list
// the reader reports to. The tool never has a user to ask: a question the
// reader would put (colours for a character's palette) stays unanswered, and
// errors the program would show in a box become issues.
class SpriteFile
{
public:
    SpriteFile();

    // False, with the one line of the failure in `error`, if the file can't be
    // used; the issues the reader reported are in messages() either way.
    bool load(const QString &path, bool isCharacter, QString *error);

    QSprites &store() { return m_store; }
    const QSprites &store() const { return m_store; }
    const QMessages &messages() const { return m_messages; }
    QMessages &messages() { return m_messages; }

    // Number of errors and warnings reported.
    int issueCount() const { return m_messages.issueCount(); }

    // A sprite's size comes from its record; a damaged record can claim up to
    // 65535 x 65535 pixels over a few bytes of data. No real sprite comes near
    // this bound, and decoding such a claim would take gigabytes for nothing.
    static constexpr qint64 kMaxSpriteBytes = qint64(256) << 20;
    // The sprites whose size passes that bound, as "index (group,number: WxH)",
    // comma-separated; empty if none.
    QString oversizedSprites() const;

private:
    QMessages m_messages;
    QSprites m_store;
};
