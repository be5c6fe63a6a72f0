#include "spritecheck.h"

#include "commandstart.h"
#include "console.h"
#include "filekind.h"
#include "issuesjson.h"
#include "spritefile.h"
#include "sprites/qspritedecoder.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace SpriteCheck {

namespace {

struct Broken
{
    int index = 0;
    int group = 0;
    int number = 0;
    QString reason;
};

struct Report
{
    QString path;
    QString failure; // the file as a whole couldn't be used
    QString version;
    int sprites = 0;
    int linked = 0;
    int issues = 0; // errors and warnings of the load
    QList<Broken> broken;
    QJsonArray issuesJson;
};

// Why a sprite with stored bytes shows nothing whole.
QString reasonOf(const QSpriteItem &s)
{
    const qint64 bytes = qint64(s.width) * s.height * (s.imageFormat == QImage::Format_Indexed8 ? 1 : 4);
    if (s.width == 0 || s.height == 0)
        return QStringLiteral("its image can't be read");
    if (bytes > QSpriteDecoder::MaxSpriteBytes)
        return QStringLiteral("it claims %1x%2 pixels, which no sprite has").arg(s.width).arg(s.height);
    return QStringLiteral("its data is damaged or ends before the last pixel");
}

Report check(const QString &path, bool quiet)
{
    Report report;
    report.path = path;
    const QString name = QFileInfo(path).fileName();
    const FileKind kind = FileKinds::detect(path);
    if (kind != FileKind::Sprites) {
        report.failure = kind == FileKind::Definitions || kind == FileKind::Unknown
                             ? QStringLiteral("'%1': not a sprite file (SFF)").arg(QDir::toNativeSeparators(path))
                             : FileKinds::problem(kind, path);
        return report;
    }
    SpriteFile file;
    QString error;
    const bool loaded = file.load(path, false, &error);
    report.issues = quiet ? file.issueCount() : Console::printIssues(file.messages(), name);
    report.issuesJson = IssuesJson::toJson(file.messages(), name);
    if (!loaded) {
        report.failure = error;
        return report;
    }
    const QSprites &store = file.store();
    report.version = QSffVersion::name(store.version());
    report.sprites = store.count();
    QSpriteDecoder(store, QSpriteDecoder::Rgba).run({}, [&](QSpriteDecoder::Result &r) {
        const QSpriteItem &s = *store.item(r.index);
        if (s.isLink())
            ++report.linked;
        // A link shows what it links to, which is named itself.
        else if (!r.intact)
            report.broken.append({r.index, s.info.group, s.info.number, reasonOf(s)});
        return true;
    });
    return report;
}

} // namespace

ExitCode run(const QStringList &words)
{
    CommandStart start = startCommand(words, Usage::Topic::SpritesCheck, {{QStringLiteral("json"), false}},
                                      {QStringLiteral("FILE.sff")}, true);
    if (start.finished)
        return *start.finished;
    const bool json = start.args.has(QStringLiteral("json"));
    ExitCode code = ExitCode::Ok;
    QJsonArray files;
    for (const QString &path : start.args.positional()) {
        const Report r = check(path, json);
        const QString name = QFileInfo(path).fileName();
        if (!r.failure.isEmpty())
            code = ExitCode::Failure;
        else if (r.issues > 0 || !r.broken.isEmpty())
            code = worse(code, ExitCode::Issues);
        if (json) {
            QJsonArray broken;
            for (const Broken &b : r.broken)
                broken.append(QJsonObject{{QStringLiteral("index"), b.index},
                                          {QStringLiteral("group"), b.group},
                                          {QStringLiteral("number"), b.number},
                                          {QStringLiteral("reason"), b.reason}});
            QJsonObject o{{QStringLiteral("file"), QDir::toNativeSeparators(path)},
                          {QStringLiteral("issues"), r.issuesJson}};
            if (r.failure.isEmpty()) {
                o.insert(QStringLiteral("version"), r.version);
                o.insert(QStringLiteral("sprites"), r.sprites);
                o.insert(QStringLiteral("linked"), r.linked);
                o.insert(QStringLiteral("broken"), broken);
            } else {
                o.insert(QStringLiteral("error"), r.failure);
            }
            files.append(o);
            continue;
        }
        if (!r.failure.isEmpty()) {
            Console::fail(r.failure);
            continue;
        }
        for (const Broken &b : r.broken)
            Console::err(QStringLiteral("%1(%2): sprite %2 (%3,%4) can't be decoded: %5\n")
                             .arg(name).arg(b.index).arg(b.group).arg(b.number).arg(b.reason));
        Console::line(QStringLiteral("%1: SFF %2, %3 sprites (%4 linked), %5")
                          .arg(QDir::toNativeSeparators(path), r.version)
                          .arg(r.sprites)
                          .arg(r.linked)
                          .arg(r.broken.isEmpty() ? QStringLiteral("all intact")
                                                  : QStringLiteral("%1 broken").arg(r.broken.size())));
    }
    if (json)
        Console::json(QJsonDocument(QJsonObject{{QStringLiteral("files"), files}}));
    return code;
}

} // namespace SpriteCheck
