#include "projectreport.h"

#include "project/qproject.h"

#include <QFileInfo>

namespace ProjectReport {

QList<NamedFile> namedFiles(const QProjectDefFiles &files)
{
    QList<NamedFile> out;
    auto add = [&](const QString &slot, const QString &name) {
        if (name.isEmpty())
            return;
        NamedFile f;
        f.slot = slot;
        f.name = name;
        f.path = QProject::resolveFile(files.folder, name);
        f.exists = QFileInfo(f.path).isFile();
        out.append(f);
    };
    add(QStringLiteral("sprites"), files.sprite);
    add(QStringLiteral("animations"), files.animation);
    add(QStringLiteral("sounds"), files.sound);
    add(QStringLiteral("commands"), files.command);
    for (const QString &name : files.states)
        add(QStringLiteral("states"), name);
    for (const QString &name : files.palettes)
        add(QStringLiteral("palette"), name);
    return out;
}

QString versionText(quint32 version)
{
    if (version == 0)
        return QStringLiteral("Beta");
    return QStringLiteral("%1 (%2.%3.%4.%5)")
        .arg(QProject::versionText(version))
        .arg(version >> 24)
        .arg((version >> 16) & 0xFF)
        .arg((version >> 8) & 0xFF)
        .arg(version & 0xFF);
}

QJsonObject summaryJson(QProject &project, const QString &path)
{
    return QJsonObject{
        {QStringLiteral("file"), path},
        {QStringLiteral("kind"), QStringLiteral("definitions")},
        {QStringLiteral("name"), project.name()},
        {QStringLiteral("type"), QProject::typeName(project.type())},
        {QStringLiteral("version"), project.version() ? QProject::versionText(project.version())
                                                      : QStringLiteral("Beta")},
        {QStringLiteral("versionWord"), QStringLiteral("0x%1").arg(project.version(), 8, 16, QLatin1Char('0'))},
        {QStringLiteral("localCoord"), QJsonObject{{QStringLiteral("width"), project.localWidth()},
                                                   {QStringLiteral("height"), project.localHeight()}}},
    };
}

QString summaryText(QProject &project, const QString &path)
{
    QString out;
    out += QStringLiteral("File:      %1\n").arg(path);
    out += QStringLiteral("Name:      %1\n").arg(project.name());
    out += QStringLiteral("Type:      %1\n").arg(QProject::typeName(project.type()));
    out += QStringLiteral("Version:   %1\n").arg(versionText(project.version()));
    out += QStringLiteral("Local:     %1x%2\n").arg(project.localWidth()).arg(project.localHeight());
    return out;
}

QJsonArray filesJson(const QList<NamedFile> &files)
{
    QJsonArray out;
    for (const NamedFile &f : files) {
        out.append(QJsonObject{{QStringLiteral("slot"), f.slot},
                               {QStringLiteral("name"), f.name},
                               {QStringLiteral("path"), f.path},
                               {QStringLiteral("exists"), f.exists}});
    }
    return out;
}

QString filesText(const QList<NamedFile> &files)
{
    QString out = QStringLiteral("\nFiles\n");
    if (files.isEmpty())
        out += QStringLiteral("  (none named)\n");
    for (const NamedFile &f : files)
        out += QStringLiteral("  %1 %2 %3\n").arg(f.slot, -11).arg(f.exists ? QStringLiteral("found  ")
                                                                              : QStringLiteral("missing"))
                   .arg(f.name);
    return out;
}

} // namespace ProjectReport
