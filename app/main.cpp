#include <QApplication>
#include <QLabel>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QLabel l(QStringLiteral("Brawlforge"));
    l.show();
    return app.exec();
}
