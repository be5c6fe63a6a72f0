#include "qwebbrowserworkspace.h"

#include "base/qapppaths.h"
#include "base/qmugenmodel.h"

#include <QFileInfo>
#include <QTextBrowser>
#include <QUrl>

QWebBrowserWorkspace::QWebBrowserWorkspace(const QAppObjects &objects, QObject *parent)
    : QInterfaceWorkspace(parent)
    , m_objects(objects)
{
    auto *b = new QTextBrowser;
    b->setObjectName(QStringLiteral("docsBrowser"));
    b->setOpenExternalLinks(false);
    m_widget = b;
}

QTextBrowser *QWebBrowserWorkspace::browser() const
{
    return static_cast<QTextBrowser *>(m_widget.data());
}

QString QWebBrowserWorkspace::indexPage(const QString &docs, const QString &language)
{
    const QString localized = docs + QLatin1Char('/') + language + QStringLiteral("/index.html");
    if (!language.isEmpty() && QFileInfo::exists(localized))
        return localized;
    return docs + QStringLiteral("/en-us/index.html");
}

void QWebBrowserWorkspace::activate()
{
    QInterfaceWorkspace::activate();
    // Loaded on first sight only: the documentation is large and rarely opened.
    if (m_loaded || !browser())
        return;
    m_loaded = true;
    const QString language = m_objects.config ? m_objects.config->text(QStringLiteral("language")) : QString();
    const QString docs = m_objects.paths ? m_objects.paths->dataPath(QStringLiteral("docs")) : QString();
    const QString page = indexPage(docs, language);
    if (QFileInfo::exists(page))
        browser()->setSource(QUrl::fromLocalFile(page));
    else
        browser()->setHtml(tr("<p>The reference documentation is not installed.</p>"));
}

void QWebBrowserWorkspace::applyConfig()
{
    // A new language may have a documentation of its own.
    m_loaded = false;
    if (m_active)
        activate();
}
