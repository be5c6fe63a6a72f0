#include "qanimationsfile.h"

#include "animations/qanimations.h"
#include "code/qtextencoding.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextCodec>

namespace {

// Larger texts are not animation files: the engine would take minutes to read
// them, and the text alone would take several times this in memory.
constexpr qint64 MaxFileSize = 256 * 1024 * 1024;
// The encoding is told from the first bytes: the detector takes about a second
// per megabyte of damaged data, and an animation text shows its encoding in its
// first comments and names.
constexpr qsizetype DetectionBytes = 1024 * 1024;

bool failWith(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

} // namespace

bool QAnimationsFile::load(QAnimations &store, const QString &path, int defaultCodepage, bool keepPath, QString *error)
{
    QFile file(path);
    if (!file.exists())
        return failWith(error, QCoreApplication::translate("QAnimationsFile", "The file does not exist"));
    if (!file.open(QIODevice::ReadOnly))
        return failWith(error, file.errorString());
    if (file.size() > MaxFileSize)
        return failWith(error, QCoreApplication::translate("QAnimationsFile",
                                                           "The file is too large to be an animation file (%1 MB)")
                                   .arg(file.size() >> 20));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return failWith(error, file.errorString());
    file.close();

    QTextCodec *codec = QTextEncoding::detectCodec(bytes.left(DetectionBytes), defaultCodepage);
    QString text = QTextEncoding::decode(bytes, codec);
    bytes = QByteArray();
    store.loadFileText(std::move(text), path, codec ? codec->name() : QByteArray("UTF-8"), keepPath);
    return true;
}

bool QAnimationsFile::save(QAnimations &store, const QString &path, bool forceUtf8, bool asCopy, QString *error)
{
    QTextCodec *codec = QTextCodec::codecForName(forceUtf8 ? QByteArray("UTF-8") : store.codecName());
    const QByteArray bytes = QTextEncoding::encode(store.fileText(), codec);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return failWith(error, file.errorString());
    if (file.write(bytes) != bytes.size()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return failWith(error, reason);
    }
    if (!file.commit())
        return failWith(error, file.errorString());
    if (!asCopy)
        store.fileSaved(path);
    return true;
}

bool QAnimationsFile::saveCurrent(QAnimations &store, QString *error)
{
    if (store.path().isEmpty() || !QFileInfo::exists(store.path()))
        return false;
    return save(store, store.path(), false, false, error);
}
