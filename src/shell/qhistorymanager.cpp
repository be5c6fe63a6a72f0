#include "shell/qhistorymanager.h"

#include "base/qxmlhelper.h"

#include <QAction>
#include <QDomDocument>
#include <QFileInfo>
#include <QMenu>

QHistoryManager::QHistoryManager(QMenu *menu, const QString &fileName, int maxEntries, QObject *parent)
    : QObject(parent)
    , m_maxEntries(quint8(qBound(1, maxEntries, 255)))
    , m_menu(menu)
    , m_fileName(fileName)
{
}

void QHistoryManager::add(const QString &file)
{
    if (!m_changed || file.isEmpty())
        return;
    const qsizetype at = m_entries.indexOf(file);
    if (at >= 0) {
        m_entries.move(at, 0);
    } else {
        while (m_entries.size() >= m_maxEntries)
            m_entries.removeLast();
        m_entries.prepend(file);
    }
    rebuildMenu();
}

bool QHistoryManager::load()
{
    QDomDocument doc;
    m_entries.clear();
    bool ok = QXmlHelper::parseFile(doc, m_fileName) && doc.documentElement().tagName() == QLatin1String("history");
    if (ok) {
        for (QDomElement e = doc.documentElement().firstChildElement(QStringLiteral("entry")); !e.isNull();
             e = e.nextSiblingElement(QStringLiteral("entry"))) {
            const QString file = e.attribute(QStringLiteral("file"));
            if (!file.isEmpty() && QFileInfo::exists(file) && !m_entries.contains(file)
                && m_entries.size() < m_maxEntries)
                m_entries.append(file);
        }
    }
    rebuildMenu();
    return ok;
}

bool QHistoryManager::save() const
{
    QDomDocument doc(QStringLiteral("ORVHistoryML"));
    QDomElement root = doc.createElement(QStringLiteral("history"));
    doc.appendChild(root);
    for (const QString &file : m_entries) {
        QDomElement e = doc.createElement(QStringLiteral("entry"));
        e.setAttribute(QStringLiteral("file"), file);
        root.appendChild(e);
    }
    return QXmlHelper::save(doc, m_fileName);
}

void QHistoryManager::rebuildMenu()
{
    if (!m_menu)
        return;
    // The entry that was just clicked may be the one that asks for this
    // rebuild: let the old actions go once its signal has returned.
    for (QAction *old : m_menu->actions()) {
        m_menu->removeAction(old);
        old->deleteLater();
    }
    for (const QString &file : std::as_const(m_entries)) {
        QAction *a = m_menu->addAction(QFileInfo(file).completeBaseName());
        a->setData(file);
        a->setToolTip(file);
        a->setStatusTip(file);
        connect(a, &QAction::triggered, this, &QHistoryManager::actionTriggered);
    }
    m_menu->addSeparator();
    QAction *all = m_menu->addAction(tr("Open all"));
    all->setEnabled(!m_entries.isEmpty());
    connect(all, &QAction::triggered, this, &QHistoryManager::allTriggered);
    QAction *clear = m_menu->addAction(tr("Clear"));
    clear->setEnabled(!m_entries.isEmpty());
    connect(clear, &QAction::triggered, this, &QHistoryManager::clearTriggered);
}

void QHistoryManager::clearTriggered()
{
    m_entries.clear();
    rebuildMenu();
}

void QHistoryManager::allTriggered()
{
    // A copy: opening projects may not touch the list while we walk it.
    const QStringList files = m_entries;
    m_changed = false;
    for (const QString &file : files)
        emit entryTriggered(file);
    m_changed = true;
}

void QHistoryManager::actionTriggered()
{
    auto *a = qobject_cast<QAction *>(sender());
    if (a && !a->data().toString().isEmpty())
        emit entryTriggered(a->data().toString());
}
