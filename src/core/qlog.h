#pragma once

#include <QMutex>
#include <QString>

class QMessages;

// The process log, <application dir>/log.txt: start and stop, projects loaded
// and saved, the issue lists they produced, and the library's own warnings.
// It is what a bug-report package carries. Lines end in CR LF and begin with a
// time stamp; the file is kept below a size limit by dropping its oldest half.
// Safe to call from loader threads.
class QLog
{
public:
    explicit QLog(const QString &path, qint64 maxBytes = 1024 * 1024);
    ~QLog();

    // <application dir>/log.txt, where the program keeps its log.
    static QString defaultPath();
    // The log the program writes to, set up by main(); null where nobody set
    // one (the command-line tool, most tests), and then nothing is logged.
    static QLog *current();
    static void setCurrent(QLog *log);
    // append() and appendMessages() on the current log, if there is one.
    static void note(const QString &line);
    static void noteMessages(const QString &title, const QMessages &messages);

    QString path() const { return m_path; }
    qint64 maxBytes() const { return m_maxBytes; }
    void setEnabled(bool on);
    bool isEnabled() const;

    // One time-stamped line (line breaks inside are flattened).
    void append(const QString &line);
    // A heading followed by every message of the list, one line each, with its kind.
    void appendMessages(const QString &title, const QMessages &messages);

    // Routes qWarning, qCritical and qFatal text into this log as well, keeping
    // the previous handler. Undone by the destructor.
    void installMessageHandler();

private:
    void write(const QByteArray &bytes);
    void trim();

    QString m_path;
    qint64 m_maxBytes;
    bool m_enabled = true;
    bool m_handlerInstalled = false;
    mutable QMutex m_lock;
};
