#pragma once

// For the tests that start the program through its composition root.

#include "base/qapppaths.h"
#include "qapproot.h"
#include "shell/mainwindow.h"
#include "shell/qinterface.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <memory>

namespace TestSupport {

// The program's folders for a test: settings, history and log in `dir`, the
// data beside the test executable, where the build copies it.
inline QAppPaths appPaths(const QString &dir)
{
    QStandardPaths::setTestModeEnabled(true);
    return QAppPaths(dir, dir, {QCoreApplication::applicationDirPath()});
}

// The program as main() starts it, with the close question answered yes.
inline std::unique_ptr<QAppRoot> startProgram(const QString &dir)
{
    auto root = std::make_unique<QAppRoot>(appPaths(dir));
    root->window()->setCloseQuestion([](QWidget *) { return true; });
    return root;
}

} // namespace TestSupport
