#pragma once

#include <QMainWindow>

#include <functional>

namespace Ui {
class MainWindow;
}

// The one window of the program. Its constructor brings every process-wide
// object into being in a fixed order, and its destructor takes them down in
// the order that lets the controller save the window's state first.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // The question asked before closing; tests answer it themselves.
    using CloseQuestion = std::function<bool(QWidget *parent)>;
    static void setCloseQuestion(CloseQuestion question);
    static bool askClose(QWidget *parent);

public slots:
    void retranslate();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void registerEditors();

    Ui::MainWindow *ui;
};
