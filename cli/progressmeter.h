#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

// Draws "caption: pos/max (n%)" on one line of standard error while long work
// runs, and only when standard error is a terminal, so that logs and pipes stay
// clean. Connect a store's progress(uint,uint,bool&) signal to update().
class ProgressMeter : public QObject
{
    Q_OBJECT

public:
    explicit ProgressMeter(const QString &caption, QObject *parent = nullptr);
    ~ProgressMeter() override;

    // Erases the line; called by the destructor too.
    void finish();

    bool isActive() const { return m_active; }

public slots:
    // `max` 0 means the total is not known yet: only the position is shown.
    void update(uint pos, uint max, bool &allow);

private:
    QString m_caption;
    bool m_active = false;
    bool m_drawn = false;
    QElapsedTimer m_sinceDraw;
};
