#pragma once

#include "sounds/qsounds.h"

#include <QUndoCommand>

// Base of the sound store's undo commands. They are pushed after the store
// has made the change, so the first redo() does nothing; while one replays,
// the store records nothing.
class SoundUndoCommand : public QUndoCommand
{
public:
    SoundUndoCommand(QSounds *sounds, int index, const QString &text);
    void redo() override;
    virtual void doRedo() = 0;

protected:
    // Keeps the store from recording for the lifetime of the guard.
    class Replay
    {
    public:
        explicit Replay(QSounds *sounds);
        ~Replay();
        Replay(const Replay &) = delete;
        Replay &operator=(const Replay &) = delete;

    private:
        QSounds *m_sounds;
        bool m_was;
    };

    QSounds *m_sounds;
    int m_index;
    bool m_first = true;
};

// Holds one sample in the undo cache: the record and, under `undoId`, its bytes.
class SoundHeld : public SoundUndoCommand
{
public:
    SoundHeld(QSounds *sounds, int index, const QString &text);
    ~SoundHeld() override;

protected:
    void hold(const SoundRecord &record, const QByteArray &bytes);
    QByteArray heldBytes() const;

    SoundRecord m_record;
    quint32 m_undoId = 0;
};

// A sound was inserted: undo removes the row, redo inserts it again.
class SoundInsert : public SoundHeld
{
public:
    SoundInsert(QSounds *sounds, int index, const QString &text = QString());
    void undo() override;
    void doRedo() override;
};

// A sound was removed: undo inserts it again with its info and bytes.
class SoundRemove : public SoundHeld
{
public:
    SoundRemove(QSounds *sounds, int index, const SoundRecord &record, const QByteArray &bytes,
                const QString &text = QString());
    void undo() override;
    void doRedo() override;
};

// Group and number changed: undo and redo swap them with the current ones.
class SoundChangeInfo : public SoundUndoCommand
{
public:
    SoundChangeInfo(QSounds *sounds, int index, quint16 group, quint16 number, const QString &text = QString());
    void undo() override;
    void doRedo() override { undo(); }

private:
    quint16 m_group;
    quint16 m_number;
};

// The sample was replaced: undo and redo swap the held bytes with the current.
class SoundChangeSample : public SoundUndoCommand
{
public:
    SoundChangeSample(QSounds *sounds, int index, quint32 undoId, const QString &text = QString());
    ~SoundChangeSample() override;
    void undo() override;
    void doRedo() override { undo(); }

private:
    quint32 m_undoId;
};

class SoundMove : public SoundUndoCommand
{
public:
    SoundMove(QSounds *sounds, int from, int to, const QString &text = QString());
    void undo() override;
    void doRedo() override;

private:
    int m_to;
};
