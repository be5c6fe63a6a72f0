#include "qproject.h"

#include "base/airlexer.h"
#include "code/qsyntaxhierarchy.h"
#include "code/qtextencoding.h"
#include "project/qbakmanager.h"
#include "project/qanimationsfile.h"
#include "sprites/qpalettefile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSaveFile>

namespace {

QString normalized(const QString &name)
{
    QString n = name;
    n.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return n;
}

// One line for the issue list and for a message box's list of files.
QString flat(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String(" ")).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text.trimmed();
}

bool sameFile(const QString &a, const QString &b)
{
    const QString ca = QFileInfo(a).canonicalFilePath();
    return !ca.isEmpty() && ca == QFileInfo(b).canonicalFilePath();
}

QString unquoted(const QString &value)
{
    if (value.size() >= 2 && value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        return value.mid(1, value.size() - 2).trimmed();
    return value;
}

} // namespace

QProject::QProject(const QProjectSettings &settings, QObject *parent)
    : QObject(parent)
    , m_sprites(settings.cacheType, settings.cacheCompression != 0, settings.records)
    , m_sounds(settings.cacheType, settings.cacheCompression, settings.records)
    , m_defAnimations(&m_animations, &m_definitions,
                      [this] { return m_type == QProjectType::Stage || m_type == QProjectType::Storyboard; })
    , m_settings(settings)
{
    for (QSyntaxTextEditor *doc : {&m_definitions, &m_commands}) {
        doc->setMugenSyntax(settings.mugenSyntax, settings.syntaxFormats);
        doc->setSyntax(QSyntaxTextEditor::Mugen);
        doc->setAutoSyntax(false);
        doc->setEngineVersion(DefaultVersion);
        doc->setFileWatcher(settings.fileWatcher);
    }
    m_animations.setMessages(&m_messages);
    m_sprites.setUndoCache(settings.undoCache);
    m_sprites.setMessages(&m_messages);
    m_sounds.setMessages(&m_messages);
    m_sounds.setUndoCache(settings.soundUndoCache);
    // The store says why a file failed through fileError; the project puts
    // the reason into its own report of that file.
    connect(&m_sprites, &QSprites::fileError, this,
            [this](const QString &, const QString &text) { m_spritesError = text; });
    connect(&m_definitions, &QSyntaxTextEditor::hierarchyUpdated, this, &QProject::defChanged);
}

QProject::~QProject()
{
    qDeleteAll(m_states);
    m_states.clear();
}

QString QProject::name() const
{
    const QSyntaxHierarchy *h = m_definitions.hierarchy();
    return h ? h->name() : QString();
}

QSyntaxTextEditor *QProject::addState()
{
    auto *doc = new QSyntaxTextEditor(true);
    doc->setMugenSyntax(m_settings.mugenSyntax, m_settings.syntaxFormats);
    doc->setSyntax(QSyntaxTextEditor::Mugen);
    doc->setEngineVersion(m_version);
    doc->setFileWatcher(m_settings.fileWatcher);
    m_states.append(doc);
    return doc;
}

bool QProject::removeState(int index)
{
    if (index < 0 || index >= m_states.size())
        return false;
    delete m_states.takeAt(index);
    return true;
}

// ---------------------------------------------------------------- values

quint32 QProject::parseVersion(const QString &value)
{
    static const QRegularExpression re(QStringLiteral("\\A(\\d)\\.(\\d)\\.?(\\d)?\\.?(\\d)?\\z"));
    const QRegularExpressionMatch m = re.match(value.trimmed());
    if (!m.hasMatch())
        return 0;
    quint32 v = 0;
    for (int i = 1; i <= 4; ++i)
        v = (v << 8) | quint32(m.captured(i).toUInt());
    return v;
}

bool QProject::parseLocalCoord(const QString &value, int *width, int *height)
{
    // "320, 240" is as common as "320,240": blanks around the separator are
    // allowed first, then any single character separates.
    static const QRegularExpression spaced(QStringLiteral("(\\d*)\\s*[^\\d\\s]\\s*(\\d*)"));
    static const QRegularExpression plain(QStringLiteral("(\\d*)[^\\d](\\d*)"));
    QRegularExpressionMatch m = spaced.match(value);
    if (!m.hasMatch())
        m = plain.match(value);
    if (!m.hasMatch()) {
        *width = 320;
        *height = 240;
        return false;
    }
    // Out-of-range numbers read as 0, like empty ones.
    *width = m.captured(1).toInt();
    *height = m.captured(2).toInt();
    return true;
}

QString QProject::versionText(quint32 version)
{
    if (version == 0)
        return tr("Beta");
    return QStringLiteral("%1.%2").arg(version >> 24).arg((version >> 16) & 0xFF);
}

QString QProject::typeName(QProjectType type)
{
    switch (type) {
    case QProjectType::Character: return tr("Character");
    case QProjectType::Storyboard: return tr("Storyboard");
    case QProjectType::Stage: return tr("Stage");
    case QProjectType::Font: return tr("Font");
    }
    return QString();
}

QString QProject::fileFilter(QProjectFile kind)
{
    switch (kind) {
    case QProjectFile::Definitions: return tr("Definitions (*.def)");
    case QProjectFile::Sprites: return tr("Sprites (*.sff)");
    case QProjectFile::Animations: return tr("Animations (*.air)");
    case QProjectFile::Commands: return tr("Commands (*.cmd)");
    case QProjectFile::States: return tr("Constants (*.cns);;States (*.st);;Text (*.txt);;Lua script (*.lua)");
    case QProjectFile::Sounds: return tr("Sounds (*.snd)");
    }
    return QString();
}

QString QProject::resolveFile(const QString &folder, const QString &name)
{
    const QString n = normalized(name);
    const QString path = QDir::cleanPath(folder.isEmpty() ? QFileInfo(n).absoluteFilePath()
                                                          : QDir(folder).absoluteFilePath(n));
    if (n.isEmpty() || QFileInfo::exists(path))
        return path;
    // Content written on case-blind systems often names "KFM.SFF" for kfm.sff.
    const QStringList parts = path.split(QLatin1Char('/'));
    QString found = parts.value(0);
    for (qsizetype i = 1; i < parts.size(); ++i) {
        const QString &part = parts.at(i);
        const QString exact = found + QLatin1Char('/') + part;
        if (part.isEmpty() || QFileInfo::exists(exact)) {
            found = exact;
            continue;
        }
        QString match;
        const QStringList entries = QDir(found.isEmpty() ? QStringLiteral("/") : found)
                                        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
        for (const QString &e : entries) {
            if (e.compare(part, Qt::CaseInsensitive) == 0) {
                match = e;
                break;
            }
        }
        if (match.isEmpty())
            return path;
        found += QLatin1Char('/') + match;
    }
    return found;
}

// ---------------------------------------------------------------- DEF scan

bool QProject::keepsPalettesInDefFiles() const
{
    // A version 2 sprite file holds palettes of its own, but the files the DEF
    // names win over them in the engine: those are saved back too.
    return m_type == QProjectType::Character
        && (m_sprites.version() == QSffVersion::V101 || !scanDef(m_definitions.fileName()).palettes.isEmpty());
}

QString QProject::writePaletteFile(int index, const QString &file)
{
    const QRGBPal *colors = m_sprites.paletteColors(index);
    if (!colors)
        return QString();
    // A file that holds these colours already is left as it is.
    if (QFile old(file); old.open(QIODevice::ReadOnly) && old.read(769) == QPaletteFile::actBytes(*colors))
        return QString();
    QString error;
    QDir().mkpath(QFileInfo(file).absolutePath());
    if (QPaletteFile::saveAct(file, *colors, &error))
        return QString();
    return QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), error);
}

QStringList QProject::writeDefPalettes()
{
    QStringList failures;
    const QProjectDefFiles files = scanDef(m_definitions.fileName());
    for (int i = 0; i < files.palettes.size(); ++i) {
        const int index = m_sprites.findPalette(0, 1, files.paletteNumbers.value(i, i + 1));
        if (index < 0)
            continue;
        const QString failure = writePaletteFile(index, resolveFile(files.folder, files.palettes.at(i)));
        if (!failure.isEmpty())
            failures << failure;
    }
    return failures;
}

QString QProject::definitionFor(const QString &file)
{
    const QFileInfo info(file);
    const QString target = info.canonicalFilePath();
    if (target.isEmpty())
        return QString();
    const QFileInfoList defs =
        info.absoluteDir().entryInfoList({QStringLiteral("*.def")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &def : defs) {
        QProject probe;
        if (!probe.m_definitions.loadFile(def.absoluteFilePath(), 0))
            continue;
        const QProjectDefFiles files = probe.scanDef(def.absoluteFilePath());
        QStringList named = files.palettes + files.states;
        named << files.sprite << files.animation << files.sound << files.command;
        for (const QString &name : std::as_const(named)) {
            if (!name.isEmpty() && QFileInfo(resolveFile(files.folder, name)).canonicalFilePath() == target)
                return def.absoluteFilePath();
        }
    }
    return QString();
}

QProjectDefFiles QProject::scanDef(const QString &fileName) const
{
    QProjectDefFiles files;
    if (!fileName.isEmpty())
        files.folder = QFileInfo(fileName).absolutePath();

    AirLexer lx(m_definitions.text());
    auto skipRest = [&lx] {
        if (lx.kind() != AirLexer::LineEnd && lx.kind() != AirLexer::End)
            lx.skipLine();
    };
    while (lx.kind() != AirLexer::End) {
        if (lx.kind() != AirLexer::OpenBracket) {
            if (lx.kind() == AirLexer::LineEnd)
                lx.next();
            else
                lx.skipLine();
            continue;
        }
        if (lx.next() != AirLexer::Identifier) {
            skipRest();
            continue;
        }
        const QString section = lx.text().toLower();
        lx.skipLine();
        // info, bgdef, scenedef and def are left at their first matching key.
        bool done = false;
        while (lx.kind() != AirLexer::End && lx.kind() != AirLexer::OpenBracket) {
            if (lx.kind() == AirLexer::Identifier) {
                const QString key = lx.text().toLower();
                const int line = lx.line();
                if (lx.next() == AirLexer::Equals) {
                    const QString value = unquoted(lx.readRest(QLatin1Char(';')).trimmed());
                    auto note = [&](const QString &name) {
                        if (!files.lines.contains(name))
                            files.lines.insert(name, line);
                    };
                    if (done) {
                    } else if (section == QLatin1String("info")) {
                        // The display name itself is kept by the DEF's outline.
                        done = key == QLatin1String("name");
                    } else if (section == QLatin1String("files")) {
                        if (key == QLatin1String("sprite")) {
                            files.sprite = value;
                            note(value);
                        } else if (key == QLatin1String("anim")) {
                            files.animation = value;
                            note(value);
                        } else if (key == QLatin1String("sound")) {
                            files.sound = value;
                            note(value);
                        } else if (key == QLatin1String("cmd")) {
                            files.command = value;
                            note(value);
                        } else if (key.startsWith(QLatin1String("pal"))) {
                            bool numbered = false;
                            const int n = key.mid(3).toInt(&numbered);
                            files.palettes.append(value);
                            files.paletteNumbers.append(numbered && n > 0 && n <= 32767 ? n : int(files.palettes.size()));
                            note(value);
                        } else if (key == QLatin1String("cns") || key.startsWith(QLatin1String("st"))) {
                            if (!files.states.contains(value)) {
                                files.states.append(value);
                                note(value);
                            }
                        }
                    } else if (section == QLatin1String("bgdef")) {
                        if (key == QLatin1String("spr")) {
                            QString v = value;
                            if (v.startsWith(QLatin1String("stages/"), Qt::CaseInsensitive)
                                || v.startsWith(QLatin1String("stages\\"), Qt::CaseInsensitive))
                                v.remove(0, 7);
                            files.sprite = v;
                            note(v);
                            done = true;
                        }
                    } else if (section == QLatin1String("scenedef")) {
                        if (key == QLatin1String("spr")) {
                            if (files.sprite.isEmpty()) {
                                files.sprite = value;
                                note(value);
                            }
                            done = true;
                        }
                    } else if (section == QLatin1String("def")) {
                        if (key == QLatin1String("file")) {
                            files.sprite = value;
                            note(value);
                            done = true;
                        }
                    }
                }
            }
            if (lx.kind() == AirLexer::LineEnd)
                lx.next();
            else
                skipRest();
        }
    }
    return files;
}

// ---------------------------------------------------------------- DEF changes

void QProject::defChanged()
{
    quint32 version = DefaultVersion;
    int width = 320;
    int height = 240;
    if (!m_definitions.isEmpty()) {
        version = parseVersion(m_definitions.findValue(QStringLiteral("info"), QStringLiteral("mugenversion")));
        QString coord = m_definitions.findValue(QStringLiteral("info"), QStringLiteral("localcoord"));
        // Stages keep their coordinate space in [StageInfo].
        if (coord.isEmpty())
            coord = m_definitions.findValue(QStringLiteral("stageinfo"), QStringLiteral("localcoord"));
        if (!coord.isEmpty())
            parseLocalCoord(coord, &width, &height);
    }

    QProjectType type = m_type;
    if (m_definitions.sectionExists(QStringLiteral("files")))
        type = QProjectType::Character;
    else if (m_definitions.sectionExists(QStringLiteral("bgdef")))
        type = QProjectType::Stage;
    else if (m_definitions.sectionExists(QStringLiteral("scenedef")))
        type = QProjectType::Storyboard;
    else if (m_definitions.sectionExists(QStringLiteral("def")))
        type = QProjectType::Font;
    if (type != m_type) {
        m_type = type;
        emit typeChanged(this);
    }

    m_localWidth = width;
    m_localHeight = height;
    if (version != m_version) {
        m_version = version;
        m_definitions.setEngineVersion(version);
        m_commands.setEngineVersion(version);
        for (QSyntaxTextEditor *doc : std::as_const(m_states))
            doc->setEngineVersion(version);
        emit versionChanged(this);
    }
    emit nameChanged(this, name());
}

// ---------------------------------------------------------------- helpers

bool QProject::step(uint position, uint total)
{
    bool goOn = true;
    emit progress(position, total, goOn);
    m_stopped = m_stopped || !goOn;
    return goOn;
}

void QProject::beginWork()
{
    m_failures.clear();
    m_stopped = false;
}

QString QProject::place(const QString &file, int line) const
{
    return QStringLiteral("%1(%2)").arg(file).arg(line + 1);
}

void QProject::setPath(const QString &key, const QString &value)
{
    m_paths.insert(key, value);
    if (m_settings.storePath)
        m_settings.storePath(key, value);
}

QString QProject::path(const QString &key) const
{
    return m_paths.value(key, m_settings.paths.value(key));
}

// An unanswered question must not block a save: without a listener the
// project keeps its version and saves.
quint32 QProject::askSpritesVersion(quint32 version)
{
    if (!isSignalConnected(QMetaMethod::fromSignal(&QProject::spritesVersionToSave)))
        return version;
    return emit spritesVersionToSave(version);
}

bool QProject::askCanSave(QProjectFile kind, quint32 version)
{
    if (!isSignalConnected(QMetaMethod::fromSignal(&QProject::canSave)))
        return true;
    return emit canSave(this, kind, version);
}

// The dialog starts at the file the DEF names when there is one, so its name
// is offered, else at the project's last folder.
QString QProject::askFileName(QProjectFile kind, const QString &remembered)
{
    const QString start = remembered.isEmpty() ? path(QStringLiteral("proj_path")) : remembered;
    return emit saveFileName(kind, start);
}

void QProject::reportBadBytes(const QSyntaxTextEditor &doc)
{
    if (doc.firstBadLine() >= 0)
        m_messages.addWarning(tr("%1: Some bytes can't be read as %2 and were replaced")
                                  .arg(place(doc.fileName(), doc.firstBadLine()), QString::fromLatin1(doc.encoding())));
}

void QProject::fail(const QString &path, const QString &text, bool listed)
{
    const QString line = flat(text);
    if (!listed)
        m_messages.addError(QStringLiteral("%1: %2").arg(place(path), line));
    m_failures.append(QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(path), line));
}

QString QProject::makeBackupFolder(const QString &defFile)
{
    QString error;
    const QString dir = QBakManager::makeFolder(defFile, &error);
    if (dir.isEmpty())
        fail(defFile, tr("No backup folder can be made: %1").arg(error));
    return dir;
}

// The path of a relative name inside a folder, or empty (with a warning) for
// a name that would leave it: copies never write outside their folder.
QString QProject::targetIn(const QString &folder, const QString &name)
{
    const QString root = QDir::cleanPath(folder);
    const QString target = QDir::cleanPath(root + QLatin1Char('/') + normalized(name));
    if (name.isEmpty() || QDir::isAbsolutePath(normalized(name)) || normalized(name).contains(QLatin1Char(':'))
        || !target.startsWith(root + QLatin1Char('/'))) {
        m_messages.addWarning(tr("%1: \"%2\" lies outside the project's folder and is not copied")
                                  .arg(place(m_definitions.fileName(), m_defFiles.lines.value(name)), name));
        return QString();
    }
    return target;
}

bool QProject::copyOriginal(const QString &source, const QString &target, QString *error)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        *error = in.errorString();
        return false;
    }
    QDir().mkpath(QFileInfo(target).absolutePath());
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly)) {
        *error = out.errorString();
        return false;
    }
    char buffer[64 * 1024];
    for (;;) {
        const qint64 n = in.read(buffer, sizeof buffer);
        if (n < 0) {
            *error = in.errorString();
            out.cancelWriting();
            return false;
        }
        if (n == 0)
            break;
        if (out.write(buffer, n) != n) {
            *error = out.errorString();
            out.cancelWriting();
            return false;
        }
    }
    if (out.commit())
        return true;
    *error = out.errorString();
    return false;
}

// A file copied as it is on disk; a source that is the target already stays.
bool QProject::copyFile(const QString &source, const QString &target)
{
    if (sameFile(source, target))
        return true;
    QString error;
    if (copyOriginal(source, target, &error))
        return true;
    fail(target, tr("Can't be copied from %1: %2").arg(QDir::toNativeSeparators(source), error));
    return false;
}

void QProject::copyToBackup(const QString &source, const QString &name)
{
    if (m_backup.isEmpty())
        return;
    const QString target = targetIn(m_backup, name);
    if (!target.isEmpty())
        copyFile(source, target);
}

bool QProject::saveText(QSyntaxTextEditor &doc, const QString &path, bool asUtf8, bool asCopy)
{
    if (doc.saveFile(path, asUtf8, asCopy)) {
        if (doc.firstLossyLine() >= 0)
            m_messages.addWarning(tr("%1: Some characters can't be written as %2 and were replaced; save as UTF-8 "
                                     "to keep them")
                                      .arg(place(path, doc.firstLossyLine()), QString::fromLatin1(doc.encoding())));
        return true;
    }
    fail(path, tr("Can't be saved: %1").arg(doc.errorString()));
    return false;
}

// The animation slot, written to `target`. A store left as it was read is
// copied from its file (`original`, empty if there is none), comments and all;
// one that was edited writes what it holds, in the program's layout. A real
// save binds the store to `target`.
bool QProject::writeAnimations(const QString &target, const QString &original, bool real, bool asUtf8)
{
    if (m_animations.isEmpty()) {
        // Nothing read: the file stays part of the project. Emptied by the
        // author: an AIR without actions is no animation file.
        return m_animations.isModified() || original.isEmpty() || copyFile(original, target);
    }
    if (!m_animations.isModified() && !original.isEmpty() && !asUtf8) {
        if (!copyFile(original, target))
            return false;
        if (real)
            m_animations.setPath(target);
        return true;
    }
    QDir().mkpath(QFileInfo(target).absolutePath());
    QString error;
    if (QAnimationsFile::save(m_animations, target, asUtf8, !real, &error))
        return true;
    fail(target, tr("The animations can't be saved: %1").arg(error));
    return false;
}

// The sound slot, written to `target`: as the animations, a store left as it
// was read is copied from its file, so that even a file the reader had to
// mend stays as it was; an edited one writes what it holds. A real save binds
// the store to `target`; any other write changes nothing in it.
bool QProject::writeSounds(const QString &target, const QString &original, bool real)
{
    if (m_sounds.isEmpty() && !m_sounds.isModified())
        return original.isEmpty() || copyFile(original, target);
    if (!m_sounds.isModified() && !original.isEmpty() && !real)
        return copyFile(original, target);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QString error;
    if (m_sounds.save(target, !real, &error))
        return true;
    fail(target, tr("The sounds can't be saved: %1").arg(error));
    return false;
}

bool QProject::loadSounds(const QString &path, bool temporary)
{
    QString error;
    if (m_sounds.load(path, temporary, &error))
        return true;
    // A load the user stopped says nothing.
    if (error.isEmpty())
        m_stopped = true;
    else
        fail(path, tr("The sounds can't be read: %1").arg(error));
    return false;
}

// ---------------------------------------------------------------- load

bool QProject::fromFile(const QString &fileName, uint codepage, bool backup, bool temporary)
{
    m_messages.addInfo(tr("Open project - %1").arg(fileName));
    beginWork();
    m_backup.clear();
    m_restoredAnimations.clear();
    if (backup && QFileInfo(fileName).isFile()) {
        m_backup = makeBackupFolder(fileName);
        m_lastBackup = m_backup;
        copyToBackup(fileName, QFileInfo(fileName).fileName());
    }

    // The DEF's hierarchy update runs defChanged(): type, version and local
    // coordinates are known before the rest is read.
    if (!m_definitions.loadFile(fileName, int(codepage), temporary, temporary)) {
        fail(fileName, tr("The definitions can't be read: %1").arg(m_definitions.errorString()));
        m_backup.clear();
        return false;
    }
    reportBadBytes(m_definitions);

    m_defFiles = scanDef(fileName);
    const QProjectDefFiles &files = m_defFiles;
    const uint total = uint(files.palettes.size() + files.states.size() + 4);
    uint done = 0;
    auto finish = [this, temporary] {
        m_backup.clear();
        if (temporary)
            markRestored();
        return true;
    };
    auto missing = [this, &files](const QString &name) {
        m_messages.addInfo(tr("%1: Not found: %2").arg(place(m_definitions.fileName(), files.lines.value(name)), name));
    };
    auto existing = [this, &files, &missing](const QString &name) -> QString {
        if (name.isEmpty())
            return QString();
        const QString path = resolveFile(files.folder, name);
        if (!QFileInfo(path).isFile()) {
            missing(name);
            return QString();
        }
        copyToBackup(path, name);
        return path;
    };

    if (!step(done, total))
        return finish();

    // Palette files land in group 1 as 1, 2, 3...; every file found takes its
    // number even when it can't be read, so the others keep theirs.
    // Reading a backup back replaces what the store holds but keeps its file.
    if (temporary && (m_sprites.count() > 0 || m_sprites.paletteCount() > 0)) {
        m_sprites.clearContent();
    }
    // The character's palette files: palN is palette 1,N. A file that is
    // missing is worth a warning, not a refusal: the sprite file's own
    // palettes stay in use.
    QList<std::pair<int, QRGBPal>> characterPalettes;
    if (isCharacter()) {
        m_paletteNumbers.clear();
        for (int i = 0; i < files.palettes.size(); ++i) {
            const QString &name = files.palettes.at(i);
            const int number = files.paletteNumbers.value(i, i + 1);
            const QString path = name.isEmpty() ? QString() : resolveFile(files.folder, name);
            if (!name.isEmpty() && !QFileInfo(path).isFile()) {
                m_messages.addWarning(tr("%1: Palette file not found: %2 (palette 1,%3 keeps the colours of the sprite file)")
                                          .arg(place(m_definitions.fileName(), files.lines.value(name)), name)
                                          .arg(number));
            } else if (!name.isEmpty()) {
                copyToBackup(path, name);
                m_paletteNumbers.insert(name, number);
                QRGBPal colors;
                if (loadPalette(path, number, &colors))
                    characterPalettes.append({number, colors});
            }
            if (!step(++done, total))
                return finish();
        }
    }

    const QString spr = existing(files.sprite);
    if (!spr.isEmpty())
        loadSprites(spr, temporary, done, total);
    // A version 2 sprite file holds its palettes itself; the engine still
    // takes the DEF's files over them, and so does the store.
    if (m_sprites.version() != QSffVersion::V101) {
        for (auto [number, colors] : std::as_const(characterPalettes)) {
            // A palette file knows no alpha: colour 0 stays as the sprite file had it.
            if (const QRGBPal *own = m_sprites.paletteColors(m_sprites.findPalette(0, 1, number)))
                colors[0].a = own->colors[0].a;
            m_sprites.setLoadedPalette(colors, 1, number);
        }
    }
    if (!step(++done, total))
        return finish();

    // Animations: characters have their own file; stages and storyboards keep
    // theirs in the DEF itself, fonts have none.
    if (isCharacter()) {
        const QString air = existing(files.animation);
        if (!air.isEmpty() && loadAnimations(air, codepage, temporary) && temporary)
            m_restoredAnimations = air;
    } else if (m_type != QProjectType::Font) {
        m_defAnimations.read();
    }
    if (!step(++done, total))
        return finish();

    if (isCharacter()) {
        const QString snd = existing(files.sound);
        if (!snd.isEmpty())
            loadSounds(snd, temporary);
    }
    if (!step(++done, total))
        return finish();

    if (isCharacter()) {
        const QString cmd = existing(files.command);
        if (!cmd.isEmpty()) {
            if (m_commands.loadFile(cmd, int(codepage), temporary, temporary))
                reportBadBytes(m_commands);
            else
                fail(cmd, tr("Can't be read: %1").arg(m_commands.errorString()));
        } else if (!temporary && !files.command.isEmpty()) {
            m_commands.setFileName(resolveFile(files.folder, files.command));
        }
    }
    if (!step(++done, total))
        return finish();

    if (isCharacter()) {
        // A backup read back fills the documents already open for those files;
        // a real load starts the list afresh.
        QList<QSyntaxTextEditor *> previous;
        if (temporary)
            previous = m_states;
        else
            qDeleteAll(m_states);
        m_states.clear();
        for (const QString &name : files.states) {
            const QString path = existing(name);
            if (!path.isEmpty()) {
                const QString shortName = QFileInfo(path).fileName();
                QSyntaxTextEditor *doc = nullptr;
                for (QSyntaxTextEditor *d : std::as_const(previous))
                    if (d->objectName() == shortName)
                        doc = d;
                const bool reused = doc != nullptr;
                previous.removeOne(doc);
                if (!doc) {
                    doc = new QSyntaxTextEditor(true);
                    doc->setMugenSyntax(m_settings.mugenSyntax, m_settings.syntaxFormats);
                    doc->setEngineVersion(m_version);
                    doc->setFileWatcher(m_settings.fileWatcher);
                }
                if (doc->loadFile(path, int(codepage), temporary, reused)) {
                    if (!reused)
                        doc->setObjectName(shortName);
                    m_states.append(doc);
                    reportBadBytes(*doc);
                } else {
                    fail(path, tr("Can't be read: %1").arg(doc->errorString()));
                    if (reused)
                        m_states.append(doc);
                    else
                        delete doc;
                }
            }
            if (!step(++done, total)) {
                m_states.append(previous);
                return finish();
            }
        }
        // Documents the backup has no file for stay as they are.
        m_states.append(previous);
    }
    return finish();
}

// ---------------------------------------------------------------- save

bool QProject::saveFile(QProjectFile kind, bool asUtf8, int state)
{
    const QString folder = m_defFiles.folder;
    auto remembered = [&folder](const QString &name) {
        return name.isEmpty() ? QString() : resolveFile(folder, name);
    };
    switch (kind) {
    case QProjectFile::Definitions: {
        const QString name = askFileName(kind, m_definitions.fileName());
        return !name.isEmpty() && saveText(m_definitions, name, asUtf8, false);
    }
    case QProjectFile::Sprites: {
        if (spritesEmpty())
            return false;
        const quint32 version = askSpritesVersion(spritesVersion());
        if (!askCanSave(kind, version))
            return false;
        const QString name = askFileName(kind, spritesFile().isEmpty() ? remembered(m_defFiles.sprite) : spritesFile());
        return !name.isEmpty() && writeSprites(name, version, false);
    }
    case QProjectFile::Animations: {
        if (m_animations.isEmpty() || !askCanSave(kind, m_version))
            return false;
        const QString name = askFileName(kind, m_animations.path().isEmpty() ? remembered(m_defFiles.animation)
                                                                            : m_animations.path());
        return !name.isEmpty() && writeAnimations(name, QString(), true, asUtf8);
    }
    case QProjectFile::Sounds: {
        if (m_sounds.isEmpty() || !askCanSave(kind, m_version))
            return false;
        const QString name = askFileName(kind, m_sounds.path().isEmpty() ? remembered(m_defFiles.sound)
                                                                        : m_sounds.path());
        return !name.isEmpty() && writeSounds(name, QString(), true);
    }
    case QProjectFile::Commands: {
        if (m_commands.isEmpty())
            return false;
        const QString name = askFileName(kind, m_commands.fileName().isEmpty() ? remembered(m_defFiles.command)
                                                                               : m_commands.fileName());
        return !name.isEmpty() && saveText(m_commands, name, asUtf8, false);
    }
    case QProjectFile::States: {
        QSyntaxTextEditor *doc = m_states.value(state);
        if (!doc || doc->isEmpty())
            return false;
        const QString name = askFileName(kind, doc->fileName());
        if (name.isEmpty() || !saveText(*doc, name, asUtf8, false))
            return false;
        doc->setObjectName(QFileInfo(name).fileName());
        return true;
    }
    }
    return false;
}

bool QProject::toFile()
{
    beginWork();
    if (m_definitions.fileName().isEmpty())
        return false;
    if ((m_definitions.isModified() || !QFileInfo(m_definitions.fileName()).isFile())
        && !saveText(m_definitions, m_definitions.fileName(), false, false))
        return false;

    const uint total = uint(m_states.size() + 4);
    uint done = 0;
    if (!step(done, total))
        return false;

    if (!QFileInfo(spritesFile()).isFile())
        saveFile(QProjectFile::Sprites, false);
    else if (spritesModified() && askCanSave(QProjectFile::Sprites, spritesVersion()))
        writeSprites(spritesFile(), 0, false);
    if (!step(++done, total))
        return false;
    if (!isCharacter()) {
        if (workDone())
            m_restored = false;
        return workDone();
    }

    if (!QFileInfo(m_animations.path()).isFile())
        saveFile(QProjectFile::Animations, false);
    else if ((m_animations.isModified() || (m_restored && !m_animations.isEmpty())) && askCanSave(QProjectFile::Animations, m_version))
        // Untouched since it came back, the backup's file goes over as it is, in its own layout.
        writeAnimations(m_animations.path(),
                        m_restored && QFileInfo(m_restoredAnimations).isFile() ? m_restoredAnimations : QString(),
                        true);
    if (!step(++done, total))
        return false;

    if (!QFileInfo(m_sounds.path()).isFile())
        saveFile(QProjectFile::Sounds, false);
    else if (m_sounds.isModified() && askCanSave(QProjectFile::Sounds, m_version))
        writeSounds(m_sounds.path(), QString(), true);

    if (!QFileInfo(m_commands.fileName()).isFile())
        saveFile(QProjectFile::Commands, false);
    else if (m_commands.isModified())
        saveText(m_commands, m_commands.fileName(), false, false);
    if (!step(++done, total))
        return false;

    for (int i = 0; i < m_states.size(); ++i) {
        QSyntaxTextEditor *doc = m_states.at(i);
        if (!QFileInfo(doc->fileName()).isFile())
            saveFile(QProjectFile::States, false, i);
        else if (doc->isModified())
            saveText(*doc, doc->fileName(), false, false);
        if (!step(++done, total))
            return false;
    }

    if (!step(++done, total))
        return false;
    if (workDone())
        m_restored = false;
    return workDone();
}

// What a backup brought back differs from the files it came from: every slot
// it filled is unsaved, so that the next save writes it over the originals.
void QProject::markRestored()
{
    m_definitions.setModified(true);
    if (!m_commands.isEmpty())
        m_commands.setModified(true);
    for (QSyntaxTextEditor *doc : std::as_const(m_states))
        if (!doc->isEmpty())
            doc->setModified(true);
    if (!spritesEmpty())
        m_sprites.setModified(true);
    // The animation store has no flag to set from outside: the project keeps it.
    m_restored = true;
}

bool QProject::saveAs(const QString &fileName, bool asUtf8)
{
    beginWork();
    const QFileInfo info(fileName);
    const bool saved = writeProject(info.absolutePath(), info.fileName(), CopyKind::SaveAs, asUtf8);
    if (saved)
        m_restored = false;
    return saved;
}

QStringList QProject::filesReplacedBySaveAs(const QString &fileName) const
{
    const QProjectDefFiles files = scanDef(m_definitions.fileName());
    const QString root = QDir::cleanPath(QFileInfo(fileName).absolutePath());
    QStringList names = files.palettes + files.states;
    names << files.sprite << files.animation << files.sound << files.command;
    QStringList replaced;
    for (const QString &name : std::as_const(names)) {
        const QString target = QDir::cleanPath(root + QLatin1Char('/') + normalized(name));
        const QString own = files.folder.isEmpty() ? QString() : resolveFile(files.folder, name);
        if (!name.isEmpty() && target.startsWith(root + QLatin1Char('/')) && QFileInfo(target).isFile()
            && !sameFile(own, target) && !replaced.contains(target))
            replaced << target;
    }
    return replaced;
}

// ---------------------------------------------------------------- copies

bool QProject::toTemporary(const QString &folder, const QString &baseName)
{
    beginWork();
    return writeProject(folder, baseName + QStringLiteral(".def"), CopyKind::TestCopy);
}

bool QProject::backup()
{
    beginWork();
    const QString def = m_definitions.fileName();
    if (def.isEmpty())
        return false;
    if (!QFileInfo(QFileInfo(def).absolutePath()).isDir()) {
        fail(def, tr("The project's folder no longer exists: no backup can be made beside it"));
        return false;
    }
    const QString dir = makeBackupFolder(def);
    if (dir.isEmpty())
        return false;
    m_lastBackup = dir;
    return writeProject(dir, QFileInfo(def).fileName(), CopyKind::Backup);
}

// Writes the DEF and every file it names under the names it gives them,
// inside `folder`, so that the folder holds the whole project. What a store
// holds is written from memory; a slot with nothing in memory is copied from
// the file the project was read from.
bool QProject::writeProject(const QString &folder, const QString &defName, CopyKind kind, bool asUtf8)
{
    const bool real = kind == CopyKind::SaveAs;
    // Names and sources as the project stands, before a Save As moves it.
    const QProjectDefFiles files = scanDef(m_definitions.fileName());
    m_defFiles.lines = files.lines;
    if (!QDir().mkpath(folder)) {
        fail(folder, tr("The folder can't be made"));
        return false;
    }
    const uint total = uint(files.palettes.size() + files.states.size() + 5);
    uint done = 0;
    // Without its DEF the folder is no project: nothing else is written.
    if (!saveText(m_definitions, QDir(folder).filePath(defName), asUtf8, !real))
        return false;
    if (real)
        m_defFiles.folder = QDir::cleanPath(QDir(folder).absolutePath());
    if (!step(++done, total))
        return false;

    auto source = [&files](const QString &name) {
        const QString path = files.folder.isEmpty() ? QString() : resolveFile(files.folder, name);
        return QFileInfo(path).isFile() ? path : QString();
    };
    auto copyOver = [&](const QString &name, const QString &target) {
        const QString from = source(name);
        if (!from.isEmpty())
            copyFile(from, target);
    };
    auto prepare = [](const QString &target) { QDir().mkpath(QFileInfo(target).absolutePath()); };

    if (isCharacter()) {
        for (const QString &name : files.palettes) {
            const QString target = targetIn(folder, name);
            if (!target.isEmpty()) {
                if (const QRGBPal *colors = palette(m_paletteNumbers.value(name)))
                    writePalette(*colors, target);
                else
                    copyOver(name, target);
            }
            if (!step(++done, total))
                return false;
        }
    }

    const QString spriteTarget = files.sprite.isEmpty() ? QString() : targetIn(folder, files.sprite);
    if (!spriteTarget.isEmpty()) {
        if (spritesEmpty()) {
            // A store that holds nothing because nothing was read: the file stays part of the project.
            if (!spritesModified())
                copyOver(files.sprite, spriteTarget);
        } else if (!real) {
            prepare(spriteTarget);
            writeSprites(spriteTarget, 0, true, kind == CopyKind::TestCopy);
        } else {
            const quint32 version = askSpritesVersion(spritesVersion());
            if (askCanSave(QProjectFile::Sprites, version)) {
                prepare(spriteTarget);
                writeSprites(spriteTarget, version, false);
            }
        }
    } else if (real && files.sprite.isEmpty()) {
        // The DEF names no sprite file: the author names one.
        saveFile(QProjectFile::Sprites, asUtf8);
    }
    if (!step(++done, total))
        return false;
    if (!isCharacter())
        return workDone();

    if (!files.animation.isEmpty()) {
        const QString target = targetIn(folder, files.animation);
        if (!target.isEmpty())
            writeAnimations(target, source(files.animation), real, asUtf8);
    }
    if (!step(++done, total))
        return false;
    if (!files.sound.isEmpty()) {
        const QString target = targetIn(folder, files.sound);
        if (!target.isEmpty())
            writeSounds(target, source(files.sound), real);
    }
    if (!step(++done, total))
        return false;

    if (!files.command.isEmpty()) {
        const QString target = targetIn(folder, files.command);
        if (!target.isEmpty()) {
            if (m_commands.isEmpty() && !m_commands.isModified()) {
                copyOver(files.command, target);
            } else {
                prepare(target);
                saveText(m_commands, target, asUtf8, !real);
            }
        }
    } else if (real) {
        saveFile(QProjectFile::Commands, asUtf8);
    }
    if (!step(++done, total))
        return false;

    QList<QSyntaxTextEditor *> unnamed = m_states;
    for (const QString &name : files.states) {
        const QString target = targetIn(folder, name);
        const QString resolved = files.folder.isEmpty() ? QString() : resolveFile(files.folder, name);
        const QString suffix = QLatin1Char('/') + normalized(name);
        QSyntaxTextEditor *doc = nullptr;
        for (QSyntaxTextEditor *d : std::as_const(m_states)) {
            if (!d->fileName().isEmpty() && (d->fileName() == resolved || d->fileName().endsWith(suffix))) {
                doc = d;
                break;
            }
        }
        unnamed.removeOne(doc);
        if (!target.isEmpty()) {
            if (doc) {
                prepare(target);
                if (saveText(*doc, target, asUtf8, !real) && real)
                    doc->setObjectName(QFileInfo(target).fileName());
            } else {
                copyOver(name, target);
            }
        }
        if (!step(++done, total))
            return false;
    }
    // State documents the DEF doesn't name: on Save As the author names them.
    if (real) {
        for (QSyntaxTextEditor *doc : std::as_const(unnamed))
            saveFile(QProjectFile::States, asUtf8, int(m_states.indexOf(doc)));
        m_defFiles = scanDef(m_definitions.fileName());
    }
    return workDone();
}

// ---------------------------------------------------------------- sprite slot
// Every call into the sprite store and the palette files is made here.

bool QProject::loadPalette(const QString &path, int number, QRGBPal *colors)
{
    QString error;
    if (!QPaletteFile::load(path, colors, &error)) {
        fail(path, tr("Not a palette: %1").arg(error));
        return false;
    }
    // Part of reading the project, not an edit: no undo, no unsaved mark.
    m_sprites.addLoadedPalette(*colors, 1, number);
    return true;
}

bool QProject::loadSprites(const QString &path, bool temporary, uint position, uint total)
{
    m_spritesError.clear();
    const int before = m_messages.rowCount();
    // The store starts afresh on every read; a backup read back stays bound
    // to the project's own file, so that the next save goes there.
    const QString own = m_sprites.fileName();
    const bool read = m_sprites.fromFile(path, isCharacter(), temporary);
    if (temporary)
        m_sprites.setFileName(own);
    if (read)
        return true;
    bool listed = false;
    const QString reason = spritesLoadFailure(path, before, &listed);
    // A store that stopped without a word may have been stopped by the user.
    if (!listed && m_spritesError.isEmpty() && !step(position, total))
        return false;
    fail(path, tr("The sprites can't be read: %1").arg(reason), listed);
    return false;
}

// Why the store refused a file: what it said, or what its reader put in the
// issues, or else what the first bytes show.
QString QProject::spritesLoadFailure(const QString &path, qsizetype messagesBefore, bool *listed) const
{
    static const QRegularExpression placed(QStringLiteral("^[^\\n]*?\\(\\d+\\): "));
    const QList<QMessages::Message> said = m_messages.messages();
    for (qsizetype i = said.size() - 1; i >= messagesBefore; --i) {
        if (said.at(i).kind != QMessages::Error)
            continue;
        *listed = true;
        return QString(said.at(i).text).remove(placed);
    }
    if (!m_spritesError.isEmpty())
        return m_spritesError;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    if (file.read(12) != QByteArray("ElecbyteSpr", 12))
        return tr("not a sprite file (SFF): it doesn't begin with the SFF signature");
    return tr("the file is damaged");
}

bool QProject::spritesEmpty() const
{
    return m_sprites.count() == 0;
}

bool QProject::spritesModified() const
{
    return m_sprites.isModified();
}

quint32 QProject::spritesVersion() const
{
    return m_sprites.version();
}

QString QProject::spritesFile() const
{
    return m_sprites.fileName();
}

bool QProject::writeSprites(const QString &path, quint32 version, bool temporary, bool quick)
{
    m_spritesError.clear();
    if (m_sprites.toFile(path, isCharacter(), version, !quick, temporary))
        return true;
    // The store reports every failure; a write it stopped without a word was cancelled.
    if (m_spritesError.isEmpty())
        m_stopped = true;
    else
        fail(path, tr("The sprites can't be saved: %1").arg(m_spritesError));
    return false;
}

const QRGBPal *QProject::palette(int number) const
{
    const QPaletteList &list = m_sprites.palettes();
    const int index = number > 0 ? list.find(0, 1, number) : -1;
    return index < 0 ? nullptr : list.colors(index);
}

bool QProject::writePalette(const QRGBPal &colors, const QString &path)
{
    QString error;
    QDir().mkpath(QFileInfo(path).absolutePath());
    if (QPaletteFile::saveAct(path, colors, &error))
        return true;
    fail(path, tr("The palette can't be saved: %1").arg(error));
    return false;
}

// ---------------------------------------------------------------- animation slot

bool QProject::loadAnimations(const QString &path, uint codepage, bool temporary)
{
    QString error;
    if (QAnimationsFile::load(m_animations, path, int(codepage), temporary, &error))
        return true;
    fail(path, tr("The animations can't be read: %1").arg(error));
    return false;
}
