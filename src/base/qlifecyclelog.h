#pragma once

#include <QStringList>

// A process-wide record of the start-up and shut-down steps of the main
// window. The order of creation and destruction of the process-wide objects
// matters (the controller writes into the configuration while it dies), so
// each step leaves a line here and the order can be checked without a
// debugger. It costs one string per object and stays tiny.
class QLifecycleLog
{
public:
    static void record(const QString &step);
    static QStringList entries();
    static void clear();
};
