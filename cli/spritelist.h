#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

// One line of sprites.txt, the index of an export folder.
struct SpriteListEntry
{
    int index = 0;
    quint16 group = 0;
    quint16 number = 0;
    qint16 x = 0;
    qint16 y = 0;
    int link = -1;          // index of the sprite whose image this one shows, -1 if none
    bool hasPalette = false;
    qint16 paletteGroup = 0;
    qint16 paletteNumber = 0;
    QString fileName;       // empty when no image was written
};

namespace SpriteList {

// "<index>_<group>-<number>.png", the index on 5 digits so that names sort in
// file order.
QString exportFileName(int index, quint16 group, quint16 number);

// Tab-separated lines: index, group, number, x, y, link or "-", palette group and
// number (or "-" twice), file name (or "-"). Line feeds only: it is for scripts.
QByteArray text(const QList<SpriteListEntry> &entries);

} // namespace SpriteList
