#pragma once

#include "base/qentryfolder.h"

#include <QList>
#include <QPair>

// The code snippets of the data folders, one row a file. A snippet is code
// with named fields that the user fills in before it is inserted.
class QSnippetManager : public QEntryFolder
{
    Q_OBJECT

public:
    struct Field
    {
        QString name;  // the placeholder in the code
        QString title; // the label the user sees
        QString type;  // "string", "float", "items"; anything else is an integer
        int column = 0;
        QList<QPair<QString, QString>> items; // value and its title, for "items"
    };
    struct Snippet
    {
        bool valid = false;
        QList<Field> fields;
        QString code;
    };

    explicit QSnippetManager(const QStringList &folders, QObject *parent = nullptr);
    ~QSnippetManager() override;

    // The snippet of that name; not valid when the file is missing or is
    // not a snippet.
    Snippet snippet(const QString &name) const;
    // The code with every field's placeholder replaced by its answer, the
    // fields in file order (a name inside a longer one must come after it).
    static QString expand(const Snippet &snippet, const QStringList &answers);
};
