#include "core/qlog.h"
#include "core/qxmlhelper.h"
#include "core/ui/mainwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QPixmap>
#include <QSplashScreen>
#include <QThread>

namespace {
QApplication *application = nullptr;
}

int main(int argc, char *argv[])
{
    // Rendering through OpenGL is chosen per widget in Qt 6; nothing is set
    // globally before the application object exists.
    application = new QApplication(argc, argv);
    // The log a bug report carries: every run adds to it, Qt's own warnings included.
    QLog log(QLog::defaultPath());
    log.installMessageHandler();
    QLog::setCurrent(&log);
    log.append(QStringLiteral("Brawlforge started"));
    QXmlHelper::setFailureHandler([](const QString &message) {
        QMessageBox::critical(nullptr, QObject::tr("XML"), message);
    });

    auto *splash = new QSplashScreen(QPixmap(QStringLiteral(":/imgs/Imgs/Splash.png")));
    splash->show();
    QCoreApplication::processEvents();
    // Deliberate: even a fast start shows the splash for a full second.
    QThread::msleep(1000);

    MainWindow window;
    window.show();
    delete splash;

    const int result = QApplication::exec();
    log.append(QStringLiteral("Brawlforge stopped"));
    return result;
}
