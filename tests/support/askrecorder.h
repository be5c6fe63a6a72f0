#pragma once

// Answers the program's questions at once for tests that drive the window, and
// records what was asked. Dialogs go to `onDialog`, accepted when it has none.

#include "shell/qaskuser.h"

#include <QDialog>
#include <QStringList>

#include <functional>

namespace TestSupport {

struct AskRecorder
{
    QStringList titles;
    QStringList texts;
    QStringList files; // handed out in order by file dialogs, then empty names
    QStringList dialogs; // object names of the dialogs shown
    QMessageBox::StandardButton answer = QMessageBox::Yes;
    std::function<int(QDialog *)> onDialog;
    std::function<void(QDialog *)> fill; // fills a dialog in before it is accepted

    AskRecorder()
    {
        m_messages = QAskUser::setMessageHandler([this](QMessageBox::Icon, const QString &title, const QString &text,
                                                        QMessageBox::StandardButtons, QMessageBox::StandardButton) {
            titles << title;
            texts << text;
            return answer;
        });
        m_files = QAskUser::setFileHandler([this](QAskUser::FileMode, const QString &, const QString &,
                                                  const QString &) {
            return files.isEmpty() ? QString() : files.takeFirst();
        });
        m_dialogs = QAskUser::setDialogHandler(
            [this](QDialog *dialog) {
                dialogs << dialog->objectName();
                if (onDialog)
                    return onDialog(dialog);
                if (fill)
                    fill(dialog);
                return int(QDialog::Accepted);
            });
    }
    ~AskRecorder()
    {
        QAskUser::setMessageHandler(m_messages);
        QAskUser::setFileHandler(m_files);
        QAskUser::setDialogHandler(m_dialogs);
    }
    AskRecorder(const AskRecorder &) = delete;
    AskRecorder &operator=(const AskRecorder &) = delete;

    // "title: text" of each message so far.
    QStringList messages() const
    {
        QStringList out;
        for (qsizetype i = 0; i < titles.size(); ++i)
            out << titles.at(i) + QLatin1String(": ") + texts.at(i);
        return out;
    }
    // Forgets what was asked so far and answers as at the start.
    void reset()
    {
        titles.clear();
        texts.clear();
        files.clear();
        dialogs.clear();
        answer = QMessageBox::Yes;
        onDialog = nullptr;
        fill = nullptr;
    }

private:
    QAskUser::MessageHandler m_messages;
    QAskUser::FileHandler m_files;
    QAskUser::DialogHandler m_dialogs;
};

} // namespace TestSupport
