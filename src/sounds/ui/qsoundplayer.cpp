#include "qsoundplayer.h"

#include <QAudioOutput>
#include <QDir>
#include <QFile>
#include <QMediaPlayer>
#include <QTemporaryFile>
#include <QUrl>

QSoundPlayer::QSoundPlayer(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QSoundPlayer::stopped);
}

QSoundPlayer::~QSoundPlayer()
{
    stop();
}

int QSoundPlayer::stopInterval(float duration)
{
    return int(1000.0 * double(duration) + 0.5) + 1000;
}

// The media player is made on first use: opening the audio back-end is
// costly, and an editor that never plays never needs it.
QMediaPlayer *QSoundPlayer::player()
{
    if (!m_player) {
        m_player = new QMediaPlayer(this);
        m_output = new QAudioOutput(this);
        m_player->setAudioOutput(m_output);
        connect(m_player, &QMediaPlayer::errorOccurred, this,
                [this](QMediaPlayer::Error, const QString &text) { m_error = text; });
    }
    return m_player;
}

bool QSoundPlayer::play(const QByteArray &bytes, float duration, bool loop)
{
    stop();
    m_error.clear();
    if (bytes.isEmpty())
        return false;
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/ZCC9-XXXXXX.wav"));
    file.setAutoRemove(false);
    if (!file.open() || file.write(bytes) != bytes.size()) {
        m_error = file.errorString();
        file.remove();
        return false;
    }
    file.close();
    m_file = file.fileName();
    QMediaPlayer *p = player();
    p->setSource(QUrl::fromLocalFile(m_file));
    p->setLoops(loop ? QMediaPlayer::Infinite : 1);
    p->play();
    if (!loop)
        m_timer.start(stopInterval(duration));
    return true;
}

void QSoundPlayer::stop()
{
    m_timer.stop();
    if (m_file.isEmpty())
        return;
    if (m_player) {
        m_player->stop();
        // The back-end lets go of the file before it is removed.
        m_player->setSource(QUrl());
    }
    QFile::remove(m_file);
    m_file.clear();
}
