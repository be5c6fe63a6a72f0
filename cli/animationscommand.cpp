#include "animationscommand.h"

#include "atomicwrite.h"
#include "commandstart.h"
#include "console.h"
#include "deffile.h"
#include "animations/airformat.h"
#include "animations/qanimations.h"
#include "base/qmessages.h"
#include "code/qtextencoding.h"
#include "project/qanimationsfile.h"
#include "project/qdefanimations.h"
#include "project/qproject.h"
#include "progressmeter.h"
#include "render/qanimationframe.h"
#include "render/qgifwriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QTextCodec>

namespace AnimationsCommand {

ExitCode run(const QStringList &words)
{
    return runSubcommand(words, Usage::Topic::Animations, QStringLiteral("animations"),
                         {{"info", info}, {"convert", convert}, {"gif", gif}, {"render", render}});
}

namespace {

bool isDefinitions(const QString &path)
{
    return QFileInfo(path).suffix().compare(QLatin1String("def"), Qt::CaseInsensitive) == 0;
}

// What a file given to the commands holds: the actions, read the way the
// program reads them, with the messages of the read.
struct Source
{
    QMessages messages;
    QAnimations store;
    QString file;        // the file the actions were read from (the AIR of a character's DEF)
    QString defText;     // a DEF that holds its actions itself, as read
    QByteArray defCodec;
    bool defHadMark = false;

    Source() { store.setMessages(&messages); }
};

// Reads FILE.air, or FILE.def: a DEF that names an animation file ([Files]
// anim, a character) stands for that file, any other DEF (stage, storyboard,
// screen pack) holds its actions itself. `followDef` false refuses the first.
bool read(const QString &path, Source *source, bool followDef)
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
    source->file = path;
    if (isDefinitions(path)) {
        QProject project;
        if (!DefFile::load(project, path))
            return false;
        const QProjectDefFiles files = project.scanDef(path);
        if (!files.animation.isEmpty()) {
            if (!followDef) {
                Console::fail(QStringLiteral("'%1' keeps its animations in '%2': convert that file")
                                  .arg(QDir::toNativeSeparators(path),
                                       QDir::toNativeSeparators(QProject::resolveFile(files.folder, files.animation))));
                return false;
            }
            QString air;
            if (!DefFile::named(path, files, files.animation, "animation", &air))
                return false;
            source->file = air;
        } else {
            source->defText = project.definitions()->text();
            source->defCodec = project.definitions()->encoding();
            QFile file(path);
            const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(3) : QByteArray();
            source->defHadMark = head.startsWith("\xEF\xBB\xBF") || head.startsWith("\xFF\xFE")
                                 || head.startsWith("\xFE\xFF");
            source->store.loadText(source->defText, info.fileName(), true);
            return true;
        }
    }
    QString error;
    if (!QAnimationsFile::load(source->store, source->file, 0, false, &error)) {
        Console::fail(QStringLiteral("'%1': %2").arg(QDir::toNativeSeparators(source->file), error));
        return false;
    }
    return true;
}

QString jsonString(const QString &text)
{
    const QByteArray doc = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(doc.mid(1, doc.size() - 2));
}

QString jsonFloat(float value)
{
    return value == 0 ? QStringLiteral("null") : AirFormat::number(value);
}

QString jsonBoxes(const QList<QRect> &boxes)
{
    QStringList out;
    for (const QRect &r : boxes)
        out << QStringLiteral("[%1, %2, %3, %4]").arg(r.left()).arg(r.top()).arg(r.right()).arg(r.bottom());
    return QLatin1Char('[') + out.join(QStringLiteral(", ")) + QLatin1Char(']');
}

int loopstart(const AnimAction &a)
{
    // Each Loopstart moves the loop's start: the last one holds.
    int at = -1;
    for (qsizetype i = 0; i < a.frames.size(); ++i) {
        if (a.frames.at(i)->loopstart)
            at = int(i);
    }
    return at;
}

struct Warning
{
    int line = 0;
    QString text;
};

// The messages of the read, as line and text: parser messages start with
// "name(line): ".
QList<Warning> warnings(const QMessages &messages, const QString &name)
{
    QList<Warning> out;
    const QString prefix = name + QLatin1Char('(');
    for (const QMessages::Message &m : messages.messages()) {
        if (m.kind == QMessages::Information)
            continue;
        Warning w;
        w.text = m.text;
        if (m.text.startsWith(prefix)) {
            const qsizetype close = m.text.indexOf(QLatin1String("): "), prefix.size());
            bool ok = false;
            const int line = close > 0 ? m.text.mid(prefix.size(), close - prefix.size()).toInt(&ok) : 0;
            if (ok) {
                w.line = line;
                w.text = m.text.mid(close + 3);
            }
        }
        out.append(w);
    }
    return out;
}

// The document is written by hand so that its keys come in the documented order.
QString json(const QAnimations &store, const QList<Warning> &issues)
{
    QString s = QStringLiteral("{\n  \"actions\": [");
    for (int i = 0; i < store.count(); ++i) {
        const AnimAction &a = *store.action(i);
        const int loop = loopstart(a);
        s += i ? QStringLiteral(",\n    ") : QStringLiteral("\n    ");
        s += QStringLiteral("{\"number\": %1, \"name\": %2, \"loopstart\": %3, \"frames\": [")
                 .arg(QString::number(a.number), jsonString(a.name),
                      loop < 0 ? QStringLiteral("null") : QString::number(loop));
        for (qsizetype j = 0; j < a.frames.size(); ++j) {
            const AnimFrame &f = *a.frames.at(j);
            s += j ? QStringLiteral(",\n      ") : QStringLiteral("\n      ");
            s += QStringLiteral("{\"group\": %1, \"number\": %2, \"x\": %3, \"y\": %4, \"time\": %5, ")
                     .arg(f.group)
                     .arg(f.number)
                     .arg(f.x)
                     .arg(f.y)
                     .arg(f.time);
            s += QStringLiteral("\"flip\": %1, \"trans\": %2, \"xscale\": %3, \"yscale\": %4, \"angle\": %5, ")
                     .arg(jsonString(AirFormat::flipText(f)), jsonString(AirFormat::transText(f)), jsonFloat(f.scaleX),
                          jsonFloat(f.scaleY), jsonFloat(f.angle));
            s += QStringLiteral("\"clsn1\": %1, \"clsn2\": %2}")
                     .arg(jsonBoxes(store.clsnInForce(i, int(j), 0)), jsonBoxes(store.clsnInForce(i, int(j), 1)));
        }
        s += a.frames.isEmpty() ? QStringLiteral("]}") : QStringLiteral("\n    ]}");
    }
    s += store.count() ? QStringLiteral("\n  ],\n  \"warnings\": [") : QStringLiteral("],\n  \"warnings\": [");
    for (qsizetype i = 0; i < issues.size(); ++i) {
        s += i ? QStringLiteral(",\n    ") : QStringLiteral("\n    ");
        s += QStringLiteral("{\"line\": %1, \"text\": %2}").arg(QString::number(issues.at(i).line),
                                                               jsonString(issues.at(i).text));
    }
    s += issues.isEmpty() ? QStringLiteral("]\n}\n") : QStringLiteral("\n  ]\n}\n");
    return s;
}

QString text(const QAnimations &store, const QString &file)
{
    qsizetype frames = 0;
    for (const AnimAction *a : store.actions())
        frames += a->frames.size();
    QString s = QStringLiteral("File: %1\nActions: %2\nFrames: %3\n")
                    .arg(QDir::toNativeSeparators(file))
                    .arg(store.count())
                    .arg(frames);
    if (store.count() == 0)
        return s;
    s += QStringLiteral("\n  %1 %2 %3 %4  %5\n")
             .arg(QStringLiteral("action"), 8)
             .arg(QStringLiteral("frames"), 7)
             .arg(QStringLiteral("ticks"), 7)
             .arg(QStringLiteral("loop"), 5)
             .arg(QStringLiteral("name"));
    for (const AnimAction *a : store.actions()) {
        // The loop time; -1 when an element stays forever.
        qint64 ticks = 0;
        for (const AnimFrame *f : a->frames)
            ticks = (ticks < 0 || f->time < 0) ? -1 : ticks + f->time;
        const int loop = loopstart(*a);
        s += QStringLiteral("  %1 %2 %3 %4  %5\n")
                 .arg(a->number, 8)
                 .arg(a->frames.size(), 7)
                 .arg(ticks, 7)
                 .arg(loop < 0 ? QStringLiteral("-") : QString::number(loop), 5)
                 .arg(a->name);
    }
    return s;
}

} // namespace

ExitCode info(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::AnimationsInfo, {{QStringLiteral("json"), false}},
                                      {QStringLiteral("FILE.air|FILE.def")});
    if (start.finished)
        return *start.finished;
    Source source;
    if (!read(start.args.positional().at(0), &source, true))
        return ExitCode::Failure;
    const QString name = QFileInfo(source.file).fileName();
    const int issues = Console::printIssues(source.messages, name);
    if (start.args.has(QStringLiteral("json")))
        Console::out(json(source.store, warnings(source.messages, name)));
    else
        Console::out(text(source.store, source.file));
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

ExitCode convert(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::AnimationsConvert, {},
                                      {QStringLiteral("IN.air"), QStringLiteral("OUT.air")});
    if (start.finished)
        return *start.finished;
    const QString input = start.args.positional().at(0);
    const QString output = start.args.positional().at(1);
    const QFileInfo target(output);
    if (target.isDir()) {
        Console::fail(QStringLiteral("'%1' is a folder, not a file name").arg(QDir::toNativeSeparators(output)));
        return ExitCode::Failure;
    }
    if (!target.absoluteDir().exists()) {
        Console::fail(QStringLiteral("cannot write '%1': its folder does not exist").arg(QDir::toNativeSeparators(output)));
        return ExitCode::Failure;
    }
    Source source;
    if (!read(input, &source, false))
        return ExitCode::Failure;
    const int issues = Console::printIssues(source.messages, QFileInfo(source.file).fileName());

    QString error;
    if (!source.defText.isNull() && isDefinitions(output)) {
        // A DEF stays a DEF: its actions in the program's layout, the rest as it
        // was, in its encoding, with a byte-order mark only if it had one.
        QTextCodec *codec = QTextCodec::codecForName(source.defCodec);
        QString text = QDefAnimations::merge(source.defText, source.store.actions(), true);
        text.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
        QByteArray bytes;
        if (source.defHadMark || !codec) {
            bytes = QTextEncoding::encode(text, codec);
        } else {
            QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
            bytes = codec->fromUnicode(text.constData(), int(text.size()), &state);
        }
        if (!AtomicWrite::writeBytes(output, bytes, &error)) {
            Console::fail(error);
            return ExitCode::Failure;
        }
    } else if (!QAnimationsFile::save(source.store, output, true, true, &error)) {
        // UTF-8 whatever the input's code page: names are comments, which the
        // engine never reads, and a second convert then gives the same bytes.
        Console::fail(QStringLiteral("cannot write '%1': %2")
                          .arg(QDir::toNativeSeparators(output), error));
        return ExitCode::Failure;
    }
    return issues ? ExitCode::Issues : ExitCode::Ok;
}

namespace {

// The project of FILE.def opened as the program opens it, and the row of
// action number ACTION in its animations.
struct Opened
{
    QProject project;
    int row = -1;
    int issues = 0;
};

bool openAction(Usage::Topic topic, const QString &input, const QString &actionText, Opened *opened,
                ExitCode *failure)
{
    bool ok = false;
    const int number = actionText.toInt(&ok);
    if (!ok) {
        *failure = usageError(topic, QStringLiteral("'%1' is not an action number").arg(actionText));
        return false;
    }
    const QFileInfo info(input);
    if (!info.isFile() || !isDefinitions(input)) {
        Console::fail(info.exists() && !info.isDir()
                          ? QStringLiteral("'%1': not a definition file (DEF)").arg(QDir::toNativeSeparators(input))
                          : QStringLiteral("'%1': no such file").arg(QDir::toNativeSeparators(input)));
        *failure = ExitCode::Failure;
        return false;
    }
    ProgressMeter meter(QStringLiteral("Opening %1").arg(info.fileName()));
    QObject::connect(&opened->project, &QProject::progress, &meter, &ProgressMeter::update);
    const bool loaded = opened->project.fromFile(input, 0, false, false);
    meter.finish();
    opened->issues = Console::printIssues(*opened->project.messages(), info.fileName());
    if (!loaded) {
        Console::fail(QStringLiteral("'%1': cannot be opened as a project").arg(QDir::toNativeSeparators(input)));
        *failure = ExitCode::Failure;
        return false;
    }
    const QAnimations &store = *opened->project.animations();
    for (int i = 0; i < store.count(); ++i) {
        if (store.action(i)->number == number) {
            opened->row = i;
            return true;
        }
    }
    Console::fail(QStringLiteral("'%1': no action %2").arg(QDir::toNativeSeparators(input)).arg(number));
    *failure = ExitCode::Failure;
    return false;
}

bool checkOutput(const QString &output)
{
    const QFileInfo target(output);
    if (target.isDir()) {
        Console::fail(QStringLiteral("'%1' is a folder, not a file name").arg(QDir::toNativeSeparators(output)));
        return false;
    }
    if (!target.absoluteDir().exists()) {
        Console::fail(QStringLiteral("cannot write '%1': its folder does not exist").arg(QDir::toNativeSeparators(output)));
        return false;
    }
    return true;
}

} // namespace

ExitCode gif(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::AnimationsGif, {},
                                      {QStringLiteral("FILE.def"), QStringLiteral("ACTION"), QStringLiteral("OUT.gif")});
    if (start.finished)
        return *start.finished;
    const QString output = start.args.positional().at(2);
    if (!checkOutput(output))
        return ExitCode::Failure;
    Opened opened;
    ExitCode failure = ExitCode::Failure;
    if (!openAction(Usage::Topic::AnimationsGif, start.args.positional().at(0), start.args.positional().at(1), &opened,
                    &failure))
        return failure;
    const QAnimations &store = *opened.project.animations();
    if (store.frameCount(opened.row) == 0) {
        Console::fail(QStringLiteral("You can't save an empty animation as GIF."));
        return ExitCode::Failure;
    }
    GifWriter writer;
    QString why;
    if (!AnimationGif::build(store, opened.project.sprites(), opened.row, &writer, &why)) {
        Console::fail(QStringLiteral("action %1: %2").arg(start.args.positional().at(1), why));
        return ExitCode::Failure;
    }
    QString error;
    if (!writer.save(output, &error)) {
        Console::fail(QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(output), error));
        return ExitCode::Failure;
    }
    return opened.issues ? ExitCode::Issues : ExitCode::Ok;
}

ExitCode render(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::AnimationsRender,
                                      {{QStringLiteral("frame"), true}, {QStringLiteral("boxes"), false}},
                                      {QStringLiteral("FILE.def"), QStringLiteral("ACTION"), QStringLiteral("OUT.png")});
    if (start.finished)
        return *start.finished;
    int frame = 0;
    if (start.args.has(QStringLiteral("frame"))) {
        bool ok = false;
        frame = start.args.value(QStringLiteral("frame")).toInt(&ok);
        if (!ok || frame < 0)
            return usageError(Usage::Topic::AnimationsRender,
                              QStringLiteral("'%1' is not a frame: write --frame K with K from 0")
                                  .arg(start.args.value(QStringLiteral("frame"))));
    }
    const QString output = start.args.positional().at(2);
    if (!checkOutput(output))
        return ExitCode::Failure;
    Opened opened;
    ExitCode failure = ExitCode::Failure;
    if (!openAction(Usage::Topic::AnimationsRender, start.args.positional().at(0), start.args.positional().at(1),
                    &opened, &failure))
        return failure;
    QAnimations &store = *opened.project.animations();
    const int frames = store.frameCount(opened.row);
    if (frame >= frames) {
        Console::fail(QStringLiteral("action %1 has %2 frame(s): there is no frame %3")
                          .arg(start.args.positional().at(1)).arg(frames).arg(frame));
        return ExitCode::Failure;
    }
    const QImage picture = QAnimationFrame::picture(store, opened.project.sprites(), opened.row, frame,
                                                    start.args.has(QStringLiteral("boxes")));
    QString error;
    if (!AtomicWrite::writePng(output, picture, &error)) {
        Console::fail(QStringLiteral("cannot write '%1': %2").arg(QDir::toNativeSeparators(output), error));
        return ExitCode::Failure;
    }
    return opened.issues ? ExitCode::Issues : ExitCode::Ok;
}

} // namespace AnimationsCommand
