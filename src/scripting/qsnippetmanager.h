#pragma once

#include "base/qentryfolder.h"

// The code snippets of the data folders, one row a file.
class QSnippetManager : public QEntryFolder
{
    Q_OBJECT

public:
    explicit QSnippetManager(const QStringList &folders, QObject *parent = nullptr);
    ~QSnippetManager() override;
};
