#include "qbugreport.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QtEndian>

static QString tr(const char *text)
{
    return QCoreApplication::translate("QBugReport", text);
}

static bool failWith(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

QString QBugReport::fileFilter()
{
    return tr("Brawlforge Bug Report (*.bfb)");
}

QByteArray QBugReport::uncompressLog(const QByteArray &compressed)
{
    if (compressed.size() < 4)
        return QByteArray();
    const quint32 announced = qFromBigEndian<quint32>(compressed.constData());
    // Deflate cannot do better than about 1:1032; logs are bounded well below 256 MB.
    const qint64 possible = qint64(compressed.size() - 4) * 1032 + 64;
    if (announced > (256u << 20) || qint64(announced) > possible)
        return QByteArray();
    return qUncompress(compressed);
}

bool QBugReport::write(QIODevice &device, const QBugReportSection *animations, QString *error) const
{
    QDataStream out(&device);
    Flags written = flags;
    if (!animations)
        written[Animations] = false;
    out << qCompress(log) << description;
    for (bool f : written)
        out << f;
    for (int e = 0; e < EditorCount; ++e) {
        if (!written[size_t(e)])
            continue;
        if (e == Animations)
            animations->writeBugReport(out);
        else
            out << qint32(0);
    }
    if (out.status() != QDataStream::Ok)
        return failWith(error, tr("The bug report could not be written: %1").arg(device.errorString()));
    return true;
}

bool QBugReport::read(QIODevice &device, QBugReportSection *animations, QString *error)
{
    const QString damaged = tr("The bug report is damaged or truncated.");
    QDataStream in(&device);
    QByteArray compressed;
    in >> compressed;
    if (in.status() != QDataStream::Ok)
        return failWith(error, damaged);
    log = uncompressLog(compressed);
    in >> description;
    if (in.status() != QDataStream::Ok) {
        description.clear();
        return failWith(error, damaged);
    }
    Flags read{};
    for (bool &f : read)
        in >> f;
    if (in.status() != QDataStream::Ok)
        return failWith(error, damaged);
    flags = read;
    for (int e = 0; e < EditorCount; ++e) {
        if (!read[size_t(e)])
            continue;
        if (e == Animations) {
            // The section has no length of its own: without its reader the rest
            // of the package cannot be found.
            if (!animations)
                return failWith(error, tr("The bug report holds animation data, but there is no animation store to read it."));
            if (!animations->readBugReport(in) || in.status() != QDataStream::Ok)
                return failWith(error, damaged);
        } else {
            qint32 placeholder = 0;
            in >> placeholder;
            if (in.status() != QDataStream::Ok)
                return failWith(error, damaged);
        }
    }
    return true;
}

bool QBugReport::make(const QString &target, const QString &logPath, const QString &description, const Flags &flags,
                      const QBugReportSection *animations, QString *error)
{
    QFile logFile(logPath);
    if (!logFile.open(QIODevice::ReadOnly))
        return failWith(error, tr("The log %1 could not be read: %2").arg(QDir::toNativeSeparators(logPath),
                                                                             logFile.errorString()));
    QBugReport report;
    report.log = logFile.readAll();
    report.description = description;
    report.flags = flags;

    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly))
        return failWith(error, tr("%1 could not be written: %2").arg(QDir::toNativeSeparators(target), file.errorString()));
    if (!report.write(file, animations, error)) {
        file.cancelWriting();
        return false;
    }
    if (!file.commit())
        return failWith(error, tr("%1 could not be written: %2").arg(QDir::toNativeSeparators(target), file.errorString()));
    return true;
}

static bool writeWhole(const QString &path, const QByteArray &data, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit())
        return failWith(error, tr("%1 could not be written: %2").arg(QDir::toNativeSeparators(path), file.errorString()));
    return true;
}

bool QBugReport::restore(const QString &package, const QString &dir, QBugReportSection *animations, QString *error,
                         QBugReport *report)
{
    QFile file(package);
    if (!file.open(QIODevice::ReadOnly))
        return failWith(error, tr("%1 could not be opened: %2").arg(QDir::toNativeSeparators(package), file.errorString()));
    QBugReport r;
    QString readError;
    const bool ok = r.read(file, animations, &readError);
    if (report)
        *report = r;
    // A package that yields nothing leaves the two files alone.
    if (!ok && r.flags == Flags{} && r.description.isEmpty() && r.log.isEmpty())
        return failWith(error, readError);
    const QDir d(dir);
    if (!writeWhole(d.filePath(QStringLiteral("log_restore.txt")), r.log, error)
        || !writeWhole(d.filePath(QStringLiteral("bug_descr.txt")), r.description.toUtf8(), error))
        return false;
    return ok || failWith(error, readError);
}
