// New, open, close, save and backup of projects, and the questions projects ask.
#include "shell/qinterface.h"

#include "qeditorregistry.h"
#include "qwindowlayout.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/errordlg.h"
#include "shell/qaskuser.h"
#include "shell/qhistorymanager.h"
#include "shell/qprogress.h"
#include "sprites/qpalettefile.h"
#include "sprites/qsprites.h"
#include "shell/savespr.h"

#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMainWindow>
#include <QTabBar>

namespace {
constexpr quint32 kSff101 = 0x01000100;
constexpr quint32 kSff201 = 0x02000100;
} // namespace

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
    bool loaded;
    {
        QProgress progress(tr("Loading project..."), m_window);
        progress.attach(project);
        loaded = project->fromFile(fileName, uint(configString("default_codepage").toUInt()),
                                   configFlag("backup_onload", false), false);
    }
    if (!loaded) {
        delete project;
        return;
    }
    addProjectTab(project);
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
    bool saved;
    {
        QProgress progress(tr("Saving project..."), m_window);
        progress.attach(project);
        saved = project->toFile();
    }
    if (!saved) {
        fileSaveAs();
        return;
    }
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
    const bool utf8 = QAskUser::question(
        m_window, tr("Save as UTF-8"),
        tr("You want to save the file as UTF-8? This ensures that all characters are saved in the same form in "
           "which they are viewed in the program. Otherwise, the source encoding detected when the file was "
           "opened will be used."));
    {
        QProgress progress(tr("Saving project..."), m_window);
        progress.attach(project);
        project->saveAs(name, utf8);
    }
    askPaletteSaves(project, tr("Palettes"), true);
    m_registry->updateEditorName();
}

void QInterface::askPaletteSaves(QProject *project, const QString &title, bool oneByOne)
{
    QSprites *sprites = project->sprites();
    if (project->type() != QProjectType::Character || sprites->version != kSff101
        || !configFlag("ask_save_palettes", true))
        return;
    if (!QAskUser::question(m_window, title,
                            tr("Do you want to save the palettes of the group 1 based on the definitions (palette "
                               "1,x = palx in DEF)?\nChoose No to ignore palettes.")))
        return;

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
                sprites->savePaletteFile(i, file);
        }
        return;
    }

    // The names the DEF gives: pal1 is palette 1,1 and so on.
    const QProjectDefFiles files = project->scanDef(project->definitions()->fileName());
    for (int i = 0; i < files.palettes.size(); ++i) {
        const QString file = QProject::resolveFile(files.folder, files.palettes.at(i));
        QDir().mkpath(QFileInfo(file).absolutePath());
        const int index = sprites->findPalette(0, 1, i + 1);
        if (index >= 0)
            sprites->savePaletteFile(index, file);
    }
}

void QInterface::fileBackup()
{
    if (!m_currentProject)
        return;
    QProgress progress(tr("Creating backup..."), m_window);
    progress.attach(m_currentProject);
    m_currentProject->backup();
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
    {
        QProgress progress(tr("Loading backup..."), m_window);
        progress.attach(project);
        project->fromFile(path, configString("default_codepage").toUInt(), false, true);
    }
    setCurrentProject(project);
    projTypeChanged(project);
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
