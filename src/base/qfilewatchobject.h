#pragma once

#include <QObject>
#include <QString>

// A document whose file is watched for changes made by other programs.
class QFileWatchObject : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    virtual QString fileName() const = 0;
    // False when the file could not be read again.
    virtual bool reload(const QString &fileName) = 0;
    // False when the file holds what the document last read or wrote: the
    // change was the program's own save, or touched nothing.
    virtual bool differsFromFile() const { return true; }

    // Set while the program itself writes the file, so its own save is not
    // taken for an outside change.
    bool suspended = false;
};
