#include "shell/qaction2.h"

#include "shell/qtranslationunit.h"

QAction2::QAction2(const QList<int> &scopes, const QString &key, int captionId, QObject *parent)
    : QAction(parent)
    , m_captionId(captionId)
    , m_key(key)
{
    for (int scope : scopes) {
        if (scope == -1)
            break;
        if (scope >= 0 && scope < ScopeCount)
            m_scopes[scope] = true;
    }
    setObjectName(key);
}

bool QAction2::inScope(int scope) const
{
    if (scope < 0 || scope >= ScopeCount)
        return false;
    return m_scopes[GlobalScope] || m_scopes[scope];
}

bool QAction2::clashesWith(const QAction2 &other) const
{
    if (isGlobal() || other.isGlobal())
        return true;
    for (int s = 1; s < GlobalScope; ++s) {
        if (m_scopes[s] && other.m_scopes[s])
            return true;
    }
    return false;
}

QKeySequence QAction2::keys() const
{
    return m_carrier ? m_carrier->shortcut() : QKeySequence();
}

void QAction2::updateTexts(const QTranslationUnit &translation)
{
    const QKeySequence seq = keys();
    translation.retranslate(this, m_captionId, seq.isEmpty() ? QString() : seq.toString(QKeySequence::NativeText));
}
