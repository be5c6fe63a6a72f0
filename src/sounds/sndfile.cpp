// The SND container and the definition texts of the sound store.
//
// An SND is a 512-byte header ("ElecbyteSnd\0", four version bytes, the sound
// count, the offset of the first sub-header, a comment) and a chain of sounds,
// each a 16-byte sub-header (next offset, length, group, number) right before
// its sample. Files in the wild disagree with that picture in many small ways,
// so the reader trusts nothing it can't check against the file's own size.
#include "base/qmessages.h"
#include "qsounds.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStringConverter>
#include <QTextStream>
#include <QtEndian>

namespace {

constexpr qsizetype HeaderSize = 512;
constexpr qsizetype SubHeaderSize = 16;
constexpr qsizetype CommentSize = 488;
const char Signature[12] = {'E', 'l', 'e', 'c', 'b', 'y', 't', 'e', 'S', 'n', 'd', '\0'};

quint32 word(const QByteArray &b, qsizetype at)
{
    return at >= 0 && at + 4 <= b.size() ? qFromLittleEndian<quint32>(b.constData() + at) : 0;
}

void putWord(QByteArray &b, quint32 value)
{
    char w[4];
    qToLittleEndian(value, w);
    b.append(w, 4);
}

QByteArray defaultComment()
{
    return QByteArrayLiteral("Made in Orvane\nPowered by Brawlforge 3\nhttps://brawlforge.org/\n");
}

} // namespace

bool QSounds::load(const QString &path, bool keepPath, QString *error)
{
    auto failWith = [error](const QString &text) {
        if (error)
            *error = text;
        return false;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return failWith(file.errorString());
    // The whole file at once: everything after is bounded by its size, never
    // by a count or length the file claims.
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return failWith(file.errorString());
    if (!fromBytes(bytes, QFileInfo(path).fileName(), error))
        return false;
    if (!keepPath)
        m_path = path;
    return true;
}

bool QSounds::fromBytes(const QByteArray &bytes, const QString &name, QString *error)
{
    auto failWith = [error](const QString &text) {
        if (error)
            *error = text;
        return false;
    };
    if (bytes.size() < qsizetype(sizeof Signature) || !bytes.startsWith(QByteArrayView(Signature, sizeof Signature)))
        return failWith(tr("not a sound file (SND): it doesn't begin with the SND signature"));

    const quint32 claimed = word(bytes, 16);
    const quint32 firstOffset = word(bytes, 20);
    // At most one sound per sub-header the file has room for.
    const qsizetype room = std::max<qsizetype>(0, (bytes.size() - HeaderSize) / SubHeaderSize);
    const uint total = uint(std::min<qsizetype>(claimed, room));

    beginResetModel();
    m_records.clear();
    m_cache.clear();
    endResetModel();
    m_undo.clear();
    m_recording = false;
    m_version = bytes.mid(12, 4);
    m_comment = bytes.mid(24, CommentSize);
    if (bytes.size() < HeaderSize)
        warn(name, 0, tr("The header is cut short: %1 bytes of 512").arg(bytes.size()));

    QList<SoundRecord> records;
    bool goOn = true;
    emit progress(0, total, goOn);
    if (!goOn) {
        m_recording = true;
        m_modified = false;
        emit changed();
        return true;
    }

    // The chain starts where the header says when that is a place in the
    // file, else right after the header, where every known tool puts it.
    qsizetype pos = HeaderSize;
    if (firstOffset != 0 && firstOffset != HeaderSize) {
        if (firstOffset >= 24 && qsizetype(firstOffset) + SubHeaderSize <= bytes.size())
            pos = firstOffset;
        else
            warn(name, 0, tr("The first sound's offset %1 lies outside the file; reading from 512").arg(firstOffset));
    }
    quint32 i = 0;
    for (; i < claimed && pos + SubHeaderSize <= bytes.size(); ++i) {
        const quint32 next = word(bytes, pos);
        quint32 length = word(bytes, pos + 4);
        SoundRecord r;
        r.group = quint16(word(bytes, pos + 8));
        r.number = quint16(word(bytes, pos + 12));
        const qsizetype start = pos + SubHeaderSize;
        const qsizetype available = bytes.size() - start;
        bool followNext = false;
        if (next != 0) {
            if (qsizetype(next) >= start && qsizetype(next) <= bytes.size()) {
                // The next offset is what the engine follows: it wins over the length.
                if (length != 0)
                    length = quint32(qsizetype(next) - start);
                followNext = true;
            } else {
                warn(name, int(i) + 1, tr("Sound %1,%2: the next offset %3 points %4; the stored length is used")
                                            .arg(r.group)
                                            .arg(r.number)
                                            .arg(next)
                                            .arg(qsizetype(next) < start ? tr("backwards") : tr("past the end of the file")));
            }
        }
        if (qsizetype(length) > available) {
            warn(name, int(i) + 1, tr("Sound %1,%2: %3 bytes claimed, %4 left in the file; the sample is cut short")
                                        .arg(r.group)
                                        .arg(r.number)
                                        .arg(length)
                                        .arg(available));
            length = quint32(available);
        }
        if (length != 0) {
            const QByteArray sample = bytes.mid(start, length);
            r.cacheId = m_cache.add(sample, true);
            fillInfo(r, sample);
        }
        records.append(r);
        pos = followNext ? qsizetype(next) : start + qsizetype(length);

        goOn = true;
        emit progress(std::min(i + 1, total), total, goOn);
        if (!goOn) {
            m_cache.clear();
            m_recording = true;
            m_modified = false;
            emit changed();
            return failWith(QString());
        }
    }
    if (i < claimed)
        warn(name, 0, tr("The header claims %1 sounds, the file holds %2").arg(claimed).arg(i));

    if (!records.isEmpty()) {
        beginInsertRows(QModelIndex(), 0, int(records.size()) - 1);
        m_records = records;
        endInsertRows();
    }
    m_modified = false;
    m_recording = true;
    emit changed();
    return true;
}

QByteArray QSounds::toBytes()
{
    QByteArray out;
    out.reserve(HeaderSize + count() * SubHeaderSize + qsizetype(m_cache.originalTotal()));
    out.append(Signature, sizeof Signature);
    out.append(m_version.size() == 4 ? m_version : QByteArray("\x01\x00\x01\x00", 4));
    putWord(out, quint32(count()));
    putWord(out, quint32(HeaderSize));
    QByteArray comment = m_version.size() == 4 ? m_comment : defaultComment();
    comment = comment.left(CommentSize);
    comment.append(QByteArray(CommentSize - comment.size(), '\0'));
    out.append(comment);
    for (int i = 0; i < count(); ++i) {
        const QByteArray bytes = sample(i);
        const SoundRecord &r = m_records.at(i);
        // Every sound, the last one too, names where the next would begin.
        putWord(out, quint32(out.size() + SubHeaderSize + bytes.size()));
        putWord(out, quint32(bytes.size()));
        putWord(out, r.group);
        putWord(out, r.number);
        out.append(bytes);
        // A save runs to its end: the flag is for the window's sake only.
        bool goOn = true;
        emit progress(uint(i + 1), uint(count()), goOn);
    }
    return out;
}

bool QSounds::save(const QString &path, bool asCopy, QString *error)
{
    auto failWith = [error](const QString &text) {
        if (error)
            *error = text;
        return false;
    };
    if (path.isEmpty())
        return failWith(tr("no file name"));
    const QByteArray bytes = toBytes();
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return failWith(file.errorString());
    if (file.write(bytes) != bytes.size()) {
        const QString why = file.errorString();
        file.cancelWriting();
        return failWith(why);
    }
    if (!file.commit())
        return failWith(file.errorString());
    if (!asCopy) {
        m_path = path;
        if (m_version.size() != 4) {
            m_version = bytes.mid(12, 4);
            m_comment = bytes.mid(24, CommentSize);
        }
        m_modified = false;
        emit changed();
    }
    return true;
}

// ---------------------------------------------------------------- definition texts

bool QSounds::exportDef(const QString &path, QString *error)
{
    auto failWith = [error](const QString &text) {
        if (error)
            *error = text;
        return false;
    };
    const QFileInfo info(path);
    const bool sndMaker = info.suffix() == QLatin1String("def");
    const QDir folder = info.absoluteDir();
    QString text;
    if (sndMaker)
        text = info.completeBaseName() + QLatin1Char('\n');
    bool goOn = true;
    // Two sounds of one group and number each keep their own file.
    QHash<QString, int> used;
    for (int i = 0; i < count(); ++i) {
        const SoundRecord &r = m_records.at(i);
        if (r.cacheId) {
            const QString stem = QStringLiteral("%1-%2").arg(r.group).arg(r.number);
            const int seen = ++used[stem];
            const QString wav = seen == 1 ? stem + QStringLiteral(".wav") : QStringLiteral("%1_%2.wav").arg(stem).arg(seen);
            QSaveFile out(folder.filePath(wav));
            const QByteArray bytes = sample(i);
            if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
                return failWith(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(folder.filePath(wav)),
                                                             out.errorString()));
            if (sndMaker)
                text += QStringLiteral("%1\n%2\n%3\n").arg(wav).arg(r.group).arg(r.number);
            else
                text += QStringLiteral("\n[SoundDef]\ngroup = %1\nsample = %2\nfile = %3\n")
                            .arg(r.group)
                            .arg(r.number)
                            .arg(wav);
        }
        emit progress(uint(i + 1), uint(count()), goOn);
    }
    QStringEncoder encoder(sndMaker ? QStringConverter::Latin1 : QStringConverter::Utf8);
    const QByteArray bytes = encoder.encode(text);
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return failWith(out.errorString());
    return true;
}

bool QSounds::importDef(const QString &path, QString *error, QStringList *problems)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    const QByteArray raw = file.readAll();
    const QString dir = QFileInfo(path).absolutePath();
    QStringDecoder utf8(QStringConverter::Utf8);
    QString text = utf8.decode(raw);
    if (utf8.hasError())
        text = QString::fromLatin1(raw);
    const QStringList lines = text.split(QRegularExpression(QStringLiteral("\\r\\n|\\n|\\r")));

    struct Entry
    {
        int group = 0;
        int number = 0;
        QString file;
        int line = 0;
    };
    QList<Entry> entries;
    static const QRegularExpression sectionLine(QStringLiteral("^\\s*\\[\\s*([^\\]]*?)\\s*\\]"));
    const bool sections = text.contains(QRegularExpression(QStringLiteral("^\\s*\\[\\s*sounddef\\s*\\]"),
                                                           QRegularExpression::CaseInsensitiveOption
                                                               | QRegularExpression::MultilineOption));
    if (sections) {
        // The program's own form: [SoundDef] sections of key = value lines.
        bool inside = false;
        Entry current;
        auto close = [&] {
            if (inside && !current.file.isEmpty())
                entries.append(current);
            inside = false;
        };
        for (int n = 0; n < lines.size(); ++n) {
            QString line = lines.at(n);
            const qsizetype semi = line.indexOf(QLatin1Char(';'));
            if (semi >= 0)
                line.truncate(semi);
            const QRegularExpressionMatch m = sectionLine.match(line);
            if (m.hasMatch()) {
                close();
                inside = m.captured(1).compare(QLatin1String("SoundDef"), Qt::CaseInsensitive) == 0;
                current = Entry();
                current.line = n + 1;
                continue;
            }
            const qsizetype eq = line.indexOf(QLatin1Char('='));
            if (!inside || eq < 0)
                continue;
            const QString key = line.left(eq).trimmed().toLower();
            const QString value = line.mid(eq + 1).trimmed();
            if (key == QLatin1String("group"))
                current.group = value.toInt();
            else if (key == QLatin1String("number") || key == QLatin1String("sample"))
                current.number = value.toInt();
            else if (key == QLatin1String("file"))
                current.file = value;
        }
        close();
    } else {
        // The SndMaker script: the SND's name, then file, group and number,
        // one to a line, for each sound.
        QList<QPair<QString, int>> words;
        for (int n = 0; n < lines.size(); ++n) {
            const QString w = lines.at(n).trimmed();
            if (!w.isEmpty())
                words.append({w, n + 1});
        }
        for (qsizetype k = 1; k + 2 < words.size(); k += 3) {
            Entry e;
            e.file = words.at(k).first;
            e.group = words.at(k + 1).first.toInt();
            e.number = words.at(k + 2).first.toInt();
            e.line = words.at(k).second;
            entries.append(e);
        }
        if (words.size() > 1 && (words.size() - 1) % 3 != 0 && problems)
            problems->append(tr("%1: the last sound is incomplete and was left out").arg(QDir::toNativeSeparators(path)));
    }

    beginMacro(tr("import"));
    for (const Entry &e : std::as_const(entries)) {
        QString name = e.file;
        name.replace(QLatin1Char('\\'), QLatin1Char('/'));
        if (QFileInfo(name).isRelative())
            name = dir + QLatin1Char('/') + name;
        QFile wav(name);
        if (!wav.open(QIODevice::ReadOnly)) {
            if (problems)
                problems->append(QStringLiteral("%1(%2): %3: %4")
                                     .arg(QDir::toNativeSeparators(path))
                                     .arg(e.line)
                                     .arg(QDir::toNativeSeparators(name), wav.errorString()));
            continue;
        }
        add(e.group, e.number, wav.readAll());
    }
    endMacro();
    return true;
}
