#include "qstylesheetmanager.h"

#include "base/qlifecyclelog.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTextStream>

QStylesheetManager::QStylesheetManager(const QString &folder)
    : m_folder(folder)
{
    refresh();
    QLifecycleLog::record(QStringLiteral("+QStylesheetManager"));
}

QStylesheetManager::~QStylesheetManager()
{
    QLifecycleLog::record(QStringLiteral("-QStylesheetManager"));
}

void QStylesheetManager::refresh()
{
    m_names = QDir(m_folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
}

QString QStylesheetManager::prepare(const QString &source, const QString &name)
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
    css.replace(QStringLiteral("url("), QStringLiteral("url(styles/") + name + QLatin1Char('/'));
    return css;
}

void QStylesheetManager::apply(const QString &name)
{
    if (m_applied && name == m_current)
        return;
    m_applied = true;
    m_current.clear();
    if (m_names.contains(name))
        m_current = name;
    if (m_current.isEmpty())
        return;
    QFile file(m_folder + QLatin1Char('/') + m_current + QStringLiteral("/Stylesheet.css"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return;
    QTextStream in(&file);
    if (auto *app = qobject_cast<QApplication *>(QCoreApplication::instance()))
        app->setStyleSheet(prepare(in.readAll(), m_current));
}
