#pragma once

#include "animations/animrecords.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

class QAnimations;
class QSyntaxTextEditor;

// Stages and storyboards keep their actions among the sections of their DEF.
// While such a project is open the DEF text is the one truth: the store reads
// its actions from it, edits of the store are written back into it as text
// edits (undoable there, saved with it), and edits of the text reload the store.
class QDefAnimations : public QObject
{
    Q_OBJECT

public:
    // `active` tells whether the project's DEF holds its actions (a stage or a
    // storyboard) at the moment.
    QDefAnimations(QAnimations *store, QSyntaxTextEditor *definitions, std::function<bool()> active,
                   QObject *parent = nullptr);

    // Reads the DEF's actions into the store, with messages.
    void read();

    // `defText` with `actions` in place of its own. Actions are matched by
    // number (the n-th of a number to the n-th); a matched action is written
    // where its block stood, and only when it differs unless rewriteAll is set;
    // blocks left unmatched go, and new actions follow the last block. The
    // rest of the text stays as it was.
    static QString merge(const QString &defText, const QList<AnimAction *> &actions, bool rewriteAll);

private slots:
    void storeChanged();
    void definitionsChanged();

private:
    QAnimations *m_store;
    QSyntaxTextEditor *m_definitions;
    std::function<bool()> m_active;
    bool m_syncing = false;
    int m_revision = -1;
};
