#include "qstylesheetmanager.h"

#include "base/qlifecyclelog.h"

#include <QApplication>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

QStylesheetManager::QStylesheetManager(const QStringList &folders)
    : m_entries(folders, QEntryFolder::Folders, QStringLiteral("Stylesheet.css"))
{
    QLifecycleLog::record(QStringLiteral("+QStylesheetManager"));
}

QStylesheetManager::~QStylesheetManager()
{
    QLifecycleLog::record(QStringLiteral("-QStylesheetManager"));
}

QString QStylesheetManager::prepare(const QString &source, const QString &folder)
{
    static const QRegularExpression metric(QStringLiteral("\\[(\\d+)\\]"));
    QString css = source;
    // A metric in brackets keeps its number; one at the very start is dropped.
    qsizetype from = 0;
    QRegularExpressionMatch m;
    while ((m = metric.match(css, from)).hasMatch()) {
        const qsizetype pos = m.capturedStart();
        if (pos > 0) {
            const QString digits = m.captured(1);
            css.insert(pos, digits);
            from = pos + digits.size() + 1;
        } else {
            from = pos + 1;
        }
    }
    css.replace(metric, QString());
    css.replace(QStringLiteral("url("), QStringLiteral("url(") + folder + QLatin1Char('/'));
    return css;
}

void QStylesheetManager::apply(const QString &name)
{
    if (m_applied && name == m_current)
        return;
    m_applied = true;
    m_current.clear();
    if (m_entries.contains(name))
        m_current = name;
    if (m_current.isEmpty())
        return;
    QFile file(m_entries.filePath(m_current));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    QTextStream in(&file);
    if (auto *app = qobject_cast<QApplication *>(QCoreApplication::instance()))
        app->setStyleSheet(prepare(in.readAll(), m_entries.entryFolder(m_current)));
}
