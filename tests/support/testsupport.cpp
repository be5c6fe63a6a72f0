#include "testsupport.h"

#include <QDir>
#include <QFileInfo>

namespace TestSupport {

QString sampleDir()
{
    const QString env = qEnvironmentVariable("BF_TESTDATA_DIR");
    const QString base = env.isEmpty() ? QStringLiteral(BF_TESTDATA_DIR) : env;
    const QString dir = QDir(base).absoluteFilePath(QStringLiteral("engine-sample"));
    return QFileInfo(dir).isDir() ? QDir::cleanPath(dir) : QString();
}

QString samplePath(const QString &relative)
{
    return QDir(sampleDir()).absoluteFilePath(relative);
}

QString engineDocsDir()
{
    const QString env = qEnvironmentVariable("BF_TESTDATA_DIR");
    const QString base = env.isEmpty() ? QStringLiteral(BF_TESTDATA_DIR) : env;
    const QString dir = QDir(base).absoluteFilePath(QStringLiteral("../engine-docs"));
    return QFileInfo(dir).isDir() ? QDir::cleanPath(dir) : QString();
}

QString fixturesDir()
{
    return QDir::cleanPath(QStringLiteral(BF_SOURCE_DIR "/tests/fixtures"));
}

} // namespace TestSupport
