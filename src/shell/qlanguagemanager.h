#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QCoreApplication;
class QTranslator;

// Lists the translations beside the program (one folder each, described by
// info.xml) and installs the chosen one's translator files.
class QLanguageManager : public QObject
{
    Q_OBJECT

public:
    struct Language
    {
        QString folder;
        QString name;
        QString author;
        QString contact;
    };

    QLanguageManager(const QString &folder, QCoreApplication *app, QObject *parent = nullptr);
    ~QLanguageManager() override;

    int count() const { return int(m_languages.size()); }
    QString name(int i) const { return i >= 0 && i < count() ? m_languages.at(i).name : QString(); }
    int indexOf(const QString &folder) const;
    Language language(int i) const { return m_languages.value(i); }
    QString current() const { return m_current; }
    int translatorCount() const { return int(m_translators.size()); }

    // Installs the translators of the language folder; an unknown or empty
    // name goes back to the built-in texts.
    void setLanguage(const QString &folder);

    void refresh();

signals:
    void langChanged();

private:
    QCoreApplication *m_app;
    QString m_folder;
    QList<Language> m_languages;
    QString m_current;
    QList<QTranslator *> m_translators;
};
