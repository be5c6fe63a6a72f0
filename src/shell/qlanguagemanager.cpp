#include "qlanguagemanager.h"

#include "base/qlifecyclelog.h"
#include "base/qxmlhelper.h"

#include <QCoreApplication>
#include <QDir>
#include <QDomDocument>
#include <QTranslator>

QLanguageManager::QLanguageManager(const QString &folder, QCoreApplication *app, QObject *parent)
    : QObject(parent)
    , m_app(app)
    , m_folder(folder)
{
    refresh();
    QLifecycleLog::record(QStringLiteral("+QLanguageManager"));
}

QLanguageManager::~QLanguageManager()
{
    for (QTranslator *t : std::as_const(m_translators)) {
        if (m_app)
            m_app->removeTranslator(t);
        delete t;
    }
    QLifecycleLog::record(QStringLiteral("-QLanguageManager"));
}

void QLanguageManager::refresh()
{
    m_languages.clear();
    const QDir dir(m_folder);
    const QStringList folders = dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &f : folders) {
        if (f.startsWith(QLatin1Char('.')))
            continue;
        QDomDocument doc(QStringLiteral("ORVLanguageML"));
        if (!QXmlHelper::parseFile(doc, dir.filePath(f + QStringLiteral("/info.xml"))))
            continue;
        const QDomElement root = doc.documentElement();
        if (root.tagName() != QLatin1String("language"))
            continue;
        Language l;
        l.folder = f;
        l.name = root.attribute(QStringLiteral("name"), f);
        l.author = root.attribute(QStringLiteral("author"));
        l.contact = root.attribute(QStringLiteral("contact"));
        m_languages.append(l);
    }
}

int QLanguageManager::indexOf(const QString &folder) const
{
    for (int i = 0; i < m_languages.size(); ++i) {
        if (m_languages.at(i).folder == folder)
            return i;
    }
    return -1;
}

void QLanguageManager::setLanguage(const QString &folder)
{
    m_current.clear();
    if (indexOf(folder) >= 0)
        m_current = folder;
    for (QTranslator *t : std::as_const(m_translators)) {
        if (m_app)
            m_app->removeTranslator(t);
        delete t;
    }
    m_translators.clear();
    if (!m_current.isEmpty()) {
        const QDir dir(m_folder + QLatin1Char('/') + m_current);
        const QStringList files = dir.entryList(QDir::Files | QDir::NoDotAndDotDot);
        for (const QString &f : files) {
            if (!f.endsWith(QLatin1String(".qm"), Qt::CaseInsensitive))
                continue;
            auto *t = new QTranslator;
            if (t->load(dir.filePath(f))) {
                if (m_app)
                    m_app->installTranslator(t);
                m_translators.append(t);
            } else {
                delete t;
            }
        }
    }
    emit langChanged();
}
