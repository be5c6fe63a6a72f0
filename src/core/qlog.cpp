#include "qlog.h"

#include "core/qmessages.h"

#include <QAtomicPointer>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMutexLocker>
#include <QSaveFile>

namespace {

QLog *g_handlerLog = nullptr;
QAtomicPointer<QLog> g_current;
QtMessageHandler g_previousHandler = nullptr;
thread_local bool t_inHandler = false;

void logHandler(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    // Writing the log must never feed the log again.
    if (g_handlerLog && !t_inHandler && type != QtDebugMsg && type != QtInfoMsg) {
        t_inHandler = true;
        const char *kind = type == QtWarningMsg ? "warning" : type == QtCriticalMsg ? "critical" : "fatal";
        g_handlerLog->append(QStringLiteral("[qt %1] %2").arg(QLatin1String(kind), text));
        t_inHandler = false;
    }
    if (g_previousHandler)
        g_previousHandler(type, context, text);
}

} // namespace

QLog::QLog(const QString &path, qint64 maxBytes)
    : m_path(path)
    , m_maxBytes(qMax<qint64>(maxBytes, 1024))
{
}

QLog::~QLog()
{
    g_current.testAndSetOrdered(this, nullptr);
    if (m_handlerInstalled && g_handlerLog == this) {
        qInstallMessageHandler(g_previousHandler);
        g_handlerLog = nullptr;
        g_previousHandler = nullptr;
    }
}

QString QLog::defaultPath()
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("log.txt"));
}

QLog *QLog::current()
{
    return g_current.loadAcquire();
}

void QLog::setCurrent(QLog *log)
{
    g_current.storeRelease(log);
}

void QLog::note(const QString &line)
{
    if (QLog *log = current())
        log->append(line);
}

void QLog::noteMessages(const QString &title, const QMessages &messages)
{
    if (QLog *log = current())
        log->appendMessages(title, messages);
}

void QLog::setEnabled(bool on)
{
    QMutexLocker locker(&m_lock);
    m_enabled = on;
}

bool QLog::isEnabled() const
{
    QMutexLocker locker(&m_lock);
    return m_enabled;
}

void QLog::append(const QString &line)
{
    QString flat = line;
    flat.replace(QLatin1String("\r\n"), QLatin1String(" | ")).replace(QLatin1Char('\n'), QLatin1String(" | "))
        .replace(QLatin1Char('\r'), QLatin1String(" | "));
    const QString stamped = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))
        + QLatin1Char(' ') + flat + QLatin1String("\r\n");
    write(stamped.toUtf8());
}

void QLog::appendMessages(const QString &title, const QMessages &messages)
{
    const QList<QMessages::Message> list = messages.messages();
    QString block = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")) + QLatin1Char(' ')
        + title + QStringLiteral(" (%1 issues)\r\n").arg(messages.issueCount());
    for (const QMessages::Message &m : list) {
        const char *kind = m.kind == QMessages::Error ? "error" : m.kind == QMessages::Warning ? "warning" : "info";
        QString text = m.text;
        text.replace(QLatin1Char('\n'), QLatin1Char(' ')).remove(QLatin1Char('\r'));
        block += QStringLiteral("    %1: %2\r\n").arg(QLatin1String(kind), text);
    }
    write(block.toUtf8());
}

void QLog::installMessageHandler()
{
    QMutexLocker locker(&m_lock);
    if (m_handlerInstalled)
        return;
    m_handlerInstalled = true;
    g_handlerLog = this;
    g_previousHandler = qInstallMessageHandler(logHandler);
}

void QLog::write(const QByteArray &bytes)
{
    // A warning raised while the file is written must not come back here.
    const bool wasInHandler = t_inHandler;
    t_inHandler = true;
    struct Restore { bool v; ~Restore() { t_inHandler = v; } } restore{wasInHandler};
    QMutexLocker locker(&m_lock);
    if (!m_enabled || m_path.isEmpty())
        return;
    QFile file(m_path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return; // a read-only program folder simply has no log
    file.write(bytes);
    const qint64 size = file.size();
    file.close();
    if (size > m_maxBytes)
        trim();
}

void QLog::trim()
{
    // Keep the newest half, from the start of a line.
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const qint64 keep = m_maxBytes / 2;
    file.seek(qMax<qint64>(0, file.size() - keep));
    QByteArray tail = file.readAll();
    file.close();
    const qsizetype nl = tail.indexOf('\n');
    if (nl >= 0)
        tail.remove(0, nl + 1);
    QSaveFile out(m_path);
    if (out.open(QIODevice::WriteOnly)) {
        out.write("[older lines dropped]\r\n");
        out.write(tail);
        out.commit();
    }
}
