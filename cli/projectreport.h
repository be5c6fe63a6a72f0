#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

class QProject;
struct QProjectDefFiles;

// What a DEF says about its project, in the forms `info` and `project info`
// print: type, engine version, local coordinates, and the files it names.
namespace ProjectReport {

struct NamedFile
{
    QString slot;   // "sprites", "animations", "sounds", "commands", "states", "palette"
    QString name;   // as written in the DEF
    QString path;   // resolved against the DEF's folder
    bool exists = false;
};

QList<NamedFile> namedFiles(const QProjectDefFiles &files);

// "1.1 (1.1.0.0)", or "Beta" for a DEF without a readable mugenversion.
QString versionText(quint32 version);

// File, name, type, version and local coordinates.
QJsonObject summaryJson(QProject &project, const QString &path);
QString summaryText(QProject &project, const QString &path);

QJsonArray filesJson(const QList<NamedFile> &files);
QString filesText(const QList<NamedFile> &files);

} // namespace ProjectReport
