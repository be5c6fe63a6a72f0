#pragma once

#include <QMessageBox>
#include <QString>
#include <QStringList>

#include <functional>

class QDialog;
class QDialogButtonBox;
class QWidget;

// Every question the controller asks goes through here: message boxes, file
// dialogs and modal dialogs. The application uses the real boxes; tests and
// scripted runs install handlers that answer at once, so that nothing ever
// blocks on a modal box.
class QAskUser
{
public:
    using MessageHandler = std::function<QMessageBox::StandardButton(
        QMessageBox::Icon icon, const QString &title, const QString &text, QMessageBox::StandardButtons buttons,
        QMessageBox::StandardButton defaultButton)>;
    // OpenFiles: a handler answers with the names joined by new lines.
    enum FileMode { OpenFile, SaveFile, OpenFiles };
    using FileHandler = std::function<QString(FileMode mode, const QString &caption, const QString &folder,
                                              const QString &filter)>;
    // Gets the dialog before it would run; returns its result code.
    using DialogHandler = std::function<int(QDialog *dialog)>;

    static QMessageBox::StandardButton message(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                               const QString &text,
                                               QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                               QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    static void warning(QWidget *parent, const QString &title, const QString &text);
    static void critical(QWidget *parent, const QString &title, const QString &text);
    // Yes or No with No as the default; true on Yes.
    static bool question(QWidget *parent, const QString &title, const QString &text);

    static QString openFileName(QWidget *parent, const QString &caption, const QString &folder,
                                const QString &filter);
    static QStringList openFileNames(QWidget *parent, const QString &caption, const QString &folder,
                                     const QString &filter);
    static QString saveFileName(QWidget *parent, const QString &caption, const QString &folder,
                                const QString &filter);
    static int exec(QDialog *dialog);
    // OK and Cancel that accept and reject `dialog`, for its layout to take.
    static QDialogButtonBox *okCancelButtons(QDialog *dialog);

    // Each returns the handler it replaces; an empty handler restores the real dialogs.
    static MessageHandler setMessageHandler(MessageHandler handler);
    static FileHandler setFileHandler(FileHandler handler);
    static DialogHandler setDialogHandler(DialogHandler handler);
};
