#include "filekind.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace FileKinds {

FileKind detect(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return FileKind::Missing;
    QFile file(path);
    if (info.isDir() || !file.open(QIODevice::ReadOnly))
        return FileKind::Unreadable;
    static const QByteArray spriteSignature("ElecbyteSpr\0", 12);
    static const QByteArray soundSignature("ElecbyteSnd\0", 12);
    const QByteArray head = file.read(12);
    if (head == spriteSignature)
        return FileKind::Sprites;
    if (head == soundSignature)
        return FileKind::Sounds;
    if (info.suffix().compare(QLatin1String("def"), Qt::CaseInsensitive) == 0)
        return FileKind::Definitions;
    return FileKind::Unknown;
}

QString problem(FileKind kind, const QString &path)
{
    const QString name = QDir::toNativeSeparators(path);
    switch (kind) {
    case FileKind::Missing: return QStringLiteral("'%1': no such file").arg(name);
    case FileKind::Unreadable: return QStringLiteral("'%1': cannot be read").arg(name);
    case FileKind::Unknown:
        return QStringLiteral("'%1': not a sprite file (SFF), sound file (SND) nor definition file (DEF)").arg(name);
    case FileKind::Sounds:
    case FileKind::Sprites:
    case FileKind::Definitions: break;
    }
    return QString();
}

} // namespace FileKinds
