#include "soundscommand.h"

#include "atomicwrite.h"
#include "commandstart.h"
#include "console.h"
#include "deffile.h"
#include "base/qmessages.h"
#include "project/qproject.h"
#include "sounds/qsounds.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace SoundsCommand {

ExitCode run(const QStringList &words)
{
    return runSubcommand(words, Usage::Topic::Sounds, QStringLiteral("sounds"),
                         {{"info", info}, {"export", exportSounds}, {"pack", pack}});
}

namespace {

bool isDefinitions(const QString &path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("def"), Qt::CaseInsensitive) == 0;
}

bool isSnd(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(12) == QByteArray("ElecbyteSnd", 12);
}

bool existingFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        Console::fail(QStringLiteral("'%1': no such file").arg(QDir::toNativeSeparators(path)));
        return false;
    }
    if (info.isDir()) {
        Console::fail(QStringLiteral("'%1' is a folder, not a file").arg(QDir::toNativeSeparators(path)));
        return false;
    }
    return true;
}

// Reads an SND into `store`, reporting a refusal; the messages keep the damage.
bool readSnd(const QString &path, QSounds *store)
{
    if (!existingFile(path))
        return false;
    QString error;
    if (!store->load(path, false, &error)) {
        Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(path), error));
        return false;
    }
    return true;
}

QString formatName(const QWavInfo &info)
{
    switch (info.kind) {
    case QWavInfo::Empty: return QStringLiteral("empty");
    case QWavInfo::Pcm: return QStringLiteral("pcm");
    case QWavInfo::OtherWav: return QStringLiteral("wav-%1").arg(info.formatTag);
    case QWavInfo::NotWav: return QStringLiteral("other");
    }
    return QString();
}

// The DEF of a character stands for the SND it names; a DEF that names none
// counts no sounds.
bool resolve(const QString &path, QString *snd)
{
    *snd = path;
    if (!isDefinitions(path) || isSnd(path))
        return existingFile(path);
    if (!existingFile(path))
        return false;
    QProject project;
    if (!DefFile::load(project, path))
        return false;
    const QProjectDefFiles files = project.scanDef(path);
    snd->clear();
    return files.sound.isEmpty() || DefFile::named(path, files, files.sound, "sound", snd);
}

} // namespace

ExitCode info(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SoundsInfo, {{QStringLiteral("json"), false}},
                                      {QStringLiteral("FILE")});
    if (start.finished)
        return *start.finished;
    QString path;
    if (!resolve(start.args.positional().at(0), &path))
        return ExitCode::Failure;
    QMessages messages;
    QSounds store;
    store.setMessages(&messages);
    if (!path.isEmpty() && !readSnd(path, &store))
        return ExitCode::Failure;

    if (start.args.has(QStringLiteral("json"))) {
        QJsonArray list;
        for (int i = 0; i < store.count(); ++i) {
            const SoundRecord r = store.record(i);
            const QByteArray bytes = store.sample(i);
            const QWavInfo w = QWavInfo::read(bytes);
            list.append(QJsonObject{{QStringLiteral("index"), i},
                                    {QStringLiteral("group"), r.group},
                                    {QStringLiteral("number"), r.number},
                                    {QStringLiteral("length"), qint64(bytes.size())},
                                    {QStringLiteral("format"), formatName(w)},
                                    {QStringLiteral("channels"), w.channels},
                                    {QStringLiteral("rate"), qint64(w.sampleRate)},
                                    {QStringLiteral("bits"), w.bits},
                                    {QStringLiteral("duration"), qRound(double(w.duration) * 1000) / 1000.0}});
        }
        QJsonArray warnings;
        for (const QMessages::Message &m : messages.messages())
            warnings.append(Console::issueLine(m.text, QFileInfo(path).fileName()));
        Console::json(QJsonDocument(QJsonObject{{QStringLiteral("file"), QDir::toNativeSeparators(path)},
                                                {QStringLiteral("count"), store.count()},
                                                {QStringLiteral("sounds"), list},
                                                {QStringLiteral("warnings"), warnings}}));
    } else {
        QString s = QStringLiteral("File: %1\nSounds: %2\n")
                        .arg(path.isEmpty() ? QStringLiteral("-") : QDir::toNativeSeparators(path))
                        .arg(store.count());
        if (store.count() > 0)
            s += QStringLiteral("\n  %1 %2 %3 %4 %5 %6 %7 %8\n")
                     .arg(QStringLiteral("index"), 5)
                     .arg(QStringLiteral("group"), 5)
                     .arg(QStringLiteral("number"), 6)
                     .arg(QStringLiteral("length"), 8)
                     .arg(QStringLiteral("chan"), 4)
                     .arg(QStringLiteral("rate"), 6)
                     .arg(QStringLiteral("bits"), 4)
                     .arg(QStringLiteral("seconds"), 8);
        for (int i = 0; i < store.count(); ++i) {
            const SoundRecord r = store.record(i);
            const QByteArray bytes = store.sample(i);
            const QWavInfo w = QWavInfo::read(bytes);
            const bool pcm = w.kind == QWavInfo::Pcm;
            s += QStringLiteral("  %1 %2 %3 %4 %5 %6 %7 %8%9\n")
                     .arg(i, 5)
                     .arg(r.group, 5)
                     .arg(r.number, 6)
                     .arg(bytes.size(), 8)
                     .arg(pcm ? QString::number(w.channels) : QStringLiteral("-"), 4)
                     .arg(pcm ? QString::number(w.sampleRate) : QStringLiteral("-"), 6)
                     .arg(pcm ? QString::number(w.bits) : QStringLiteral("-"), 4)
                     .arg(pcm ? QString::number(double(w.duration), 'f', 3) : QStringLiteral("-"), 8)
                     .arg(pcm ? QString() : QStringLiteral("  (%1)").arg(formatName(w)));
        }
        Console::out(s);
    }
    return Console::printIssues(messages, QFileInfo(path).fileName()) ? ExitCode::Issues : ExitCode::Ok;
}

ExitCode exportSounds(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SoundsExport, {},
                                      {QStringLiteral("FILE.snd"), QStringLiteral("OUTDIR")});
    if (start.finished)
        return *start.finished;
    const QString path = start.args.positional().at(0);
    const QString out = start.args.positional().at(1);
    QMessages messages;
    QSounds store;
    store.setMessages(&messages);
    if (!readSnd(path, &store))
        return ExitCode::Failure;
    if (!QDir().mkpath(out)) {
        Console::fail(QStringLiteral("cannot make the folder '%1'").arg(QDir::toNativeSeparators(out)));
        return ExitCode::Failure;
    }
    const QString def = QDir(out).filePath(QFileInfo(path).completeBaseName() + QStringLiteral(".def"));
    QString error;
    if (!store.exportDef(def, &error)) {
        Console::fail(QStringLiteral("cannot write '%1'").arg(error));
        return ExitCode::Failure;
    }
    Console::line(QDir::toNativeSeparators(def));
    return Console::printIssues(messages, QFileInfo(path).fileName()) ? ExitCode::Issues : ExitCode::Ok;
}

ExitCode pack(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SoundsPack, {},
                                      {QStringLiteral("IN.def|INDIR"), QStringLiteral("OUT.snd")});
    if (start.finished)
        return *start.finished;
    const QString in = start.args.positional().at(0);
    const QString out = start.args.positional().at(1);
    QSounds store;
    QStringList problems;
    if (QFileInfo(in).isDir()) {
        // A folder of "group-number.wav" files, in the order of their numbers.
        static const QRegularExpression name(QStringLiteral("^(\\d{1,5})-(\\d{1,5})\\.wav$"),
                                             QRegularExpression::CaseInsensitiveOption);
        struct Wav
        {
            int group, number;
            QString file;
        };
        QList<Wav> wavs;
        for (const QFileInfo &f : QDir(in).entryInfoList(QDir::Files, QDir::Name)) {
            const QRegularExpressionMatch m = name.match(f.fileName());
            if (m.hasMatch() && m.captured(1).toInt() < 65536 && m.captured(2).toInt() < 65536)
                wavs.append({m.captured(1).toInt(), m.captured(2).toInt(), f.filePath()});
        }
        std::stable_sort(wavs.begin(), wavs.end(), [](const Wav &a, const Wav &b) {
            return a.group != b.group ? a.group < b.group : a.number < b.number;
        });
        for (const Wav &w : std::as_const(wavs)) {
            QFile file(w.file);
            if (!file.open(QIODevice::ReadOnly)) {
                problems << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(w.file), file.errorString());
                continue;
            }
            store.add(w.group, w.number, file.readAll());
        }
        if (wavs.isEmpty()) {
            Console::fail(QStringLiteral("'%1' holds no file named GROUP-NUMBER.wav").arg(QDir::toNativeSeparators(in)));
            return ExitCode::Failure;
        }
    } else {
        if (!existingFile(in))
            return ExitCode::Failure;
        QString error;
        if (!store.importDef(in, &error, &problems)) {
            Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(in), error));
            return ExitCode::Failure;
        }
    }
    if (store.isEmpty()) {
        Console::fail(QStringLiteral("'%1' names no sound that can be read: nothing written").arg(QDir::toNativeSeparators(in)));
        for (const QString &p : std::as_const(problems))
            Console::err(p + QLatin1Char('\n'));
        return ExitCode::Failure;
    }
    QString error;
    if (!AtomicWrite::writeBytes(out, store.toBytes(), &error)) {
        Console::fail(error);
        return ExitCode::Failure;
    }
    for (const QString &p : std::as_const(problems))
        Console::err(p + QLatin1Char('\n'));
    Console::line(QStringLiteral("%1: %2 sounds").arg(QDir::toNativeSeparators(out)).arg(store.count()));
    return problems.isEmpty() ? ExitCode::Ok : ExitCode::Issues;
}

} // namespace SoundsCommand
