#include "shell/qactionmanager.h"

#include "shell/qaction2.h"
#include "base/qxmlhelper.h"

#include <QAction>
#include <QDomDocument>
#include <QSaveFile>

namespace {
const char *const kDocType = "ORVShortcutML";
const char *const kRoot = "shortcuts";
} // namespace

QActionManager::QActionManager(QObject *parent)
    : QAbstractTableModel(parent)
    , m_list(this)
{
}

QActionManager::~QActionManager()
{
    // Actions first: they point at carriers, never the other way round.
    qDeleteAll(m_actions);
    m_actions.clear();
    qDeleteAll(m_carriers);
    m_carriers.clear();
}

QAction2 *QActionManager::addAction(const QList<int> &scopes, const QString &key, int captionId, bool checkable,
                                    QObject *receiver, const char *slot, const char *enablingSignal)
{
    auto *act = new QAction2(scopes, key, captionId);
    act->setCheckable(checkable);
    if (receiver && slot) {
        if (checkable)
            connect(act, SIGNAL(toggled(bool)), receiver, slot);
        else
            connect(act, SIGNAL(triggered()), receiver, slot);
    }
    if (receiver && enablingSignal)
        connect(receiver, enablingSignal, act, SLOT(setEnabled(bool)));
    act->updateTexts(m_translation);

    const int row = int(m_actions.size());
    beginInsertRows(QModelIndex(), row, row);
    m_actions.append(act);
    endInsertRows();
    return act;
}

QAction2 *QActionManager::action(const QString &key) const
{
    for (QAction2 *act : m_actions) {
        if (act->key() == key)
            return act;
    }
    return nullptr;
}

int QActionManager::useCount(const QAction *carrier)
{
    return carrier->data().toInt();
}

void QActionManager::setUseCount(QAction *carrier, int count)
{
    carrier->setData(count);
}

void QActionManager::releaseCarrier(QAction2 *action)
{
    QAction *carrier = action->carrier();
    if (!carrier)
        return;
    action->setCarrier(nullptr);
    const int count = useCount(carrier) - 1;
    setUseCount(carrier, count);
    if (count <= 0) {
        m_carriers.removeOne(carrier);
        delete carrier;
    }
}

bool QActionManager::setShortcut(QAction2 *action, const QKeySequence &keys)
{
    if (!action || !m_actions.contains(action))
        return false;

    QAction *found = nullptr;
    if (!keys.isEmpty()) {
        for (QAction *carrier : std::as_const(m_carriers)) {
            if (carrier->shortcut() == keys) {
                found = carrier;
                break;
            }
        }
    }
    if (found && found == action->carrier())
        return true; // already there

    if (found) {
        for (QAction2 *other : std::as_const(m_actions)) {
            if (other != action && other->carrier() == found && action->clashesWith(*other)) {
                emit conflict(action, keys);
                return false;
            }
        }
    }

    releaseCarrier(action);
    if (!keys.isEmpty()) {
        if (!found) {
            found = new QAction(this);
            found->setShortcut(keys);
            setUseCount(found, 0);
            connect(found, &QAction::triggered, this, &QActionManager::shortcutTriggered);
            m_carriers.append(found);
            emit carrierCreated(found);
        }
        setUseCount(found, useCount(found) + 1);
        action->setCarrier(found);
    }
    action->updateTexts(m_translation);

    const int row = int(m_actions.indexOf(action));
    emit dataChanged(index(row, 0), index(row, 1));
    return true;
}

void QActionManager::setScope(int editorId)
{
    m_scope = editorId;
    m_list.setEditor(editorId);
}

void QActionManager::shortcutTriggered()
{
    auto *carrier = qobject_cast<QAction *>(sender());
    if (!carrier || m_scope < 0 || m_scope >= NoEditor)
        return;
    for (QAction2 *act : std::as_const(m_actions)) {
        if (act->carrier() == carrier && act->inScope(m_scope)) {
            // A disabled command still takes the key: the user meant this one.
            act->activate(QAction::Trigger);
            return;
        }
    }
}

void QActionManager::retranslate()
{
    for (QAction2 *act : std::as_const(m_actions))
        act->updateTexts(m_translation);
    if (!m_actions.isEmpty())
        emit dataChanged(index(0, 0), index(int(m_actions.size()) - 1, 1));
    emit headerDataChanged(Qt::Horizontal, 0, 1);
}

void QActionManager::retranslate(QAction2 *action)
{
    if (action)
        action->updateTexts(m_translation);
}

bool QActionManager::load(const QString &fileName)
{
    QDomDocument doc;
    if (!QXmlHelper::parseFile(doc, fileName))
        return false;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String(kRoot))
        return false;
    for (QDomElement e = root.firstChildElement(QStringLiteral("shortcut")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("shortcut"))) {
        QAction2 *act = action(e.attribute(QStringLiteral("action")));
        if (!act)
            continue; // an action that no longer exists
        setShortcut(act, QKeySequence::fromString(e.attribute(QStringLiteral("keys")), QKeySequence::PortableText));
    }
    return true;
}

bool QActionManager::save(const QString &fileName) const
{
    QDomDocument doc(QString::fromLatin1(kDocType));
    QDomElement root = doc.createElement(QString::fromLatin1(kRoot));
    doc.appendChild(root);
    for (QAction2 *act : m_actions) {
        if (!act->carrier())
            continue;
        QDomElement e = doc.createElement(QStringLiteral("shortcut"));
        e.setAttribute(QStringLiteral("action"), act->key());
        e.setAttribute(QStringLiteral("keys"), act->keys().toString(QKeySequence::PortableText));
        root.appendChild(e);
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(doc.toByteArray(4));
    return file.commit();
}

QIcon QActionManager::icon(const QString &key) const
{
    return m_iconProvider ? m_iconProvider(key) : QIcon();
}

int QActionManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_actions.size());
}

int QActionManager::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant QActionManager::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_actions.size())
        return QVariant();
    QAction2 *act = m_actions.at(index.row());
    if (index.column() == 0) {
        if (role == Qt::DisplayRole)
            return act->toolTip();
        if (role == Qt::DecorationRole)
            return icon(act->key());
    } else if (index.column() == 1 && (role == Qt::DisplayRole || role == Qt::EditRole)) {
        return act->keys().toString(QKeySequence::PortableText);
    }
    return QVariant();
}

QVariant QActionManager::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (section == 0)
        return tr("Function");
    if (section == 1)
        return tr("Keys");
    return QVariant();
}

Qt::ItemFlags QActionManager::flags(const QModelIndex &index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.isValid() && index.column() == 1)
        f |= Qt::ItemIsEditable;
    return f;
}

bool QActionManager::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || index.column() != 1 || index.row() >= m_actions.size())
        return false;
    return setShortcut(m_actions.at(index.row()),
                       QKeySequence::fromString(value.toString(), QKeySequence::PortableText));
}
