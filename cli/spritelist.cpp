#include "spritelist.h"

namespace SpriteList {

QString exportFileName(int index, quint16 group, quint16 number)
{
    return QStringLiteral("%1_%2-%3.png").arg(index, 5, 10, QLatin1Char('0')).arg(group).arg(number);
}

QByteArray text(const QList<SpriteListEntry> &entries)
{
    static const QString dash = QStringLiteral("-");
    QByteArray out;
    out.reserve(entries.size() * 48);
    for (const SpriteListEntry &e : entries) {
        const QStringList fields = {
            QString::number(e.index),
            QString::number(e.group),
            QString::number(e.number),
            QString::number(e.x),
            QString::number(e.y),
            e.link >= 0 ? QString::number(e.link) : dash,
            e.hasPalette ? QString::number(e.paletteGroup) : dash,
            e.hasPalette ? QString::number(e.paletteNumber) : dash,
            e.fileName.isEmpty() ? dash : e.fileName,
        };
        out += fields.join(QLatin1Char('\t')).toUtf8();
        out += '\n';
    }
    return out;
}

} // namespace SpriteList
