#pragma once

#include "base/qapppaths.h"
#include "shell/qappobjects.h"

#include <QStringList>

#include <memory>

class MainWindow;
class QInterface;

// The composition root: the one place that creates the process-wide objects,
// in a fixed order, owns them, hands them to the window, the controller and
// the editors, registers the editors, and takes everything down in reverse.
//
// The order is a constraint. The configuration is read after the appearance
// managers (which only list their folders) and before anything that reads it;
// languages come before the controller, which asks for translated texts from
// its first line. At the end the controller goes first, because it writes the
// window's state into the configuration as it dies; then the configuration is
// written, then the managers go.
class QAppRoot
{
public:
    explicit QAppRoot(const QAppPaths &paths);
    ~QAppRoot();
    QAppRoot(const QAppRoot &) = delete;
    QAppRoot &operator=(const QAppRoot &) = delete;

    MainWindow *window() const { return m_window; }
    QInterface *controller() const { return m_controller; }
    const QAppObjects &objects() const { return m_objects; }
    const QAppPaths &paths() const { return m_paths; }

private:
    void registerEditors();

    QAppPaths m_paths;
    QAppObjects m_objects;
    MainWindow *m_window = nullptr;
    QInterface *m_controller = nullptr; // a child of the window
};
