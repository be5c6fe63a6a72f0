#pragma once

#include <QStringList>

// Lists the style sheets beside the program (a folder each, holding
// Stylesheet.css) and sets the chosen one on the application.
class QStylesheetManager
{
public:
    explicit QStylesheetManager(const QString &folder);
    ~QStylesheetManager();

    int count() const { return int(m_names.size()); }
    QString name(int i) const { return m_names.value(i); }
    QString current() const { return m_current; }

    // An unchanged name does nothing; an unknown or empty one leaves the
    // application's style sheet as it is.
    void apply(const QString &name);

    // The sheet as the application gets it: "[n]" metrics become plain
    // numbers and url( paths are made relative to the program's folder.
    static QString prepare(const QString &css, const QString &name);

    void refresh();

private:
    QString m_folder;
    QStringList m_names;
    QString m_current;
    bool m_applied = false;
};
