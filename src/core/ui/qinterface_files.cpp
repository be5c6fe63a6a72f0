// New, open, close, save and backup of projects, and the questions projects ask.
#include "core/ui/qinterface.h"

#include "core/qappobjects.h"
#include "core/qlog.h"
#include "core/qmugenmodel.h"
#include "core/qproject.h"
#include "core/ui/errordlg.h"
#include "core/ui/qaskuser.h"
#include "core/ui/qhistorymanager.h"
#include "core/ui/qprogress.h"
#include "sprites/qpalettefile.h"
#include "sprites/qsprites.h"
#include "sprites/ui/savespr.h"

#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMainWindow>
#include <QTabBar>

namespace {
constexpr quint32 kSff101 = 0x01000100;
constexpr quint32 kSff201 = 0x02000100;

QString configString(const char *key)
{
    return Bf::config ? Bf::config->map.value(QString::fromLatin1(key)).toString() : QString();
}

bool configBool(const char *key, bool fallback)
{
    if (!Bf::config)
        return fallback;
    // Values read from the file are strings: "true"/"false" or numbers; a
    // missing or empty value keeps the default.
    const QString s = Bf::config->map.value(QString::fromLatin1(key)).toString().trimmed().toLower();
    if (s.isEmpty())
        return fallback;
    return s == QLatin1String("true") || s.toInt() != 0;
}
} // namespace

void QInterface::fileNew()
{
    newProject(true);
}

void QInterface::fileOpen()
{
    const QString name = QAskUser::openFileName(m_window, tr("Open project"), configString("proj_path"),
                                                 tr("Definitions (*.def)"));
    if (!name.isEmpty())
        openProject(name);
}

void QInterface::openProject(const QString &fileName)
{
    if (fileName.isEmpty())
        return;
    QProject *project = createProject();
    const bool loaded = runProjectWork(project, tr("Loading project..."), [&] {
        return project->fromFile(fileName, configString("default_codepage").toUInt(),
                                 configBool("backup_onload", false), false);
    });
    QLog::noteMessages(tr("Open project - %1").arg(fileName), *project->messages());
    if (!loaded) {
        reportFailures(tr("Open project"), tr("The project can't be opened."), project->failures());
        delete project;
        return;
    }
    reportFailures(tr("Open project"), tr("Some files of the project could not be read or backed up:"),
                   project->failures());
    addProjectTab(project);
    if (m_history)
        m_history->add(QFileInfo(fileName).absoluteFilePath());
    if (Bf::config)
        Bf::config->map[QStringLiteral("proj_path")] = QFileInfo(fileName).absolutePath();
    if (project->messages()->issueCount() > 0 && m_issues)
        m_issues->show();
    // The empty project made at start stands in the way of the first real one.
    if (m_projects.size() == 2 && isUntouched(m_projects.first()))
        projTabsClosed(0);
}

void QInterface::fileClose()
{
    if (m_tabBar->currentIndex() >= 0)
        projTabsClosed(m_tabBar->currentIndex());
}

void QInterface::fileCloseAll()
{
    for (int i = int(m_projects.size()) - 1; i >= 0; --i)
        projTabsClosed(i);
}

void QInterface::fileCloseAllCurr()
{
    QProject *keep = m_currentProject;
    for (int i = int(m_projects.size()) - 1; i >= 0; --i) {
        if (i < m_projects.size() && m_projects.at(i) != keep)
            projTabsClosed(i);
    }
}

void QInterface::fileSave()
{
    QProject *project = m_currentProject;
    if (!project)
        return;
    // A project never saved has no name yet: that is Save As.
    const QString def = project->definitions()->fileName();
    if (def.isEmpty()) {
        fileSaveAs();
        return;
    }
    const bool saved = runProjectWork(project, tr("Saving project..."), [project] { return project->toFile(); });
    QLog::note((saved ? tr("Saved project - %1") : tr("Project not saved completely - %1")).arg(def));
    reportFailures(tr("Save project"), tr("The project could not be saved completely:"), project->failures());
    if (saved)
        askPaletteSaves(project, tr("Save as..."), false);
    updateEditorName();
}

void QInterface::fileSaveAs()
{
    QProject *project = m_currentProject;
    if (!project)
        return;
    const QString name = saveFileName(QProjectFile::Definitions, project->path(QStringLiteral("proj_path")));
    if (name.isEmpty())
        return;
    // The other files go beside the DEF under the names it gives them: say
    // which files of someone else's they would replace.
    const QStringList replaced = project->filesReplacedBySaveAs(name);
    if (!replaced.isEmpty()) {
        QStringList shown = replaced.mid(0, 12);
        if (replaced.size() > shown.size())
            shown << tr("... and %n more", nullptr, int(replaced.size() - shown.size()));
        if (!QAskUser::question(m_window, tr("Save project"),
                                tr("These files already exist and will be replaced:\n\n%1\n\nDo you want to go on?")
                                    .arg(shown.join(QLatin1Char('\n')))))
            return;
    }
    const bool utf8 = QAskUser::question(
        m_window, tr("Save as UTF-8"),
        tr("You want to save the file as UTF-8? This ensures that all characters are saved in the same form in "
           "which they are viewed in the program. Otherwise, the source encoding detected when the file was "
           "opened will be used."));
    const bool saved =
        runProjectWork(project, tr("Saving project..."), [&] { return project->saveAs(name, utf8); });
    QLog::note((saved ? tr("Saved project as %1") : tr("Project not saved completely as %1")).arg(name));
    reportFailures(tr("Save project"), tr("The project could not be saved completely:"), project->failures());
    if (saved)
        askPaletteSaves(project, tr("Palettes"), true);
    updateEditorName();
}

void QInterface::askPaletteSaves(QProject *project, const QString &title, bool oneByOne)
{
    QSprites *sprites = project->sprites();
    if (project->type() != QProjectType::Character || sprites->version != kSff101
        || !configBool("ask_save_palettes", true))
        return;
    if (!QAskUser::question(m_window, title,
                            tr("Do you want to save the palettes of the group 1 based on the definitions (palette "
                               "1,x = palx in DEF)?\nChoose No to ignore palettes.")))
        return;

    QStringList failures;
    auto write = [&](int index, const QString &file) {
        const QRGBPal *colors = sprites->paletteColors(index);
        QString error;
        QDir().mkpath(QFileInfo(file).absolutePath());
        if (colors && !QPaletteFile::saveAct(file, *colors, &error))
            failures << QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(file), error);
    };
    if (oneByOne) {
        // A new name for each palette of group 1.
        for (int i = 0; i < sprites->paletteCount(); ++i) {
            const QPaletteInfo info = sprites->paletteInfo(i);
            if (info.group != 1)
                continue;
            const QString file = QAskUser::saveFileName(m_window, tr("Save as...") + tr(" 1, %1").arg(info.number),
                                                        project->path(QStringLiteral("proj_path")),
                                                        tr("Adobe Color Table (*.act)"));
            if (!file.isEmpty())
                write(i, file);
        }
    } else {
        // The names the DEF gives: pal1 is palette 1,1 and so on.
        const QProjectDefFiles files = project->scanDef(project->definitions()->fileName());
        for (int i = 0; i < files.palettes.size(); ++i) {
            const int index = sprites->findPalette(0, 1, i + 1);
            if (index >= 0)
                write(index, QProject::resolveFile(files.folder, files.palettes.at(i)));
        }
    }
    reportFailures(title, tr("Some palettes could not be saved:"), failures);
}

void QInterface::fileBackup()
{
    QProject *project = m_currentProject;
    if (!project)
        return;
    if (project->definitions()->fileName().isEmpty()) {
        QAskUser::message(m_window, QMessageBox::Information, tr("Backup"),
                          tr("Save the project first: its backups are kept beside its DEF file."));
        return;
    }
    const bool done = runProjectWork(project, tr("Creating backup..."), [project] { return project->backup(); });
    QLog::note((done ? tr("Backup - %1") : tr("Backup not complete - %1")).arg(project->lastBackupFolder()));
    reportFailures(tr("Backup"), tr("The backup is not complete:"), project->failures());
}

void QInterface::fileLoadBackup()
{
    QProject *project = m_currentProject;
    if (!project)
        return;
    const QString def = project->definitions()->fileName();
    const QFileInfo info(def);
    QStringList stamps;
    if (!def.isEmpty() && info.exists()) {
        const QDir backups(info.canonicalPath() + QStringLiteral("/backup"));
        for (const QString &stamp : backups.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
            if (!stamp.startsWith(QLatin1Char('.')))
                stamps.append(stamp);
        }
    }
    if (stamps.isEmpty()) {
        QAskUser::message(m_window, QMessageBox::Information, tr("Load backup"),
                          tr("This project has no backups yet."));
        return;
    }
    QInputDialog dlg(m_window);
    dlg.setWindowTitle(tr("Load backup"));
    dlg.setLabelText(tr("Choose a backup to be loaded:"));
    dlg.setComboBoxItems(stamps);
    dlg.setOption(QInputDialog::UseListViewForComboBoxItems);
    if (QAskUser::exec(&dlg) != QDialog::Accepted || dlg.textValue().isEmpty())
        return;
    const QString path = info.canonicalPath() + QStringLiteral("/backup/") + dlg.textValue() + QLatin1Char('/')
                         + info.fileName();
    const bool loaded = runProjectWork(project, tr("Loading backup..."), [&] {
        return project->fromFile(path, configString("default_codepage").toUInt(), false, true);
    });
    QLog::noteMessages(tr("Load backup - %1").arg(path), *project->messages());
    reportFailures(tr("Load backup"),
                   loaded ? tr("Some files of the backup could not be read:") : tr("The backup can't be loaded."),
                   project->failures());
    setCurrentProject(project);
    projTypeChanged(project);
}

bool QInterface::runProjectWork(QProject *project, const QString &caption, const std::function<bool()> &work)
{
    QProgress progress(caption, m_window);
    progress.attach(project);
    progress.attach(project->sprites());
    ++m_projectWork;
    const bool done = work();
    --m_projectWork;
    return done;
}

void QInterface::reportFailures(const QString &title, const QString &intro, const QStringList &failures)
{
    if (failures.isEmpty())
        return;
    for (const QString &line : failures)
        QLog::note(QStringLiteral("%1: %2").arg(title, line));
    // A box stays readable: the first files, then how many more.
    constexpr int Shown = 12;
    QStringList lines;
    for (const QString &line : failures.mid(0, Shown))
        lines << QStringLiteral("\u2022 ") + line;
    if (failures.size() > Shown)
        lines << tr("... and %n more", nullptr, int(failures.size() - Shown));
    QAskUser::warning(m_window, title, intro + QStringLiteral("\n\n") + lines.join(QLatin1Char('\n')));
}

void QInterface::spriteOrderWarning(QProject *project, const QList<uint> &sprites)
{
    constexpr int Shown = 40;
    QStringList names;
    for (uint index : sprites) {
        if (names.size() == Shown) {
            names << tr("... and %n more", nullptr, int(sprites.size() - Shown));
            break;
        }
        if (const QSpriteItem *item = project->sprites()->item(int(index)))
            names << QStringLiteral("%1, %2").arg(item->info.group).arg(item->info.number);
    }
    QAskUser::warning(m_window, tr("Wrong sprite order"),
                      tr("Some sprites must be moved to another location to receive the character palette.\n"
                         "Affected sprites:")
                          + QLatin1Char(' ') + names.join(QStringLiteral("; ")));
}

void QInterface::fileRunMugen()
{
    // Runs in the engine come with the engine part of the program; until it
    // is there the command is disabled (see buildProjectMenu).
}

QString QInterface::saveFileName(QProjectFile kind, const QString &folder)
{
    const int k = int(kind);
    if (k < int(QProjectFile::Definitions) || k > int(QProjectFile::Sounds))
        return QString();
    const QString title = kind == QProjectFile::Definitions ? tr("Save project") : tr("Save");
    return QAskUser::saveFileName(m_window, title, folder, QProject::fileFilter(kind));
}

quint32 QInterface::spritesVersionToSave(quint32 version)
{
    SaveSpr dlg(version, m_window);
    if (QAskUser::exec(&dlg) != QDialog::Accepted)
        return 0;
    return dlg.version();
}

bool QInterface::canSave(QProject *project, QProjectFile kind, quint32 version)
{
    if (!project)
        return false;
    auto refuse = [this](const QString &title, const QString &text) {
        QAskUser::warning(m_window, title, text);
        return false;
    };
    switch (kind) {
    case QProjectFile::Animations:
        if (project->animations()->count() == 0)
            return refuse(tr("Save AIR"), tr("You can't save an empty AIR because M.U.G.E.N. will not open it."));
        break;
    case QProjectFile::Sounds:
        if (project->sounds()->count() == 0)
            return refuse(tr("Save SND"), tr("You can't save an empty SND because M.U.G.E.N. will not open it."));
        break;
    case QProjectFile::Sprites: {
        const QSprites *sprites = project->sprites();
        if (sprites->count() == 0)
            return refuse(tr("Save Sprites"),
                          tr("You can't save an empty SFF because M.U.G.E.N. will not open it."));
        if (sprites->paletteCount() > 0)
            break;
        // Without palettes only true-colour sprites of a 2.01 file can be written.
        bool needsPalette = version != kSff201;
        for (int i = 0; !needsPalette && i < sprites->count(); ++i)
            needsPalette = sprites->item(i)->imageFormat == QImage::Format_Indexed8;
        if (needsPalette)
            return refuse(tr("Save SFF"), tr("You can't save this SFF without palettes."));
        break;
    }
    default:
        break;
    }
    return true;
}

void QInterface::charPalette(QRGBPal *palette)
{
    QAskUser::warning(m_window, tr("Palette warning!"),
                      tr("Brawlforge not found the character palette. To view all sprites properly you must "
                         "select an external palette file."));
    const QString folder = m_currentProject ? m_currentProject->path(QStringLiteral("proj_path"))
                                            : configString("proj_path");
    const QString file = QAskUser::openFileName(m_window, tr("Open palette"), folder, QPaletteFile::openFilter());
    if (file.isEmpty() || !palette)
        return;
    QString error;
    if (!QPaletteFile::load(file, palette, &error))
        QAskUser::warning(m_window, tr("Open palette"),
                          error.isEmpty() ? tr("The palette file could not be read.") : error);
}
