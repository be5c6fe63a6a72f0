// The tab bar of open projects: creation, switching, moving and closing.
#include "shell/qinterface.h"

#include "qeditorregistry.h"
#include "qwindowlayout.h"

#include "base/qmugenmodel.h"
#include "project/qproject.h"
#include "shell/errordlg.h"
#include "shell/projdlg.h"
#include "shell/qaskuser.h"
#include "shell/qinterfaceeditor.h"
#include "scripting/qscriptmanager.h"
#include "sprites/qsprites.h"

#include <QCoreApplication>
#include <QMainWindow>
#include <QTabBar>

void QInterface::newProject(bool withTemplate)
{
    QString chosen;
    if (withTemplate) {
        const QString folder = m_objects.scripts ? m_objects.scripts->root() + QStringLiteral("/project") : QString();
        ProjDlg dlg(ProjDlg::findTemplates(folder), folder, m_window);
        if (QAskUser::exec(&dlg) != QDialog::Accepted)
            return;
        chosen = dlg.chosenTemplate();
    }

    QProject *project = createProject();
    if (!chosen.isEmpty()) {
        bool kept = false;
        if (QScriptManager *scripts = m_objects.scripts) {
            if (!scripts->runTemplate(chosen, project, &kept))
                QAskUser::critical(m_window, tr("Script error"), scripts->errorMessage());
            scripts->close();
        }
        if (!kept) {
            delete project;
            return;
        }
        addProjectTab(project);
        return;
    }
    ++m_projectCounter;
    addProjectTab(project);
    m_layout->tabBar()->setTabText(int(m_projects.indexOf(project)), tr("Project %1").arg(m_projectCounter));
}

QProject *QInterface::createProject()
{
    QProjectSettings settings;
    if (QMugenModel *config = m_objects.config) {
        settings = QProjectSettings::fromConfig(*config);
        settings.storePath = [config](const QString &key, const QString &value) { config->set(key, value); };
    }
    settings.undoCache = m_objects.undoCache;
    settings.soundUndoCache = m_objects.soundUndoCache;
    settings.records = m_objects.spriteRecords;
    settings.mugenSyntax = m_objects.mugenSyntax;
    settings.syntaxFormats = m_objects.syntaxFormats;
    settings.fileWatcher = m_objects.fileWatcher;
    auto *project = new QProject(settings);
    connectProject(project);
    return project;
}

void QInterface::connectProject(QProject *project)
{
    // Questions with answers: they must run at once, in the caller's stack.
    connect(project, &QProject::saveFileName, this, &QInterface::saveFileName, Qt::DirectConnection);
    connect(project, &QProject::spritesVersionToSave, this, &QInterface::spritesVersionToSave,
            Qt::DirectConnection);
    connect(project, &QProject::canSave, this, &QInterface::canSave, Qt::DirectConnection);
    connect(project, &QProject::nameChanged, this, &QInterface::changeTabName);
    connect(project, &QProject::typeChanged, this, &QInterface::projTypeChanged);
    connect(project, &QProject::versionChanged, this, &QInterface::projVerChanged);
    connect(project->sprites(), &QSprites::charPalette, this, &QInterface::charPalette, Qt::DirectConnection);
    // A sprite file read or written on its own (not as part of the project)
    // says what went wrong at once.
    connect(project->sprites(), &QSprites::fileError, this, [this](const QString &title, const QString &text) {
        if (m_projectWork == 0)
            QAskUser::critical(m_window, title, text);
    });
    connect(project->sprites(), &QSprites::orderMustBeChanged, this,
            [this, project](const QList<uint> &sprites) { spriteOrderWarning(project, sprites); });
}

void QInterface::addProjectTab(QProject *project)
{
    m_projects.append(project);
    const QString name = project->name();
    const int tab = m_layout->tabBar()->addTab(name.isEmpty() ? tr("Project") : name);
    m_layout->tabBar()->setTabToolTip(tab, project->definitions()->fileName());
    m_layout->tabBar()->setCurrentIndex(tab);
    // The first tab is current as soon as it exists, without a change signal
    // in every case: make sure the switch runs.
    if (m_currentProject != project)
        projTabsChanged(tab);
}

void QInterface::projTabsChanged(int index)
{
    if (index < 0 || index >= m_projects.size())
        return;
    QProject *project = m_projects.at(index);
    if (m_issues)
        m_issues->setModel(project->messages());
    setCurrentProject(project);
    m_currentProject = project;
    projTypeChanged(project);
}

void QInterface::projTabsMoved(int from, int to)
{
    if (from < 0 || to < 0 || from >= m_projects.size() || to >= m_projects.size())
        return;
    m_projects.move(from, to);
}

void QInterface::projTabsClosed(int index)
{
    closeProject(index);
}

bool QInterface::closeProject(int index)
{
    if (index < 0 || index >= m_projects.size())
        return false;
    QProject *project = m_projects.at(index);
    if (!m_registry->canCloseProject(project))
        return false;
    if (m_projects.size() == 1)
        newProject(false);
    const int at = int(m_projects.indexOf(project));
    m_projects.removeAt(at);
    if (m_currentProject == project)
        m_currentProject = nullptr;
    m_layout->tabBar()->removeTab(at);
    if (!m_currentProject && m_layout->tabBar()->currentIndex() >= 0)
        projTabsChanged(m_layout->tabBar()->currentIndex());
    delete project;
    return true;
}

void QInterface::changeTabName(QProject *project, const QString &name)
{
    const int at = int(m_projects.indexOf(project));
    if (at < 0 || name.isEmpty())
        return;
    m_layout->tabBar()->setTabText(at, name);
    m_layout->tabBar()->setTabToolTip(at, project->definitions()->fileName());
}

void QInterface::projTypeChanged(QProject *project)
{
    if (!project || project != m_currentProject)
        return;
    m_registry->applyProjectType(int(project->type()));
    updateProjectStatus();
}

void QInterface::projVerChanged(QProject *project)
{
    if (project && project == m_currentProject)
        updateProjectStatus();
}

bool QInterface::isUntouched(QProject *project)
{
    if (!project)
        return false;
    return project->definitions()->isEmpty() && project->sprites()->count() == 0
           && project->sprites()->paletteCount() == 0 && project->animations()->count() == 0
           && project->commands()->isEmpty() && project->statesCount() == 0 && project->sounds()->count() == 0;
}

void QInterface::releaseProjects()
{
    const QList<QProject *> projects = m_projects;
    m_projects.clear();
    m_currentProject = nullptr;
    qDeleteAll(projects);
}
