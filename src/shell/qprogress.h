#pragma once

#include <QDialog>
#include <QElapsedTimer>

class QLabel;
class QProgressBar;
class QPushButton;

// The window of long work. It listens to a progress(uint, uint, bool&) signal,
// keeps the program responsive by running the event loop from inside the
// signal, and clears the bool once the user cancels, which is how work on the
// main thread learns to stop.
class QProgress : public QDialog
{
    Q_OBJECT

public:
    explicit QProgress(const QString &caption, QWidget *parent = nullptr);

    // Connects `sender`'s progress(uint,uint,bool&) signal directly to this window.
    bool attach(QObject *sender);
    void setCaption(const QString &caption);
    QString caption() const;
    bool wasCancelled() const { return m_cancelled; }
    int value() const;
    int maximum() const;

public slots:
    void progress(uint position, uint maximum, bool &allow);
    void cancel();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLabel *m_label;
    QProgressBar *m_bar;
    QPushButton *m_cancel;
    QElapsedTimer m_sincePump;
    bool m_cancelled = false;
};
