#pragma once

#include <QByteArray>
#include <QString>
#include <array>

class QDataStream;
class QIODevice;

// A store that carries a real image of itself in a bug report (today the
// animation store). It writes and reads its own section of the stream.
class QBugReportSection
{
public:
    virtual ~QBugReportSection() = default;
    virtual void writeBugReport(QDataStream &out) const = 0;
    // Replaces the store's content; false (with the stream's status set or
    // not) if the section is damaged.
    virtual bool readBugReport(QDataStream &in) = 0;
};

// A bug-report package: the program's log, the user's description and, per
// affected editor, that editor's data. A plain QDataStream in the library's
// default stream version, with neither magic nor version field:
//   QByteArray  log, compressed with qCompress at the default level
//   QString     description
//   6 x bool    flags, in Editor order
//   per set flag: the animation store's own section for Animations, one int 0
//   for every other editor.
class QBugReport
{
public:
    enum Editor { Definitions, Commands, Animations, Sprites, States, Sounds, EditorCount };
    using Flags = std::array<bool, EditorCount>;

    QByteArray log; // uncompressed
    QString description;
    Flags flags{};

    // Writes the package. With the Animations flag set but no section to write
    // it, the flag is written cleared, so that the package stays readable.
    bool write(QIODevice &device, const QBugReportSection *animations, QString *error = nullptr) const;
    // Reads a package. Log, description and flags are filled as far as they
    // could be read even when a later section fails. A log whose compressed
    // bytes are damaged reads as empty.
    bool read(QIODevice &device, QBugReportSection *animations, QString *error = nullptr);

    // Makes a package at `target` from the log file at `logPath`, through a
    // temporary file: a failed write leaves an older package as it was.
    static bool make(const QString &target, const QString &logPath, const QString &description, const Flags &flags,
                     const QBugReportSection *animations, QString *error = nullptr);
    // Restores a package: the log to <dir>/log_restore.txt, the description to
    // <dir>/bug_descr.txt (both overwritten), the animation section into
    // `animations`. `report`, if given, receives what was read.
    static bool restore(const QString &package, const QString &dir, QBugReportSection *animations,
                        QString *error = nullptr, QBugReport *report = nullptr);

    static QString fileFilter();
    // qUncompress with a sanity check of the announced size, so that a damaged
    // header cannot ask for gigabytes.
    static QByteArray uncompressLog(const QByteArray &compressed);
};
