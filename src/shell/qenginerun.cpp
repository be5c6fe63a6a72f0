#include "qenginerun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {

const QRegularExpression &placeholderPattern()
{
    static const QRegularExpression pattern(QStringLiteral("%(\\d{1,2})"));
    return pattern;
}

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

QEngineRun::QEngineRun(const QMugenModel::Engine &engine, QObject *parent)
    : QObject(parent)
    , m_engine(engine)
{
    // Engines and wine talk a lot; nobody reads it, so none of it piles up here.
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::started, this, &QEngineRun::started);
    connect(&m_process, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        if (m_ended)
            return;
        end();
        emit finished(exitCode, status == QProcess::CrashExit);
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart || m_ended)
            return;
        end();
        emit failed(m_process.errorString());
    });
}

QEngineRun::~QEngineRun()
{
    if (m_program.isEmpty() || m_ended)
        return;
    // The program closes while the engine runs: the engine goes with it, and so do the copies.
    m_ended = true;
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
    removeCopies();
}

QList<int> QEngineRun::placeholders(const QString &params)
{
    QList<int> numbers;
    QRegularExpressionMatchIterator it = placeholderPattern().globalMatch(params);
    while (it.hasNext()) {
        const int n = it.next().captured(1).toInt();
        if (!numbers.contains(n))
            numbers << n;
    }
    return numbers;
}

bool QEngineRun::splitParameters(const QString &params, QStringList *arguments)
{
    QStringList parts;
    QString current;
    bool quoted = false;
    bool any = false; // "" is an empty argument of its own
    for (const QChar c : params) {
        if (c == QLatin1Char('"')) {
            quoted = !quoted;
            any = true;
        } else if (!quoted && c.isSpace()) {
            if (any)
                parts << current;
            current.clear();
            any = false;
        } else {
            current += c;
            any = true;
        }
    }
    if (quoted)
        return false;
    if (any)
        parts << current;
    if (arguments)
        *arguments = parts;
    return true;
}

QString QEngineRun::substitute(const QString &argument, const QMap<int, QString> &names)
{
    QString result;
    qsizetype last = 0;
    QRegularExpressionMatchIterator it = placeholderPattern().globalMatch(argument);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        const int n = m.captured(1).toInt();
        if (!names.contains(n))
            continue;
        result += argument.mid(last, m.capturedStart() - last) + names.value(n);
        last = m.capturedEnd();
    }
    return result + argument.mid(last);
}

QString QEngineRun::copyName(int position)
{
    return QStringLiteral("bf3_%1").arg(position);
}

bool QEngineRun::isCopyName(const QString &name)
{
    static const QRegularExpression pattern(QStringLiteral("^bf3_\\d+$"));
    return pattern.match(name).hasMatch();
}

QString QEngineRun::engineFolder() const
{
    return QFileInfo(m_engine.exe).absolutePath();
}

QString QEngineRun::charsFolder() const
{
    return engineFolder() + QStringLiteral("/chars");
}

QString QEngineRun::copyFolder(int position) const
{
    return charsFolder() + QLatin1Char('/') + copyName(position);
}

QList<int> QEngineRun::placeholders() const
{
    return splitParameters(m_engine.params, nullptr) ? placeholders(m_engine.params) : QList<int>();
}

QString QEngineRun::problem() const
{
    const QString name = m_engine.name.isEmpty() ? tr("the engine") : m_engine.name;
    if (m_engine.exe.trimmed().isEmpty())
        return tr("No executable is set for %1.").arg(name);
    const QFileInfo exe(m_engine.exe);
    if (!exe.isFile())
        return tr("The executable of %1 doesn't exist: %2").arg(name, native(m_engine.exe));
    if (m_engine.launcher.trimmed().isEmpty()) {
        if (!exe.isExecutable())
            return tr("%1 can't be run as a program. Make it executable, or give %2 a launcher such as "
                      "wine for an engine made for Windows.")
                .arg(native(m_engine.exe), name);
    } else {
        const QStringList launcher = QProcess::splitCommand(m_engine.launcher);
        const QString program = launcher.value(0);
        const bool found = program.contains(QLatin1Char('/'))
                               ? QFileInfo(program).isFile() && QFileInfo(program).isExecutable()
                               : !QStandardPaths::findExecutable(program).isEmpty();
        if (!found)
            return tr("The launcher of %1 can't be found: %2").arg(name, program);
    }
    if (!QFileInfo(charsFolder()).isDir())
        return tr("The folder of %1 has no chars folder, where the test copies go: %2")
            .arg(name, native(charsFolder()));
    return QString();
}

bool QEngineRun::removeCopy(const QString &path)
{
    const QFileInfo info(path);
    // A link goes as a link, so that nothing outside the chars folder is touched.
    if (info.isSymLink())
        return QFile::remove(path);
    if (!info.exists())
        return true;
    if (!info.isDir())
        return false;
    return QDir(path).removeRecursively();
}

QStringList QEngineRun::removeStaleCopies() const
{
    QStringList failures;
    const QDir chars(charsFolder());
    for (const QFileInfo &info :
         chars.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System)) {
        if (isCopyName(info.fileName()) && !removeCopy(info.filePath()))
            failures << tr("%1: can't be removed").arg(native(info.filePath()));
    }
    return failures;
}

QStringList QEngineRun::removeCopies() const
{
    QStringList failures;
    const qsizetype count = placeholders().size();
    for (int i = 0; i < count; ++i) {
        const QString path = copyFolder(i);
        if (QFileInfo(path).isDir() && !removeCopy(path))
            failures << tr("%1: can't be removed").arg(native(path));
    }
    return failures;
}

void QEngineRun::start(const QMap<int, QString> &names)
{
    QStringList params;
    splitParameters(m_engine.params, &params);
    for (QString &p : params)
        p = substitute(p, names);
    const QString exe = QFileInfo(m_engine.exe).absoluteFilePath();
    QStringList launcher = QProcess::splitCommand(m_engine.launcher);
    if (launcher.isEmpty()) {
        m_program = exe;
        m_arguments = params;
    } else {
        m_program = launcher.takeFirst();
        m_arguments = launcher << exe << params;
    }
    m_ended = false;
    m_process.setWorkingDirectory(engineFolder());
    m_process.start(m_program, m_arguments);
}

void QEngineRun::end()
{
    m_ended = true;
    removeCopies();
}
