#include "soundundocommands.h"

SoundUndoCommand::SoundUndoCommand(QSounds *sounds, int index, const QString &text)
    : QUndoCommand(text)
    , m_sounds(sounds)
    , m_index(index)
{
}

void SoundUndoCommand::redo()
{
    if (m_first) {
        m_first = false;
        return;
    }
    doRedo();
}

SoundUndoCommand::Replay::Replay(QSounds *sounds)
    : m_sounds(sounds)
    , m_was(sounds->isRecording())
{
    sounds->setRecording(false);
}

SoundUndoCommand::Replay::~Replay()
{
    m_sounds->setRecording(m_was);
}

// ---------------------------------------------------------------- held samples

SoundHeld::SoundHeld(QSounds *sounds, int index, const QString &text)
    : SoundUndoCommand(sounds, index, text)
{
}

SoundHeld::~SoundHeld()
{
    if (m_undoId)
        m_sounds->undoCache()->remove(m_undoId);
}

void SoundHeld::hold(const SoundRecord &record, const QByteArray &bytes)
{
    QSpriteCache *cache = m_sounds->undoCache();
    if (m_undoId)
        cache->remove(m_undoId);
    m_undoId = bytes.isEmpty() ? 0 : cache->add(bytes, true);
    m_record = record;
}

QByteArray SoundHeld::heldBytes() const
{
    QByteArray bytes;
    if (m_undoId)
        m_sounds->undoCache()->get(m_undoId, bytes);
    return bytes;
}

SoundInsert::SoundInsert(QSounds *sounds, int index, const QString &text)
    : SoundHeld(sounds, index, text.isEmpty() ? QObject::tr("Add sound") : text)
{
}

void SoundInsert::undo()
{
    const Replay replay(m_sounds);
    hold(m_sounds->record(m_index), m_sounds->sample(m_index));
    m_sounds->removeRow(m_index);
    m_sounds->touch();
}

void SoundInsert::doRedo()
{
    const Replay replay(m_sounds);
    m_sounds->insertRow(m_index, m_record, heldBytes());
    m_sounds->touch();
}

SoundRemove::SoundRemove(QSounds *sounds, int index, const SoundRecord &record, const QByteArray &bytes,
                         const QString &text)
    : SoundHeld(sounds, index, text.isEmpty() ? QObject::tr("Delete sound") : text)
{
    hold(record, bytes);
}

void SoundRemove::undo()
{
    const Replay replay(m_sounds);
    m_sounds->insertRow(m_index, m_record, heldBytes());
    m_sounds->touch();
}

void SoundRemove::doRedo()
{
    const Replay replay(m_sounds);
    hold(m_sounds->record(m_index), m_sounds->sample(m_index));
    m_sounds->removeRow(m_index);
    m_sounds->touch();
}

// ---------------------------------------------------------------- info, sample, order

SoundChangeInfo::SoundChangeInfo(QSounds *sounds, int index, quint16 group, quint16 number, const QString &text)
    : SoundUndoCommand(sounds, index, text.isEmpty() ? QObject::tr("Change sound") : text)
    , m_group(group)
    , m_number(number)
{
}

void SoundChangeInfo::undo()
{
    const Replay replay(m_sounds);
    m_sounds->swapInfo(m_index, &m_group, &m_number);
    m_sounds->touch();
}

SoundChangeSample::SoundChangeSample(QSounds *sounds, int index, quint32 undoId, const QString &text)
    : SoundUndoCommand(sounds, index, text.isEmpty() ? QObject::tr("Change sample") : text)
    , m_undoId(undoId)
{
}

SoundChangeSample::~SoundChangeSample()
{
    if (m_undoId)
        m_sounds->undoCache()->remove(m_undoId);
}

void SoundChangeSample::undo()
{
    const Replay replay(m_sounds);
    m_sounds->swapSample(m_index, &m_undoId);
    m_sounds->touch();
}

SoundMove::SoundMove(QSounds *sounds, int from, int to, const QString &text)
    : SoundUndoCommand(sounds, from, text.isEmpty() ? QObject::tr("Move sound") : text)
    , m_to(to)
{
}

void SoundMove::undo()
{
    const Replay replay(m_sounds);
    m_sounds->moveRow(m_to, m_index);
    m_sounds->touch();
}

void SoundMove::doRedo()
{
    const Replay replay(m_sounds);
    m_sounds->moveRow(m_index, m_to);
    m_sounds->touch();
}
