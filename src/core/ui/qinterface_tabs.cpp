// The tab bar of open projects: creation, switching, moving and closing.
#include "core/ui/qinterface.h"

#include "core/qappobjects.h"
#include "core/qmugenmodel.h"
#include "core/qproject.h"
#include "core/ui/errordlg.h"
#include "core/ui/projdlg.h"
#include "core/ui/qaskuser.h"
#include "core/ui/qinterfaceeditor.h"
#include "scripting/qscriptmanager.h"
#include "sprites/qsprites.h"

extern "C" {
#include <lua.h>
}

#include <QCoreApplication>
#include <QMainWindow>
#include <QTabBar>

void QInterface::newProject(bool withTemplate)
{
    QString chosen;
    if (withTemplate) {
        const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/scripts/project");
        ProjDlg dlg(ProjDlg::findTemplates(folder), folder, m_window);
        if (QAskUser::exec(&dlg) != QDialog::Accepted)
            return;
        chosen = dlg.chosenTemplate();
    }

    QProject *project = createProject();
    if (!chosen.isEmpty()) {
        bool kept = false;
        QScriptManager *scripts = Bf::scripts;
        if (scripts && scripts->load(QStringLiteral("project/") + chosen + QStringLiteral(".lua"))) {
            lua_State *L = scripts->state();
            lua_getglobal(L, "template");
            lua_pushlightuserdata(L, project);
            if (lua_pcall(L, 1, 1, 0) == 0) {
                kept = lua_toboolean(L, -1) != 0;
                lua_pop(L, 1);
            } else {
                QAskUser::critical(m_window, tr("Script error"), QString::fromUtf8(lua_tostring(L, -1)));
                lua_pop(L, 1);
            }
        } else if (scripts) {
            QAskUser::critical(m_window, tr("Script error"), scripts->errorMessage());
        }
        if (scripts)
            scripts->close();
        if (!kept) {
            delete project;
            return;
        }
        addProjectTab(project);
        return;
    }
    ++m_projectCounter;
    addProjectTab(project);
    m_tabBar->setTabText(int(m_projects.indexOf(project)), tr("Project %1").arg(m_projectCounter));
}

QProject *QInterface::createProject()
{
    QProjectSettings settings;
    if (Bf::config) {
        settings = QProjectSettings::fromMap(Bf::config->map);
        settings.storePath = [](const QString &key, const QString &value) {
            if (Bf::config)
                Bf::config->map[key] = value;
        };
    }
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
    const int tab = m_tabBar->addTab(name.isEmpty() ? tr("Project") : name);
    m_tabBar->setTabToolTip(tab, project->definitions()->fileName());
    m_tabBar->setCurrentIndex(tab);
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
    if (!canCloseProject(project))
        return false;
    if (m_projects.size() == 1)
        newProject(false);
    const int at = int(m_projects.indexOf(project));
    m_projects.removeAt(at);
    if (m_currentProject == project)
        m_currentProject = nullptr;
    m_tabBar->removeTab(at);
    if (!m_currentProject && m_tabBar->currentIndex() >= 0)
        projTabsChanged(m_tabBar->currentIndex());
    delete project;
    return true;
}

void QInterface::changeTabName(QProject *project, const QString &name)
{
    const int at = int(m_projects.indexOf(project));
    if (at < 0 || name.isEmpty())
        return;
    m_tabBar->setTabText(at, name);
    m_tabBar->setTabToolTip(at, project->definitions()->fileName());
}

void QInterface::projTypeChanged(QProject *project)
{
    if (!project || project != m_currentProject)
        return;
    applyProjectType(int(project->type()));
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
