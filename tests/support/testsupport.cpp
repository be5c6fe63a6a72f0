#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace TestSupport {

QString sampleDir()
{
    const QString env = qEnvironmentVariable("BF_TESTDATA_DIR");
    const QString base = env.isEmpty() ? QStringLiteral(BF_TESTDATA_DIR) : env;
    const QString dir = QDir(base).absoluteFilePath(QStringLiteral("engine-sample"));
    return QFileInfo(dir).isDir() ? QDir::cleanPath(dir) : QString();
}

bool sampleRequired()
{
    return qEnvironmentVariable("CI").compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

QString samplePath(const QString &relative)
{
    return QDir(sampleDir()).absoluteFilePath(relative);
}

QString fixturesDir()
{
    return QDir::cleanPath(QStringLiteral(BF_SOURCE_DIR "/tests/fixtures"));
}

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

bool writeAll(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

} // namespace TestSupport
