#include "base/qapppaths.h"
#include "base/qxmlhelper.h"
#include "qapproot.h"
#include "shell/mainwindow.h"
#include "shell/qinterface.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QPixmap>
#include <QSplashScreen>
#include <QThread>

#include <memory>

int main(int argc, char *argv[])
{
    // Rendering through OpenGL is chosen per widget in Qt 6; nothing is set
    // globally before the application object exists.
    QApplication application(argc, argv);
    // The name picks the user's folders: ~/.config/brawlforge and ~/.local/share/brawlforge.
    QCoreApplication::setApplicationName(QStringLiteral("brawlforge"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BF_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "An environment for making M.U.G.E.N. characters, stages, storyboards "
                                            "and fonts."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QCoreApplication::translate("main", "Projects to open: DEF files, or files a "
                                                                     "DEF beside them names."),
                                 QStringLiteral("[files...]"));
    parser.process(application);

    QXmlHelper::setFailureHandler([](const QString &message) {
        QMessageBox::critical(nullptr, QObject::tr("XML"), message);
    });

    auto splash = std::make_unique<QSplashScreen>(QPixmap(QStringLiteral(":/imgs/Imgs/Splash.png")));
    splash->show();
    QCoreApplication::processEvents();
    // Deliberate: even a fast start shows the splash for a full second.
    QThread::msleep(1000);

    QAppRoot root(QAppPaths::forApplication());
    root.window()->show();
    splash.reset();
    root.controller()->openFiles(parser.positionalArguments());

    return QApplication::exec();
}
