#pragma once

#include <QMainWindow>

#include <functional>

class QDockWidget;
class QInterface;
class QListView;
class QMugenModel;
class QSnippetManager;

namespace Ui {
class MainWindow;
}

// The one window of the program: its form (menus, the action-list dock) and
// the close question. What fills it is made by the composition root, which
// also hands it the controller that lays it out.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    QDockWidget *actionDock() const;
    QListView *actionList() const;
    // What the window needs while it runs; all null before the controller
    // dies, so that a late event finds nothing to call.
    void setController(QInterface *controller, QMugenModel *config, QSnippetManager *snippets);

    // The question asked before closing; tests answer it themselves.
    using CloseQuestion = std::function<bool(QWidget *parent)>;
    void setCloseQuestion(CloseQuestion question) { m_closeQuestion = std::move(question); }
    bool askClose();

public slots:
    void retranslate();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    Ui::MainWindow *ui;
    QInterface *m_controller = nullptr;
    QMugenModel *m_config = nullptr;
    QSnippetManager *m_snippets = nullptr;
    CloseQuestion m_closeQuestion;
};
