#include "atomicwrite.h"

#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QSaveFile>

namespace AtomicWrite {

static bool commit(QSaveFile &file, const QString &path, QString *error)
{
    if (!file.commit()) {
        *error = QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}

static bool open(QSaveFile &file, const QString &path, QString *error)
{
    if (!file.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(path), file.errorString());
        return false;
    }
    return true;
}

bool writeBytes(const QString &path, const QByteArray &bytes, QString *error)
{
    QSaveFile file(path);
    if (!open(file, path, error))
        return false;
    if (file.write(bytes) != bytes.size()) {
        *error = QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(path), file.errorString());
        file.cancelWriting();
        return false;
    }
    return commit(file, path, error);
}

bool writePng(const QString &path, const QImage &image, QString *error)
{
    QSaveFile file(path);
    if (!open(file, path, error))
        return false;
    QImageWriter writer(&file, "png");
    if (!writer.write(image)) {
        *error = QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(path), writer.errorString());
        file.cancelWriting();
        return false;
    }
    return commit(file, path, error);
}

} // namespace AtomicWrite
