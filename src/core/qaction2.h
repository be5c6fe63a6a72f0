#pragma once

#include <QAction>
#include <QString>

#include <array>

// A command of the program: an action with a stable key, the number of its
// caption and the editors (scopes) it works in. Scope 7 means everywhere.
class QAction2 : public QAction
{
    Q_OBJECT

public:
    static constexpr int ScopeCount = 8;
    static constexpr int GlobalScope = 7;

    QAction2(const QString &key, int captionId, QObject *parent = nullptr);

    int captionId() const { return m_captionId; }
    QString key() const { return m_key; }

    bool inScope(int scope) const;
    void setScope(int scope, bool on);

    // The shared shortcut carrier, or null.
    QAction *carrier() const { return m_carrier; }
    void setCarrier(QAction *carrier) { m_carrier = carrier; }

private:
    int m_captionId;
    QString m_key;
    std::array<bool, ScopeCount> m_scopes{};
    QAction *m_carrier = nullptr;
};
