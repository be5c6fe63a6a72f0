#include "qcolorsetmanager.h"

#include "base/qlifecyclelog.h"
#include "base/qmugenmodel.h"
#include "base/qxmlhelper.h"

#include <QDomDocument>
#include <QFileInfo>
#include <QRegularExpression>

namespace {
struct Role
{
    const char *key;
    const char *caption;
};
const Role roles[QColorsetManager::RoleCount] = {
    {"comment", QT_TRANSLATE_NOOP("QColorsetManager", "Comments")},
    {"block", QT_TRANSLATE_NOOP("QColorsetManager", "Block header")},
    {"number", QT_TRANSLATE_NOOP("QColorsetManager", "Number")},
    {"string", QT_TRANSLATE_NOOP("QColorsetManager", "String")},
    {"keyword", QT_TRANSLATE_NOOP("QColorsetManager", "Block parameter")},
    {"value", QT_TRANSLATE_NOOP("QColorsetManager", "Parameter literal value")},
    {"controller", QT_TRANSLATE_NOOP("QColorsetManager", "Block controller")},
    {"trigger", QT_TRANSLATE_NOOP("QColorsetManager", "Trigger")},
    {"const", QT_TRANSLATE_NOOP("QColorsetManager", "Constant")},
    {"paren", QT_TRANSLATE_NOOP("QColorsetManager", "Matched parenthesis")},
    {"paren_range", QT_TRANSLATE_NOOP("QColorsetManager", "Matched parenthesis range")},
    {"block_range", QT_TRANSLATE_NOOP("QColorsetManager", "Block range")},
    {"line", QT_TRANSLATE_NOOP("QColorsetManager", "Line highlight")},
    {"back_start", QT_TRANSLATE_NOOP("QColorsetManager", "Background start")},
    {"back_end", QT_TRANSLATE_NOOP("QColorsetManager", "Background end")},
    {"clsn1", QT_TRANSLATE_NOOP("QColorsetManager", "CLSN 1")},
    {"clsn2", QT_TRANSLATE_NOOP("QColorsetManager", "CLSN 2")},
    {"clsn1def", QT_TRANSLATE_NOOP("QColorsetManager", "CLSN 1 Default")},
    {"clsn2def", QT_TRANSLATE_NOOP("QColorsetManager", "CLSN 2 Default")},
};
constexpr int FirstBackground = 10;
} // namespace

QString QColorsetManager::roleKey(int index)
{
    return index >= 0 && index < RoleCount ? QString::fromLatin1(roles[index].key) : QString();
}

QString QColorsetManager::roleCaption(int index)
{
    return index >= 0 && index < RoleCount ? tr(roles[index].caption) : QString();
}

QColor QColorsetManager::contrast(const QColor &c)
{
    return 299 * c.red() + 587 * c.green() + 114 * c.blue() < 131000 ? QColor(Qt::white)
                                                                      : QColor(Qt::black);
}

QColorsetManager::QColorsetManager(const QStringList &folders, QObject *parent)
    : QAbstractListModel(parent)
    , m_entries(folders, QEntryFolder::Files, QStringLiteral("*.xml"))
{
    // The user's own colours live in Custom.xml, chosen by editing, not by name.
    m_entries.setExcluded({QStringLiteral("Custom")});
    QLifecycleLog::record(QStringLiteral("+QColorsetManager"));
}

QColorsetManager::~QColorsetManager()
{
    QLifecycleLog::record(QStringLiteral("-QColorsetManager"));
}

bool QColorsetManager::load(const QString &name)
{
    QDomDocument doc(QStringLiteral("ORVColorsML"));
    const QString file = m_entries.filePath(name);
    if (file.isEmpty() || !QXmlHelper::parseFile(doc, file))
        return false;
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("colors"))
        return false;
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{1,3})\\,(\\d{1,3})\\,(\\d{1,3})$"));
    beginResetModel();
    for (QDomElement e = root.firstChildElement(QStringLiteral("color")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("color"))) {
        const QRegularExpressionMatch m = pattern.match(e.attribute(QStringLiteral("value")));
        if (!m.hasMatch())
            continue;
        Entry entry;
        entry.color = QColor(qMin(255, m.captured(1).toInt()), qMin(255, m.captured(2).toInt()),
                             qMin(255, m.captured(3).toInt()));
        entry.bold = QMugenModel::toFlag(e.attribute(QStringLiteral("bold")));
        entry.italic = QMugenModel::toFlag(e.attribute(QStringLiteral("italic")));
        m_colors.insert(e.attribute(QStringLiteral("name")), entry);
    }
    m_current = name;
    endResetModel();
    return true;
}

bool QColorsetManager::save(const QString &fileName, bool rename)
{
    QDomDocument doc(QStringLiteral("ORVColorsML"));
    QDomElement root = doc.createElement(QStringLiteral("colors"));
    doc.appendChild(root);
    for (auto it = m_colors.constBegin(); it != m_colors.constEnd(); ++it) {
        QDomElement e = doc.createElement(QStringLiteral("color"));
        const QColor &c = it.value().color;
        e.setAttribute(QStringLiteral("name"), it.key());
        e.setAttribute(QStringLiteral("value"),
                       QStringLiteral("%1,%2,%3").arg(c.red()).arg(c.green()).arg(c.blue()));
        // Background roles carry no font style.
        if (it.key() != QLatin1String("line") && !it.key().contains(QLatin1String("_range"))) {
            e.setAttribute(QStringLiteral("bold"), it.value().bold ? "true" : "false");
            e.setAttribute(QStringLiteral("italic"), it.value().italic ? "true" : "false");
        }
        root.appendChild(e);
    }
    if (!QXmlHelper::save(doc, fileName))
        return false;
    if (rename) {
        m_current = QFileInfo(fileName).completeBaseName();
        refresh();
    }
    return true;
}

void QColorsetManager::setColor(const QString &key, const Entry &entry)
{
    beginResetModel();
    m_colors.insert(key, entry);
    endResetModel();
}

QList<int> QColorsetManager::presentRoles() const
{
    QList<int> rows;
    for (int i = 0; i < RoleCount; ++i) {
        if (m_colors.contains(roleKey(i)))
            rows.append(i);
    }
    return rows;
}

int QColorsetManager::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(presentRoles().size());
}

QVariant QColorsetManager::data(const QModelIndex &index, int role) const
{
    const QList<int> rows = presentRoles();
    if (!index.isValid() || index.row() < 0 || index.row() >= rows.size())
        return QVariant();
    const int r = rows.at(index.row());
    const Entry e = color(roleKey(r));
    switch (role) {
    case Qt::DisplayRole:
        return roleCaption(r);
    case Qt::ForegroundRole:
        return r < FirstBackground ? e.color : contrast(e.color);
    case Qt::BackgroundRole:
        return r >= FirstBackground ? QVariant(e.color) : QVariant();
    default:
        return QVariant();
    }
}
