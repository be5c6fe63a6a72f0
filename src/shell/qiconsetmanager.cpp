#include "qiconsetmanager.h"

#include "qaction2.h"
#include "qactionmanager.h"
#include "base/qlifecyclelog.h"
#include "base/qxmlhelper.h"

#include <QDomDocument>
#include <QFileInfo>

QIconsetManager::QIconsetManager(const QStringList &folders)
    : m_entries(folders, QEntryFolder::Folders, QStringLiteral("Iconset.xml"))
{
    QLifecycleLog::record(QStringLiteral("+QIconsetManager"));
}

QIconsetManager::~QIconsetManager()
{
    QLifecycleLog::record(QStringLiteral("-QIconsetManager"));
}

QIcon QIconsetManager::icon(const QString &key) const
{
    const auto it = m_files.constFind(key);
    if (m_current.isEmpty() || it == m_files.constEnd())
        return QIcon();
    return QIcon(m_currentFolder + QLatin1Char('/') + it.value());
}

void QIconsetManager::apply(const QString &name, QActionManager *actions, bool force)
{
    if (m_applied && name == m_current && !force)
        return;
    m_applied = true;
    m_current.clear();
    if (m_entries.contains(name))
        m_current = name;
    m_currentFolder = m_entries.entryFolder(m_current);
    m_files.clear();

    QDomDocument doc(QStringLiteral("ORVIconsetML"));
    const QString file = m_entries.filePath(m_current);
    bool ok = !m_current.isEmpty() && QFileInfo::exists(file) && QXmlHelper::parseFile(doc, file)
              && doc.documentElement().tagName() == QLatin1String("iconset");
    if (ok) {
        for (QDomElement e = doc.documentElement().firstChildElement(QStringLiteral("icon"));
             !e.isNull(); e = e.nextSiblingElement(QStringLiteral("icon")))
            m_files.insert(e.attribute(QStringLiteral("name")), e.attribute(QStringLiteral("file")));
    } else {
        m_current.clear();
    }
    if (!actions)
        return;
    for (QAction2 *a : actions->actions())
        a->setIcon(icon(a->key()));
}
