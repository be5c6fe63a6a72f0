#pragma once

#include "animations/qanimations.h"
#include "base/qmessages.h"
#include "code/qsyntaxtexteditor.h"
#include "project/qdefanimations.h"
#include "project/qprojectsettings.h"
#include "sounds/qsounds.h"
#include "sprites/qsprites.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

// What a project is; a mask, so that editors can say which kinds they serve.
enum class QProjectType : int { Character = 1, Storyboard = 2, Stage = 4, Font = 8 };

// The slots of a project. The numbers index the file filters and the save
// switches, so they never change.
enum class QProjectFile : int { Definitions = 0, Sprites = 1, Animations = 2, Commands = 3, States = 4, Sounds = 5 };

// The file names a DEF refers to, as written in it (relative to `folder`).
struct QProjectDefFiles
{
    QStringList palettes;
    // The palette each of `palettes` stands for: pal<N> is palette 1,N, as the
    // player picks it; another pal key takes its place in the list.
    QList<int> paletteNumbers;
    QStringList states;
    QString folder; // absolute folder of the DEF
    QString sprite;
    QString animation;
    QString sound;
    QString command;
    // DEF line (0-based) that named each file, for messages.
    QHash<QString, int> lines;
};

// One open M.U.G.E.N. item (character, stage, storyboard or font), defined by
// its DEF and owning everything the DEF refers to. It follows its DEF for type,
// engine version and local coordinates, and drives load, save, backup and the
// test copy. Questions to the user go out through signals with results.
class QProject : public QObject
{
    Q_OBJECT

public:
    static constexpr quint32 DefaultVersion = 0x01010000;

    explicit QProject(const QProjectSettings &settings = QProjectSettings(), QObject *parent = nullptr);
    ~QProject() override;

    QProjectType type() const { return m_type; }
    quint32 version() const { return m_version; }
    int localWidth() const { return m_localWidth; }
    int localHeight() const { return m_localHeight; }
    // Display name from the DEF ([Info] name), empty when it has none.
    QString name() const;

    QSyntaxTextEditor *definitions() { return &m_definitions; }
    QSyntaxTextEditor *commands() { return &m_commands; }
    QSprites *sprites() { return &m_sprites; }
    QAnimations *animations() { return &m_animations; }
    QSounds *sounds() { return &m_sounds; }
    QMessages *messages() { return &m_messages; }

    int statesCount() const { return int(m_states.size()); }
    QSyntaxTextEditor *state(int index) const { return m_states.value(index); }
    // A new empty state document at the end of the list, owned by the project.
    QSyntaxTextEditor *addState();
    // Deletes the document; false when out of range.
    bool removeState(int index);

    // File names of the last DEF scan: what the DEF names, found or not.
    const QProjectDefFiles &defFiles() const { return m_defFiles; }

    // Loads the whole project; false only when the DEF itself can't be read.
    // Files it names that exist but can't be read are listed in failures().
    bool fromFile(const QString &fileName, uint codepage, bool backup, bool temporary);
    // Each of these is false when a file could not be written (see failures())
    // or the user cancelled; toFile() is also false for a DEF with no name yet.
    bool toFile();
    // Writes the DEF under `fileName` and every file it names beside it, under
    // the names the DEF gives them, so that the new DEF opens as a whole.
    bool saveAs(const QString &fileName, bool asUtf8);
    // Files a Save As under `fileName` would put beside it that exist already
    // and are not this project's own: the Save As would replace them.
    QStringList filesReplacedBySaveAs(const QString &fileName) const;
    bool toTemporary(const QString &folder, const QString &baseName);
    bool backup();
    // Every file the last load, save or copy could not read or write, one
    // "file: reason" line each. Empty when everything went through.
    QStringList failures() const { return m_failures; }
    // Saves one slot under a name asked through saveFileName(); `state` picks
    // the state document. False when the slot is empty, refused or not written.
    bool saveFile(QProjectFile kind, bool asUtf8, int state = 0);
    // True from reading a backup back until the next complete save: the
    // project differs from its files even where no store says so.
    bool isRestored() const { return m_restored; }
    // Folder of the last backup written or taken on load, empty if none.
    QString lastBackupFolder() const { return m_lastBackup; }

    void setPath(const QString &key, const QString &value);
    QString path(const QString &key) const;
    QMap<QString, QString> paths() const { return m_paths; }

    QProjectDefFiles scanDef(const QString &fileName) const;

    // Engine version from a [Info] mugenversion value; 0 (Beta) when unreadable.
    static quint32 parseVersion(const QString &value);
    // Width and height from a localcoord value; false (and 320 x 240) when unreadable.
    static bool parseLocalCoord(const QString &value, int *width, int *height);
    static QString versionText(quint32 version);
    static QString typeName(QProjectType type);
    static QString fileFilter(QProjectFile kind);
    // A file named by a DEF, resolved against the DEF's folder. Back slashes
    // count as separators, and when the exact name is missing a name that
    // differs only in letter case is taken, as the engine's own system would.
    static QString resolveFile(const QString &folder, const QString &name);
    // Palettes of group 1 that live in files of their own: a character whose
    // sprite file is version 1.01 keeps them in the files the DEF names
    // (pal1 is palette 1,1 and so on). True when that is the case.
    bool keepsPalettesInDefFiles() const;
    // Writes each palette 1,i to the file the DEF names as pal<i>; returns
    // what failed ("file: reason"), empty if nothing did.
    QStringList writeDefPalettes();
    // Writes palette `index` of the sprites as an ACT file; empty or the failure.
    QString writePaletteFile(int index, const QString &file);
    // The DEF in the folder of `file` that names it (the first by file name),
    // or an empty string: how a sprite or sound file finds its project.
    static QString definitionFor(const QString &file);

signals:
    QString saveFileName(QProjectFile kind, const QString &folder);
    quint32 spritesVersionToSave(quint32 version);
    bool canSave(QProject *project, QProjectFile kind, quint32 version);
    void typeChanged(QProject *project);
    void versionChanged(QProject *project);
    void nameChanged(QProject *project, const QString &name);
    void progress(uint position, uint total, bool &goOn);

public slots:
    void defChanged();

private:
    bool isCharacter() const { return m_type == QProjectType::Character; }
    bool step(uint position, uint total);
    // A load, save or copy starts with no failure and ends complete only if
    // nothing failed and nobody cancelled.
    void beginWork();
    bool workDone() const { return !m_stopped && m_failures.isEmpty(); }
    QString place(const QString &file, int line = 0) const;
    QString askFileName(QProjectFile kind, const QString &remembered);
    bool askCanSave(QProjectFile kind, quint32 version);
    quint32 askSpritesVersion(quint32 version);
    QString makeBackupFolder(const QString &defFile);
    void markRestored();
    void copyToBackup(const QString &source, const QString &name);
    void reportBadBytes(const QSyntaxTextEditor &doc);
    // A file that could not be read or written: an error in the issues (unless
    // `listed`, when a reader has already put it there) and a failure.
    void fail(const QString &path, const QString &text, bool listed = false);

    // How the whole project is written to a folder: Save As is a real save
    // (names and flags follow the new files), a backup and a test copy change
    // nothing in the project; only a test copy is written in a hurry.
    enum class CopyKind { SaveAs, Backup, TestCopy };
    bool writeProject(const QString &folder, const QString &defName, CopyKind kind, bool asUtf8 = false);
    QString targetIn(const QString &folder, const QString &name);
    bool copyOriginal(const QString &source, const QString &target, QString *error);
    bool copyFile(const QString &source, const QString &target);
    bool saveText(QSyntaxTextEditor &doc, const QString &path, bool asUtf8, bool asCopy);
    // The animation and sound slots, written to `target`.
    bool writeAnimations(const QString &target, const QString &original, bool real = false, bool asUtf8 = false);
    bool writeSounds(const QString &target, const QString &original, bool real = false);
    bool loadSounds(const QString &path, bool temporary);

    // The sprite slot, in one place.
    bool loadPalette(const QString &path, int number, QRGBPal *colors);
    bool loadSprites(const QString &path, bool temporary, uint position, uint total);
    bool spritesEmpty() const;
    bool spritesModified() const;
    quint32 spritesVersion() const;
    QString spritesFile() const;
    // `temporary` leaves the store as it was (no name, no flag); only test
    // copies skip the LZ5 match search (`quick`).
    bool writeSprites(const QString &path, quint32 version, bool temporary, bool quick = false);
    QString spritesLoadFailure(const QString &path, qsizetype messagesBefore, bool *listed) const;
    const QRGBPal *palette(int number) const;
    bool writePalette(const QRGBPal &colors, const QString &path);

    // The animation slot of a character (stages keep theirs in the DEF).
    bool loadAnimations(const QString &path, uint codepage, bool temporary);

    QList<QSyntaxTextEditor *> m_states;
    QMap<QString, QString> m_paths;
    QMessages m_messages;
    QSyntaxTextEditor m_definitions;
    QSprites m_sprites;
    QAnimations m_animations;
    QSyntaxTextEditor m_commands;
    QSounds m_sounds;
    QDefAnimations m_defAnimations;
    QProjectType m_type = QProjectType::Character;
    quint32 m_version = DefaultVersion;
    int m_localWidth = 320;
    int m_localHeight = 240;

    QProjectSettings m_settings;
    QProjectDefFiles m_defFiles;
    // Number in palette group 1 of each palette file read, by its DEF name.
    QHash<QString, int> m_paletteNumbers;
    QString m_backup;     // backup folder of the load under way
    QString m_lastBackup;
    QStringList m_failures;
    bool m_stopped = false;
    bool m_restored = false; // a backup was read back and is not saved yet
    QString m_restoredAnimations; // the backup's animation file it came from
    QString m_spritesError; // what the sprite store said of its last failure
};
