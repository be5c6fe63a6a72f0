#pragma once

#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>

class QProject;
class QSprites;

namespace TestSupport {

// What a project shows and can undo: texts with their undo depth, every
// sprite's record and picture, the palettes and the sprite undo stack. Taken
// before and after an operation that must leave the project alone.
struct ProjectState
{
    QStringList texts;
    QList<int> textUndo;
    QList<bool> textModified;
    QStringList textNames;
    QStringList sprites;  // one line of record fields per sprite
    QList<QImage> images; // each sprite as it shows, in ARGB32
    QByteArray palettes;
    int undoCount = 0;
    int undoIndex = 0;
    bool spritesModified = false;
    QString spritesFile;
    quint32 spritesVersion = 0;
    QString animations;   // the store as the writer gives it
    bool animationsModified = false;
    QString animationsFile;
    QStringList sounds;   // group, number and a hash of the bytes, per sound
    int soundUndoCount = 0;
    int soundUndoIndex = 0;
    bool soundsModified = false;
    QString soundsFile;

    static ProjectState of(QProject &project);
    static ProjectState of(QSprites &sprites);
};

// The first difference between two states, empty when there is none. A real
// save may clear the modified flags and give new file names and versions.
QString firstDifference(const ProjectState &before, const ProjectState &after, bool realSave = false);

} // namespace TestSupport

// Fails the test unless `project` still is as `state` shows it; `what` says after what.
#define BF_VERIFY_UNCHANGED(state, project, realSave, what)                                                    \
    do {                                                                                                       \
        const QString difference_ =                                                                            \
            TestSupport::firstDifference(state, TestSupport::ProjectState::of(project), realSave);             \
        QVERIFY2(difference_.isEmpty(), qPrintable(QStringLiteral("after %1: %2").arg(QLatin1String(what), difference_))); \
    } while (0)
