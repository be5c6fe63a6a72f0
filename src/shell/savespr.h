#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class SaveSpr;
}

// Asks which SFF version to write, shown as the engine generation that reads
// it and what each one can hold.
class SaveSpr : public QDialog
{
    Q_OBJECT

public:
    explicit SaveSpr(quint32 currentVersion, QWidget *parent = nullptr);
    ~SaveSpr() override;

    // The version of the checked button, one of QSffVersion's.
    quint32 version() const;
    void setVersion(quint32 version);

    // Runs the dialog modally; 0 when cancelled.
    static quint32 ask(quint32 currentVersion, QWidget *parent = nullptr);

private:
    std::unique_ptr<Ui::SaveSpr> ui;
};
