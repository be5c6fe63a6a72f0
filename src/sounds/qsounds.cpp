#include "qsounds.h"

#include "base/qmessages.h"
#include "soundundocommands.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>

namespace {

quint16 u16(const QByteArray &b, qsizetype at)
{
    return at >= 0 && at + 2 <= b.size() ? qFromLittleEndian<quint16>(b.constData() + at) : 0;
}

quint32 u32(const QByteArray &b, qsizetype at)
{
    return at >= 0 && at + 4 <= b.size() ? qFromLittleEndian<quint32>(b.constData() + at) : 0;
}

quint16 clampWord(int value)
{
    return quint16(std::clamp(value, 0, 65535));
}

} // namespace

// ---------------------------------------------------------------- WAV header

QWavInfo QWavInfo::read(const QByteArray &bytes)
{
    QWavInfo info;
    if (bytes.isEmpty())
        return info;
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE") {
        info.kind = NotWav;
        return info;
    }
    // The format chunk is the first one in every file the engine's tools
    // make; a file that puts another chunk first is looked through for it.
    qsizetype fmt = 12;
    while (fmt + 8 <= bytes.size() && bytes.mid(fmt, 4) != "fmt ") {
        const quint32 size = u32(bytes, fmt + 4);
        if (size > quint32(bytes.size()))
            break;
        fmt += 8 + qsizetype(size) + (size & 1);
    }
    info.kind = OtherWav;
    if (fmt + 24 > bytes.size())
        return info;
    info.formatTag = u16(bytes, fmt + 8);
    if (info.formatTag != 1)
        return info;
    info.kind = Pcm;
    info.channels = quint8(u16(bytes, fmt + 10));
    info.sampleRate = u32(bytes, fmt + 12);
    const quint32 byteRate = u32(bytes, fmt + 16);
    info.bits = quint8(u16(bytes, fmt + 22));
    const qsizetype data = bytes.indexOf("data", fmt + 8);
    const quint32 dataSize = data > 0 ? u32(bytes, data + 4) : 0;
    if (dataSize != 0 && byteRate != 0)
        info.duration = float(double(dataSize) / double(byteRate));
    return info;
}

// ---------------------------------------------------------------- store

QSounds::QSounds(int cacheType, int cacheCompression, QSpriteRecordPool *records, QObject *parent)
    : QOrganizableObject(parent)
    , m_cacheType(cacheType)
    , m_cacheCompression(cacheCompression)
    , m_cache(QStringLiteral("mugensnd"), cacheType, cacheCompression != 0, -1, records)
{
}

QSounds::~QSounds()
{
    // The commands give their held samples back to the undo cache.
    m_undo.clear();
}

QSpriteCache *QSounds::undoCache()
{
    if (m_undoCache)
        return m_undoCache;
    if (!m_ownUndoCache)
        m_ownUndoCache = std::make_unique<QSpriteCache>(QStringLiteral("sndUndo"), QSpriteCache::Memory, false, -1,
                                                        m_cache.recordPool());
    return m_ownUndoCache.get();
}

int QSounds::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant QSounds::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !validIndex(index.row()) || role != Qt::DisplayRole)
        return QVariant();
    const SoundRecord &r = m_records.at(index.row());
    return QStringLiteral("%1, %2").arg(r.group).arg(r.number);
}

SoundRecord QSounds::record(int index) const
{
    return validIndex(index) ? m_records.at(index) : SoundRecord();
}

QByteArray QSounds::sample(int index) const
{
    QByteArray bytes;
    if (validIndex(index) && m_records.at(index).cacheId)
        m_cache.get(m_records.at(index).cacheId, bytes);
    return bytes;
}

int QSounds::find(int start, int group, int number) const
{
    const int n = count();
    if (n == 0)
        return -1;
    start = std::clamp(start, 0, n - 1);
    for (int k = 0; k < n; ++k) {
        const int i = (start + k) % n;
        const SoundRecord &r = m_records.at(i);
        if ((group < 0 || r.group == group) && (number < 0 || r.number == number))
            return i;
    }
    return -1;
}

int QSounds::previousGroupStart(int index) const
{
    if (!validIndex(index))
        return -1;
    int i = index;
    const quint16 group = m_records.at(i).group;
    while (i > 0 && m_records.at(i - 1).group == group)
        --i;
    if (i == 0)
        return index == 0 ? 0 : i;
    // The first row of the group before.
    int j = i - 1;
    const quint16 before = m_records.at(j).group;
    while (j > 0 && m_records.at(j - 1).group == before)
        --j;
    return j;
}

int QSounds::nextGroupStart(int index) const
{
    if (!validIndex(index))
        return -1;
    const quint16 group = m_records.at(index).group;
    for (int i = index + 1; i < count(); ++i)
        if (m_records.at(i).group != group)
            return i;
    return index;
}

int QSounds::freeNumber(int group, int after) const
{
    for (int n = std::max(0, after + 1); n < 65536; ++n)
        if (find(0, group, n) < 0)
            return n;
    return clampWord(after);
}

void QSounds::touch()
{
    m_modified = true;
    emit changed();
}

void QSounds::push(QUndoCommand *command)
{
    if (m_recording)
        m_undo.push(command);
    else
        delete command;
}

void QSounds::fillInfo(SoundRecord &record, const QByteArray &bytes) const
{
    const QWavInfo info = QWavInfo::read(bytes);
    record.channels = info.channels;
    record.sampleRate = info.sampleRate;
    record.bits = info.bits;
    record.duration = info.duration;
}

// ---------------------------------------------------------------- raw rows

void QSounds::insertRow(int pos, const SoundRecord &info, const QByteArray &bytes)
{
    pos = std::clamp(pos, 0, count());
    SoundRecord r = info;
    r.cacheId = bytes.isEmpty() ? 0 : m_cache.add(bytes, true);
    fillInfo(r, bytes);
    beginInsertRows(QModelIndex(), pos, pos);
    m_records.insert(pos, r);
    endInsertRows();
}

void QSounds::removeRow(int index)
{
    if (!validIndex(index))
        return;
    beginRemoveRows(QModelIndex(), index, index);
    const SoundRecord r = m_records.takeAt(index);
    endRemoveRows();
    if (r.cacheId)
        m_cache.remove(r.cacheId);
}

void QSounds::swapInfo(int index, quint16 *group, quint16 *number)
{
    if (!validIndex(index))
        return;
    SoundRecord &r = m_records[index];
    std::swap(r.group, *group);
    std::swap(r.number, *number);
    emit dataChanged(this->index(index), this->index(index));
}

void QSounds::swapSample(int index, quint32 *undoId)
{
    if (!validIndex(index))
        return;
    QByteArray held;
    if (*undoId) {
        undoCache()->get(*undoId, held);
        undoCache()->remove(*undoId);
    }
    const QByteArray current = sample(index);
    *undoId = current.isEmpty() ? 0 : undoCache()->add(current, true);
    SoundRecord &r = m_records[index];
    if (r.cacheId)
        m_cache.remove(r.cacheId);
    r.cacheId = held.isEmpty() ? 0 : m_cache.add(held, true);
    fillInfo(r, held);
    emit dataChanged(this->index(index), this->index(index));
}

void QSounds::moveRow(int from, int to)
{
    if (!validIndex(from) || !validIndex(to) || from == to)
        return;
    beginMoveRows(QModelIndex(), from, from, QModelIndex(), to > from ? to + 1 : to);
    m_records.move(from, to);
    endMoveRows();
}

// ---------------------------------------------------------------- edits

int QSounds::add(int group, int number, const QByteArray &bytes)
{
    insert(count(), group, number, bytes);
    return count() - 1;
}

void QSounds::insert(int pos, int group, int number, const QByteArray &bytes)
{
    pos = std::clamp(pos, 0, count());
    SoundRecord r;
    r.group = clampWord(group);
    r.number = clampWord(number);
    insertRow(pos, r, bytes);
    push(new SoundInsert(this, pos));
    touch();
}

int QSounds::duplicate(int index)
{
    if (!validIndex(index))
        return -1;
    const SoundRecord r = m_records.at(index);
    insert(index + 1, r.group, freeNumber(r.group, r.number), sample(index));
    return index + 1;
}

void QSounds::remove(int index)
{
    if (!validIndex(index))
        return;
    const SoundRecord r = m_records.at(index);
    const QByteArray bytes = m_recording ? sample(index) : QByteArray();
    removeRow(index);
    if (m_recording)
        push(new SoundRemove(this, index, r, bytes));
    touch();
}

void QSounds::setInfo(int index, int group, int number)
{
    if (!validIndex(index))
        return;
    quint16 g = clampWord(group);
    quint16 n = clampWord(number);
    if (m_records.at(index).group == g && m_records.at(index).number == n)
        return;
    swapInfo(index, &g, &n);
    push(new SoundChangeInfo(this, index, g, n));
    touch();
}

bool QSounds::setSample(int index, const QString &path, QString *error)
{
    if (!validIndex(index))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    setSampleBytes(index, file.readAll());
    return true;
}

void QSounds::setSampleBytes(int index, const QByteArray &bytes)
{
    if (!validIndex(index))
        return;
    quint32 held = bytes.isEmpty() ? 0 : undoCache()->add(bytes, true);
    swapSample(index, &held);
    push(new SoundChangeSample(this, index, held));
    touch();
}

bool QSounds::saveWav(int index, const QString &path, QString *error) const
{
    if (!validIndex(index))
        return false;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    const QByteArray bytes = sample(index);
    if (file.write(bytes) != bytes.size()) {
        if (error)
            *error = file.errorString();
        file.remove();
        return false;
    }
    return true;
}

void QSounds::move(int from, int to)
{
    if (!validIndex(from) || !validIndex(to) || from == to)
        return;
    moveRow(from, to);
    push(new SoundMove(this, from, to));
    touch();
}

void QSounds::organize()
{
    // Insertion sort by group, then number, through move() so that undo
    // takes each step back.
    auto less = [](const SoundRecord &a, const SoundRecord &b) {
        return a.group != b.group ? a.group < b.group : a.number < b.number;
    };
    bool any = false;
    for (int i = 1; i < count(); ++i) {
        int j = i;
        while (j > 0 && less(m_records.at(i), m_records.at(j - 1)))
            --j;
        if (j == i)
            continue;
        if (!any)
            beginMacro(tr("autoOrganize"));
        any = true;
        move(i, j);
    }
    if (any)
        endMacro();
}

void QSounds::removeGroup(int group)
{
    bool any = false;
    for (int i = count() - 1; i >= 0; --i) {
        if (m_records.at(i).group != group)
            continue;
        if (!any)
            beginMacro(tr("removeGroup"));
        any = true;
        remove(i);
    }
    if (any)
        endMacro();
}

void QSounds::renameGroup(int oldGroup, int newGroup)
{
    bool any = false;
    for (int i = 0; i < count(); ++i) {
        if (m_records.at(i).group != oldGroup)
            continue;
        if (!any)
            beginMacro(tr("renameGroup"));
        any = true;
        setInfo(i, newGroup, m_records.at(i).number);
    }
    if (any)
        endMacro();
}

void QSounds::clear()
{
    beginResetModel();
    m_records.clear();
    m_cache.clear();
    endResetModel();
    m_path.clear();
    m_undo.clear();
    m_version.clear();
    m_comment.clear();
    m_modified = false;
    emit changed();
}

void QSounds::warn(const QString &file, int line, const QString &text)
{
    if (m_messages)
        m_messages->addWarning(QStringLiteral("%1(%2): %3").arg(file).arg(line).arg(text));
}
