#include "qxmlhelper.h"

#include <QFile>
#include <QObject>
#include <QFileDevice>
#include <QSaveFile>
#include <QTextStream>

namespace {
QXmlHelper::FailureHandler &handlerSlot()
{
    static QXmlHelper::FailureHandler handler;
    return handler;
}
} // namespace

bool QXmlHelper::parse(QDomDocument &doc, QIODevice *device)
{
    if (!device || !device->isReadable()) {
        report(QObject::tr("The XML file can't be read."));
        return false;
    }
    const QByteArray bytes = device->readAll();
    QString name;
    if (auto *file = qobject_cast<QFileDevice *>(device))
        name = file->fileName();
    QString error;
    int line = 0;
    int column = 0;
    if (doc.setContent(bytes, &error, &line, &column))
        return true;
    doc.clear();
    QString text = QObject::tr("line %1, column %2: %3").arg(line).arg(column).arg(error);
    if (!name.isEmpty())
        text = name + QStringLiteral(": ") + text;
    report(text);
    return false;
}

bool QXmlHelper::parseFile(QDomDocument &doc, const QString &fileName)
{
    QFile file(fileName);
    if (!file.exists())
        return false;
    if (!file.open(QIODevice::ReadOnly)) {
        report(fileName + QStringLiteral(": ") + file.errorString());
        return false;
    }
    return parse(doc, &file);
}

QXmlHelper::FailureHandler QXmlHelper::setFailureHandler(FailureHandler handler)
{
    FailureHandler previous = std::move(handlerSlot());
    handlerSlot() = std::move(handler);
    return previous;
}

const QXmlHelper::FailureHandler &QXmlHelper::failureHandler()
{
    return handlerSlot();
}

bool QXmlHelper::save(const QDomDocument &doc, const QString &fileName)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QTextStream out(&file);
    doc.save(out, 4);
    out.flush();
    if (out.status() != QTextStream::Ok) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

void QXmlHelper::report(const QString &message)
{
    if (handlerSlot())
        handlerSlot()(message);
}
