#pragma once

#include "base/qentryfolder.h"

// The style sheets: one folder each, holding Stylesheet.css. Sets the chosen
// one on the application.
class QStylesheetManager
{
public:
    explicit QStylesheetManager(const QStringList &folders);
    ~QStylesheetManager();

    int count() const { return m_entries.count(); }
    QString name(int i) const { return m_entries.name(i); }
    QString current() const { return m_current; }
    QEntryFolder &entries() { return m_entries; }

    // An unchanged name does nothing; an unknown or empty one leaves the
    // application's style sheet as it is.
    void apply(const QString &name);

    // The sheet as the application gets it: "[n]" metrics become plain
    // numbers and url( paths point into the sheet's own folder.
    static QString prepare(const QString &css, const QString &folder);

    void refresh() { m_entries.refresh(); }

private:
    QEntryFolder m_entries;
    QString m_current;
    bool m_applied = false;
};
