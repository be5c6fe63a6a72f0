// The search bar and the multi-line find dialog: both send their requests to
// the current editor through the registry.
#include "shell/qinterface.h"

#include "base/qmugenmodel.h"
#include "qeditorregistry.h"
#include "qwindowlayout.h"
#include "shell/finddlgmlt.h"
#include "shell/qaction2.h"
#include "shell/qquickfind.h"

#include <QMainWindow>
#include <QMenu>

void QInterface::buildFind()
{
    const QList<int> global{QAction2::GlobalScope, -1};
    // The switches, in the order of QQuickFindOption, each kept in the settings.
    struct Switch
    {
        const char *key;
        const char *setting;
        int caption;
        bool fallback;
    };
    const Switch switches[] = {{"quick_search_regexp", "quicksearch_regexp", 328, false},
                               {"quick_search_case", "quicksearch_case", 329, false},
                               {"quick_search_backward", "quicksearch_back", 330, false},
                               {"quick_search_circular", "quicksearch_circular", 331, true}};
    QList<QAction *> options;
    for (const Switch &s : switches) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(s.key), s.caption, true);
        const QString setting = QString::fromLatin1(s.setting);
        a->setChecked(m_objects.config ? m_objects.config->flag(setting, s.fallback) : s.fallback);
        connect(a, &QAction::toggled, this, [this, setting](bool on) {
            if (m_objects.config)
                m_objects.config->map[setting] = on;
        });
        options << a;
    }

    m_quickFind = new QQuickFind(m_window);
    m_quickFind->hide();
    m_quickFind->setOptionActions(options);
    m_layout->addBelowCentre(m_quickFind);
    connect(m_quickFind, &QQuickFind::doFind, m_registry, &QEditorRegistry::editFind);
    connect(m_quickFind, &QQuickFind::doReplace, m_registry, &QEditorRegistry::editReplace);
    connect(m_quickFind, &QQuickFind::closeRequested, this, [this] {
        if (m_viewQuickFind)
            m_viewQuickFind->setChecked(false);
    });

    m_findDialog = new FindDlgMlt(m_window);
    m_findDialog->setObjectName(QStringLiteral("findDialog"));
    m_findDialog->setOptionActions(options);
    registerDialog(QStringLiteral("find_multi"), m_findDialog);
    connect(m_findDialog, &FindDlgMlt::find, m_registry, &QEditorRegistry::editFind);
    connect(m_findDialog, &FindDlgMlt::replace, m_registry, &QEditorRegistry::editReplace);

    // Find next and previous search again for the bar's text, opening the bar.
    QMenu *edit = m_window->findChild<QMenu *>(QStringLiteral("menuEdit"));
    const struct
    {
        const char *key;
        int caption;
        bool backward;
    } again[] = {{"edit_find_next", 332, false}, {"edit_find_previous", 333, true}};
    for (const auto &g : again) {
        QAction2 *a = m_actions.addAction(global, QString::fromLatin1(g.key), g.caption);
        const bool backward = g.backward;
        connect(a, &QAction::triggered, this, [this, backward] {
            if (m_viewQuickFind && !m_viewQuickFind->isChecked())
                m_viewQuickFind->setChecked(true);
            m_quickFind->findNext(backward);
        });
        if (edit)
            edit->addAction(a);
    }
    if (edit) {
        QMenu *switchMenu = edit->addMenu(QString());
        switchMenu->setObjectName(QStringLiteral("menuFindOptions"));
        m_actions.translation().retranslateMenu(switchMenu, 320);
        switchMenu->addActions(options);
    }
}
