#include "shell/qaskuser.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>

namespace {
QAskUser::MessageHandler &messageHandler()
{
    static QAskUser::MessageHandler handler;
    return handler;
}
QAskUser::FileHandler &fileHandler()
{
    static QAskUser::FileHandler handler;
    return handler;
}
QAskUser::DialogHandler &dialogHandler()
{
    static QAskUser::DialogHandler handler;
    return handler;
}
} // namespace

QMessageBox::StandardButton QAskUser::message(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                              const QString &text, QMessageBox::StandardButtons buttons,
                                              QMessageBox::StandardButton defaultButton)
{
    if (messageHandler())
        return messageHandler()(icon, title, text, buttons, defaultButton);
    QMessageBox box(icon, title, text, buttons, parent);
    box.setDefaultButton(defaultButton);
    return QMessageBox::StandardButton(box.exec());
}

void QAskUser::warning(QWidget *parent, const QString &title, const QString &text)
{
    message(parent, QMessageBox::Warning, title, text);
}

void QAskUser::critical(QWidget *parent, const QString &title, const QString &text)
{
    message(parent, QMessageBox::Critical, title, text);
}

bool QAskUser::question(QWidget *parent, const QString &title, const QString &text)
{
    return message(parent, QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No,
                   QMessageBox::No) == QMessageBox::Yes;
}

QString QAskUser::openFileName(QWidget *parent, const QString &caption, const QString &folder,
                               const QString &filter)
{
    if (fileHandler())
        return fileHandler()(OpenFile, caption, folder, filter);
    return QFileDialog::getOpenFileName(parent, caption, folder, filter);
}

QStringList QAskUser::openFileNames(QWidget *parent, const QString &caption, const QString &folder,
                                    const QString &filter)
{
    if (fileHandler())
        return fileHandler()(OpenFiles, caption, folder, filter).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return QFileDialog::getOpenFileNames(parent, caption, folder, filter);
}

QString QAskUser::saveFileName(QWidget *parent, const QString &caption, const QString &folder,
                               const QString &filter)
{
    if (fileHandler())
        return fileHandler()(SaveFile, caption, folder, filter);
    return QFileDialog::getSaveFileName(parent, caption, folder, filter);
}

int QAskUser::exec(QDialog *dialog)
{
    if (!dialog)
        return QDialog::Rejected;
    if (dialogHandler())
        return dialogHandler()(dialog);
    return dialog->exec();
}

QAskUser::MessageHandler QAskUser::setMessageHandler(MessageHandler handler)
{
    return std::exchange(messageHandler(), std::move(handler));
}

QAskUser::FileHandler QAskUser::setFileHandler(FileHandler handler)
{
    return std::exchange(fileHandler(), std::move(handler));
}

QAskUser::DialogHandler QAskUser::setDialogHandler(DialogHandler handler)
{
    return std::exchange(dialogHandler(), std::move(handler));
}

QDialogButtonBox *QAskUser::okCancelButtons(QDialog *dialog)
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}
