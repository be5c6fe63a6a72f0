#pragma once

#include "base/qorganizableobject.h"
#include "sprites/qspritecache.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUndoStack>

#include <memory>

class QMessages;
class QSpriteRecordPool;

// One sound of an SND container. The sample bytes never live here: they are
// in the store's cache under `cacheId` (0 for a sound without bytes).
struct SoundRecord
{
    quint32 cacheId = 0;
    quint16 group = 0;
    quint16 number = 0;
    quint8 channels = 0;
    quint32 sampleRate = 0;
    quint8 bits = 0;
    float duration = 0;
};

// What the header of a sample says. Only PCM WAV has channels, rate, bits
// and duration; anything else is kept byte for byte all the same.
struct QWavInfo
{
    enum Kind { Empty, Pcm, OtherWav, NotWav };
    Kind kind = Empty;
    quint16 formatTag = 0;
    quint8 channels = 0;
    quint32 sampleRate = 0;
    quint8 bits = 0;
    float duration = 0;

    static QWavInfo read(const QByteArray &bytes);
};

// The sounds of one SND container, one row a sound, keyed by group and
// number. Every mutator ends with `modified` set and changed() emitted; with
// recording on it pushes its undo command after the change (the command's
// first redo does nothing). Loads and saves never go through the undo stack.
class QSounds : public QOrganizableObject
{
    Q_OBJECT

public:
    // Cache settings ("cache_type", "cache_compression") are fixed for the
    // lifetime of the store; `records` is the program's pool of cache records.
    explicit QSounds(int cacheType = 0, int cacheCompression = 0, QSpriteRecordPool *records = nullptr,
                     QObject *parent = nullptr);
    ~QSounds() override;

    // --- list model -----------------------------------------------------------
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    void move(int from, int to) override;
    void autoOrganize() override { organize(); }

    // --- reading --------------------------------------------------------------
    int count() const { return int(m_records.size()); }
    bool isEmpty() const { return m_records.isEmpty(); }
    bool isModified() const { return m_modified; }
    QString path() const { return m_path; }
    int cacheType() const { return m_cacheType; }
    int cacheCompression() const { return m_cacheCompression; }
    // The record at `index`; a default one when out of range.
    SoundRecord record(int index) const;
    // The sample's bytes as stored; empty for a sound without bytes.
    QByteArray sample(int index) const;
    QWavInfo info(int index) const { return QWavInfo::read(sample(index)); }
    // First sound with group and number at or after `start` (wrapping); -1 if none.
    // A negative group or number matches any.
    int find(int start, int group, int number) const;
    int previousGroupStart(int index) const;
    int nextGroupStart(int index) const;
    // A number not yet used in `group`, the lowest above `after`.
    int freeNumber(int group, int after) const;

    // --- editing ------------------------------------------------------------
    int add(int group, int number, const QByteArray &bytes);
    void insert(int pos, int group, int number, const QByteArray &bytes);
    int duplicate(int index);
    void remove(int index);
    void setInfo(int index, int group, int number);
    // Reads the file whole as the new sample; false if it can't be read.
    bool setSample(int index, const QString &path, QString *error = nullptr);
    void setSampleBytes(int index, const QByteArray &bytes);
    bool saveWav(int index, const QString &path, QString *error = nullptr) const;
    void organize();
    void removeGroup(int group);
    void renameGroup(int oldGroup, int newGroup);

    // --- files --------------------------------------------------------------
    // Reads an SND. Damage is reported to the messages and what is whole is
    // kept; false (and the store as it was) only when the file can't be read or
    // isn't an SND at all, with the reason in `error`.
    bool load(const QString &path, bool keepPath, QString *error = nullptr);
    // The same from the bytes of a file called `name` (for messages); the path stays.
    bool fromBytes(const QByteArray &bytes, const QString &name, QString *error = nullptr);
    // Writes through a temporary file renamed into place: a failure leaves the
    // old file as it was. Only a real save (not `asCopy`) clears `modified` and
    // takes the path; the sounds and the undo stack are never touched.
    bool save(const QString &path, bool asCopy, QString *error = nullptr);
    bool saveCurrent(QString *error = nullptr) { return save(m_path, false, error); }
    // The SND as save() writes it.
    QByteArray toBytes();
    void clear();

    // SndMaker script (suffix "def") or the program's own export (any other
    // suffix, "[SoundDef]" sections); the WAV files go beside it.
    bool exportDef(const QString &path, QString *error = nullptr);
    // Reads either form; sounds are appended under one undo macro. Files that
    // can't be read are reported through `problems` and skipped.
    bool importDef(const QString &path, QString *error = nullptr, QStringList *problems = nullptr);

    // --- undo -----------------------------------------------------------------
    void beginMacro(const QString &text) { m_undo.beginMacro(text); }
    void endMacro() { m_undo.endMacro(); }
    void undo() { m_undo.undo(); }
    void redo() { m_undo.redo(); }
    bool canUndo() const { return m_undo.canUndo(); }
    bool canRedo() const { return m_undo.canRedo(); }
    QUndoStack *undoStack() { return &m_undo; }

    // --- wiring ---------------------------------------------------------------
    void setMessages(QMessages *messages) { m_messages = messages; }
    // The program's cache of samples kept for undo; without one the store keeps its own.
    void setUndoCache(QSpriteCache *cache) { m_undoCache = cache; }
    QSpriteCache *undoCache();
    QSpriteCache &cache() { return m_cache; }

    // The header words kept from the file read, written back by a save so that
    // an unedited file stays byte for byte what it was.
    QByteArray versionBytes() const { return m_version; }
    QByteArray comment() const { return m_comment; }

    // Used by the undo commands and the reader: raw row changes.
    bool isRecording() const { return m_recording; }
    void setRecording(bool on) { m_recording = on; }
    void insertRow(int pos, const SoundRecord &info, const QByteArray &bytes);
    void removeRow(int index);
    void swapInfo(int index, quint16 *group, quint16 *number);
    void swapSample(int index, quint32 *undoId);
    void moveRow(int from, int to);
    void touch();

signals:
    void changed();
    void progress(uint position, uint total, bool &goOn);

private:
    bool validIndex(int index) const { return index >= 0 && index < m_records.size(); }
    void push(QUndoCommand *command);
    void fillInfo(SoundRecord &record, const QByteArray &bytes) const;
    void warn(const QString &file, int line, const QString &text);

    int m_cacheType;
    int m_cacheCompression;
    bool m_recording = true;
    QList<SoundRecord> m_records;
    QSpriteCache m_cache;
    QString m_path;
    QUndoStack m_undo;
    bool m_modified = false;
    QByteArray m_version;
    QByteArray m_comment;
    QMessages *m_messages = nullptr;
    QSpriteCache *m_undoCache = nullptr;
    std::unique_ptr<QSpriteCache> m_ownUndoCache;
};
