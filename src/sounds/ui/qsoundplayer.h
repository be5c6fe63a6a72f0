#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

class QAudioOutput;
class QMediaPlayer;

// Plays one sample at a time. The bytes go to a temporary WAV of a name of
// its own (two running copies of the program never share one), the media
// player reads it, and stop() removes it. A sound played once also starts a
// timer of its duration plus a second whose timeout() is stopped(): the
// moment the editor resets its buttons.
class QSoundPlayer : public QObject
{
    Q_OBJECT

public:
    explicit QSoundPlayer(QObject *parent = nullptr);
    ~QSoundPlayer() override;

    // False when there is nothing to play or the temporary file can't be written.
    bool play(const QByteArray &bytes, float duration, bool loop);
    void stop();

    bool isPlaying() const { return !m_file.isEmpty(); }
    // The temporary WAV being played; empty when stopped.
    QString fileName() const { return m_file; }
    // Interval of the stop timer for a sample of `duration` seconds.
    static int stopInterval(float duration);
    const QTimer &timer() const { return m_timer; }
    // What the media back-end said of the last play, if it failed.
    QString errorString() const { return m_error; }

signals:
    void stopped();

private:
    QMediaPlayer *player();

    QMediaPlayer *m_player = nullptr;
    QAudioOutput *m_output = nullptr;
    QTimer m_timer;
    QString m_file;
    QString m_error;
};
