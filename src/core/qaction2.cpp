#include "qaction2.h"

QAction2::QAction2(const QString &key, int captionId, QObject *parent)
    : QAction(parent)
    , m_captionId(captionId)
    , m_key(key)
{
    setObjectName(key);
}

bool QAction2::inScope(int scope) const
{
    return scope >= 0 && scope < ScopeCount && m_scopes[size_t(scope)];
}

void QAction2::setScope(int scope, bool on)
{
    if (scope >= 0 && scope < ScopeCount)
        m_scopes[size_t(scope)] = on;
}
