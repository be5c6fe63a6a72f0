#include "qlifecyclelog.h"

namespace {
QStringList &log()
{
    static QStringList entries;
    return entries;
}
} // namespace

void QLifecycleLog::record(const QString &step)
{
    log().append(step);
}

QStringList QLifecycleLog::entries()
{
    return log();
}

void QLifecycleLog::clear()
{
    log().clear();
}
