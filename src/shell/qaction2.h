#pragma once

#include <QAction>
#include <QList>
#include <QString>

#include <array>

class QTranslationUnit;

// A command of the program, known by a stable key ("spr_add"), with the
// editors it works in. Its shortcut does not sit on the action itself but on a
// carrier shared by every command with the same keys (see QActionManager).
class QAction2 : public QAction
{
    Q_OBJECT

public:
    // Scope 0 to 6 are the editors by id; scope 7 means everywhere.
    static constexpr int ScopeCount = 8;
    static constexpr int GlobalScope = 7;

    // scopes: editor ids, read up to the first -1 (or the end); ids outside
    // 0..7 are ignored.
    QAction2(const QList<int> &scopes, const QString &key, int captionId, QObject *parent = nullptr);

    int captionId() const { return m_captionId; }
    QString key() const { return m_key; }

    // The action was declared for this scope (the global flag not counted).
    bool hasScope(int scope) const { return scope >= 0 && scope < ScopeCount && m_scopes[scope]; }
    // The action works while editor `scope` is current.
    bool inScope(int scope) const;
    bool isGlobal() const { return m_scopes[GlobalScope]; }
    // True if a shortcut of this action and one of other may not share keys:
    // either works everywhere, or both work in one of the editors 1 to 6.
    // Editor 0 is left out on purpose: the definitions editor may reuse a key
    // among its own actions.
    bool clashesWith(const QAction2 &other) const;

    QAction *carrier() const { return m_carrier; }
    void setCarrier(QAction *carrier) { m_carrier = carrier; }
    QKeySequence keys() const;

    // Caption, tool tip, status tip and what's-this from the text table, with
    // the shortcut appended to the caption when there is one.
    void updateTexts(const QTranslationUnit &translation);

private:
    int m_captionId;
    QString m_key;
    std::array<bool, ScopeCount> m_scopes{};
    QAction *m_carrier = nullptr;
};
