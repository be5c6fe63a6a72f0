#pragma once

#include <QByteArray>
#include <QString>

class QImage;

// Every file the tool writes goes to a temporary file beside its target and is
// renamed into place only when complete: a failed or interrupted run never
// leaves a half-written file where a good one was.
namespace AtomicWrite {

// False with a one-line reason in `error` if the file could not be written.
bool writeBytes(const QString &path, const QByteArray &bytes, QString *error);
bool writePng(const QString &path, const QImage &image, QString *error);

} // namespace AtomicWrite
