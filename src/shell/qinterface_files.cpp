// New, open, close, save and backup of projects, and the questions projects ask.
#include "shell/qinterface.h"

#include "qeditorregistry.h"
#include "qwindowlayout.h"

#include "base/qlog.h"
#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "project/qbakmanager.h"
#include "shell/bakdlg.h"
#include "shell/enginedialogs.h"
#include "shell/errordlg.h"
#include "shell/qenginerun.h"
#include "shell/qaskuser.h"
#include "shell/qhistorymanager.h"
#include "shell/qprogress.h"
#include "sprites/qpalettefile.h"
#include "sprites/qsprites.h"
#include "shell/savespr.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <QTabBar>

QString QInterface::configString(const char *key) const
{
    return m_objects.config ? m_objects.config->text(QString::fromLatin1(key)) : QString();
}

bool QInterface::configFlag(const char *key, bool fallback) const
{
    return m_objects.config ? m_objects.config->flag(QString::fromLatin1(key), fallback) : fallback;
}

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
                                 configFlag("backup_onload", false), false);
    });
    logMessages(tr("Open project - %1").arg(fileName), *project->messages());
    if (!loaded) {
        reportFailures(tr("Open project"), tr("The project can't be opened."), project->failures());
        delete project;
        return;
    }
    reportFailures(tr("Open project"), tr("Some files of the project could not be read or backed up:"),
                   project->failures());
    addProjectTab(project);
    if (!project->lastBackupFolder().isEmpty())
        pruneBackups(project);
    if (m_history)
        m_history->add(QFileInfo(fileName).absoluteFilePath());
    if (m_objects.config)
        m_objects.config->set(QStringLiteral("proj_path"), QFileInfo(fileName).absolutePath());
    if (project->messages()->issueCount() > 0 && m_issues)
        m_issues->show();
    // The empty project made at start stands in the way of the first real one.
    if (m_projects.size() == 2 && isUntouched(m_projects.first()))
        projTabsClosed(0);
}

void QInterface::openFiles(const QStringList &fileNames)
{
    for (const QString &name : fileNames) {
        const QFileInfo info(name);
        const QString shown = QDir::toNativeSeparators(name);
        if (!info.isFile()) {
            QAskUser::warning(m_window, tr("Open project"), tr("%1 could not be found.").arg(shown));
            continue;
        }
        QString def = info.absoluteFilePath();
        if (info.suffix().compare(QLatin1String("def"), Qt::CaseInsensitive) != 0) {
            def = QProject::definitionFor(def);
            if (def.isEmpty()) {
                QAskUser::warning(m_window, tr("Open project"),
                                  tr("No DEF file beside %1 names it, so there is no project to open it with.")
                                      .arg(shown));
                continue;
            }
        }
        openProject(def);
    }
}

void QInterface::fileClose()
{
    if (m_layout->tabBar()->currentIndex() >= 0)
        projTabsClosed(m_layout->tabBar()->currentIndex());
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
    log((saved ? tr("Saved project - %1") : tr("Project not saved completely - %1")).arg(def));
    reportFailures(tr("Save project"), tr("The project could not be saved completely:"), project->failures());
    if (saved)
        askPaletteSaves(project, tr("Save as..."), false);
    m_registry->updateEditorName();
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
    log((saved ? tr("Saved project as %1") : tr("Project not saved completely as %1")).arg(name));
    reportFailures(tr("Save project"), tr("The project could not be saved completely:"), project->failures());
    if (saved)
        askPaletteSaves(project, tr("Palettes"), true);
    m_registry->updateEditorName();
}

void QInterface::askPaletteSaves(QProject *project, const QString &title, bool oneByOne)
{
    if (!project->keepsPalettesInDefFiles() || !configFlag("ask_save_palettes", true))
        return;
    if (!QAskUser::question(m_window, title,
                            tr("Do you want to save the palettes of the group 1 based on the definitions (palette "
                               "1,x = palx in DEF)?\nChoose No to ignore palettes.")))
        return;
    if (!oneByOne) {
        reportFailures(title, tr("Some palettes could not be saved:"), project->writeDefPalettes());
        return;
    }
    // A new name for each palette of group 1.
    QStringList failures;
    const QSprites *sprites = project->sprites();
    for (int i = 0; i < sprites->paletteCount(); ++i) {
        const QPaletteInfo info = sprites->paletteInfo(i);
        if (info.group != 1)
            continue;
        const QString file = QAskUser::saveFileName(m_window, tr("Save as...") + tr(" 1, %1").arg(info.number),
                                                    project->path(QStringLiteral("proj_path")),
                                                    tr("Adobe Color Table (*.act)"));
        const QString failure = file.isEmpty() ? QString() : project->writePaletteFile(i, file);
        if (!failure.isEmpty())
            failures << failure;
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
    log((done ? tr("Backup - %1") : tr("Backup not complete - %1")).arg(project->lastBackupFolder()));
    reportFailures(tr("Backup"), tr("The backup is not complete:"), project->failures());
    if (done)
        pruneBackups(project);
}

void QInterface::pruneBackups(QProject *project)
{
    const int keep = m_objects.config ? m_objects.config->number(QString::fromLatin1(BackupKeepKey)) : 0;
    const QStringList failures = QBakManager::prune(project->definitions()->fileName(), keep);
    reportFailures(tr("Backup"), tr("Some old backups could not be removed:"), failures);
}

void QInterface::fileLoadBackup()
{
    QProject *project = m_currentProject;
    if (!project)
        return;
    BakDlg dlg(m_window, project->definitions()->fileName());
    if (dlg.backupCount() == 0) {
        QAskUser::message(m_window, QMessageBox::Information, tr("Load backup"),
                          tr("This project has no backups yet."));
        return;
    }
    const QString keepKey = QString::fromLatin1(BackupKeepKey);
    if (m_objects.config)
        dlg.setKeep(m_objects.config->number(keepKey));
    const bool accepted = QAskUser::exec(&dlg) == QDialog::Accepted;
    // The number kept is a setting of its own: it counts however the box closed.
    if (m_objects.config)
        m_objects.config->set(keepKey, dlg.keep());
    const QString path = dlg.chosenFile();
    if (!accepted || path.isEmpty())
        return;
    const bool loaded = runProjectWork(project, tr("Loading backup..."), [&] {
        return project->fromFile(path, configString("default_codepage").toUInt(), false, true);
    });
    logMessages(tr("Load backup - %1").arg(path), *project->messages());
    reportFailures(tr("Load backup"),
                   loaded ? tr("Some files of the backup could not be read:") : tr("The backup can't be loaded."),
                   project->failures());
    setCurrentProject(project);
    projTypeChanged(project);
    m_registry->updateEditorName();
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
        log(QStringLiteral("%1: %2").arg(title, line));
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
    const QString title = tr("Run in M.U.G.E.N.");
    // One run at a time: its copies are in the engine's folder until it ends.
    if (m_engineRun) {
        QAskUser::message(m_window, QMessageBox::Information, title,
                          tr("M.U.G.E.N. is still running the last test. Close it before you start another one."));
        return;
    }
    QMugenModel *config = m_objects.config;
    if (!config || config->engines.isEmpty()) {
        QAskUser::warning(m_window, tr("Warning!"),
                          tr("Oops, you need to configure a M.U.G.E.N. first. Do it in the Tools / Options."));
        return;
    }
    QMugenModel::Engine engine = config->engines.first();
    if (config->engines.size() > 1) {
        MugRunDlg dlg(config, m_window);
        if (QAskUser::exec(&dlg) != QDialog::Accepted || dlg.engineRow() < 0)
            return;
        engine = dlg.engine();
    }
    auto *run = new QEngineRun(engine, this);
    if (run->placeholders().isEmpty()) {
        delete run;
        QAskUser::warning(m_window, tr("Warning!"),
                          tr("Oops, wrong parameters on the M.U.G.E.N. configuration. Check it in the Tools / "
                             "Options."));
        return;
    }
    const QString problem = run->problem();
    if (!problem.isEmpty()) {
        delete run;
        QAskUser::warning(m_window, title, problem);
        return;
    }
    // Copies a crash of an earlier run left behind would be mistaken for this run's.
    reportFailures(title, tr("Test copies of an earlier run could not be removed:"), run->removeStaleCopies());
    QMap<int, QString> names;
    if (!writeTestCopies(run, &names)) {
        run->removeCopies();
        delete run;
        return;
    }

    m_engineRun = run;
    connect(run, &QEngineRun::started, this, [this, run] {
        log(tr("Run in M.U.G.E.N. - %1 %2").arg(run->program(), run->arguments().join(QLatin1Char(' '))));
        // A field of its own: passing status tips of menus would wipe a message.
        auto *running = new QLabel(tr("%1 is running the test...").arg(run->engine().name));
        running->setObjectName(QStringLiteral("engineRunning"));
        m_window->statusBar()->insertPermanentWidget(0, running);
        running->show();
    });
    connect(run, &QEngineRun::finished, this, [this](int exitCode, bool crashed) {
        log(crashed ? tr("M.U.G.E.N. ended abnormally") : tr("M.U.G.E.N. ended - %1").arg(exitCode));
        engineRunDone(QString());
    });
    connect(run, &QEngineRun::failed, this, [this](const QString &reason) { engineRunDone(reason); });
    run->start(names);
}

bool QInterface::writeTestCopies(QEngineRun *run, QMap<int, QString> *names)
{
    const QList<int> numbers = run->placeholders();
    for (int i = 0; i < numbers.size(); ++i) {
        const int n = numbers.at(i);
        // A placeholder for a tab that isn't open stays as it is in the line.
        if (n > m_projects.size())
            continue;
        QProject *project = n == 0 ? m_currentProject : m_projects.at(n - 1);
        if (!project)
            continue;
        const QString name = QEngineRun::copyName(i);
        const bool written = runProjectWork(project, tr("Saving project for testing..."), [&] {
            return project->toTemporary(run->copyFolder(i) + QLatin1Char('/'), name);
        });
        if (!written) {
            reportFailures(tr("Run in M.U.G.E.N."), tr("The test copy could not be written, so the test is off:"),
                           project->failures());
            return false;
        }
        names->insert(n, name);
    }
    return true;
}

void QInterface::engineRunDone(const QString &failure)
{
    QEngineRun *run = m_engineRun;
    m_engineRun = nullptr;
    if (!run)
        return;
    if (auto *running = m_window->statusBar()->findChild<QLabel *>(QStringLiteral("engineRunning")))
        running->deleteLater();
    if (!failure.isEmpty()) {
        log(tr("M.U.G.E.N. could not be started - %1").arg(failure));
        QAskUser::warning(m_window, tr("Run in M.U.G.E.N."),
                          tr("%1 could not be started: %2").arg(QDir::toNativeSeparators(run->program()), failure));
    }
    run->deleteLater();
    refreshCurrentEditor();
    emit engineRunEnded();
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
        if (sprites->paletteCount() == 0) {
            // Without palettes only true-colour sprites of a 2.01 file can be written.
            bool needsPalette = version != QSffVersion::V201;
            for (int i = 0; !needsPalette && i < sprites->count(); ++i)
                needsPalette = sprites->item(i)->imageFormat == QImage::Format_Indexed8;
            if (needsPalette)
                return refuse(tr("Save SFF"), tr("You can't save this SFF without palettes."));
        }
        // What the version can't hold is said before anything is written.
        const QList<uint> changed = sprites->spritesChangedBy(version, project->type() == QProjectType::Character);
        if (!changed.isEmpty()) {
            QStringList names;
            for (uint i : changed.mid(0, 20))
                names << QStringLiteral("%1,%2").arg(sprites->item(int(i))->info.group).arg(sprites->item(int(i))->info.number);
            if (changed.size() > names.size())
                names << QStringLiteral("...");
            if (!QAskUser::question(m_window, tr("Save SFF"),
                                    tr("%1 sprites will show other colours in this version: %2.\n\nSave anyway?")
                                        .arg(changed.size())
                                        .arg(names.join(QStringLiteral("; ")))))
                return false;
        }
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
