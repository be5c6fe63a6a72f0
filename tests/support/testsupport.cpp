#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QCoreApplication>

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

int imageDifference(const QImage &a, const QImage &b)
{
    if (a.isNull() || b.isNull() || a.size() != b.size())
        return -1;
    const QImage x = a.convertToFormat(QImage::Format_ARGB32);
    const QImage y = b.convertToFormat(QImage::Format_ARGB32);
    int worst = 0;
    for (int row = 0; row < x.height(); ++row) {
        const QRgb *p = reinterpret_cast<const QRgb *>(x.constScanLine(row));
        const QRgb *q = reinterpret_cast<const QRgb *>(y.constScanLine(row));
        for (int col = 0; col < x.width(); ++col) {
            // Fully transparent pixels are equal whatever colour they carry.
            if (p[col] == q[col] || (qAlpha(p[col]) == 0 && qAlpha(q[col]) == 0))
                continue;
            worst = qMax(worst, qAbs(qRed(p[col]) - qRed(q[col])));
            worst = qMax(worst, qAbs(qGreen(p[col]) - qGreen(q[col])));
            worst = qMax(worst, qAbs(qBlue(p[col]) - qBlue(q[col])));
            worst = qMax(worst, qAbs(qAlpha(p[col]) - qAlpha(q[col])));
        }
    }
    return worst;
}

bool matchesFixture(const QImage &image, const QString &name, int tolerance, QString *why)
{
    const QString path = QDir(fixturesDir()).absoluteFilePath(name);
    if (qEnvironmentVariableIsSet("BF_UPDATE_FIXTURES")) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        return image.convertToFormat(QImage::Format_ARGB32).save(path);
    }
    const QImage expected(path);
    const int difference = imageDifference(image, expected);
    if (difference >= 0 && difference <= tolerance)
        return true;
    const QString drawn = QDir(QCoreApplication::applicationDirPath())
                              .absoluteFilePath(QFileInfo(name).completeBaseName() + QStringLiteral(".actual.png"));
    image.save(drawn);
    if (why)
        *why = expected.isNull() ? QStringLiteral("%1: no stored picture").arg(path)
             : difference < 0   ? QStringLiteral("%1: size %2x%3, stored %4x%5").arg(name).arg(image.width())
                                      .arg(image.height()).arg(expected.width()).arg(expected.height())
                                : QStringLiteral("%1: channels differ by up to %2 (drawn: %3)").arg(name)
                                      .arg(difference).arg(drawn);
    return false;
}

} // namespace TestSupport
