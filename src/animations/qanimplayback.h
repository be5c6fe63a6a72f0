#pragma once

#include <QList>
#include <QtGlobal>

struct AnimAction;

// Where an action stands after some milliseconds of play. Playing follows the
// clock, not the count of timer ticks: whatever a paint costs, the frame shown
// after t ms is the one the engine shows after t ms, and frames that fall
// between two timer ticks are passed over. One tick lasts 15 ms. After the
// last frame play goes back to the last Loopstart frame (or the first); a
// frame of time -1 ends play; frames of time 0 show no time at all.
class QAnimPlayback
{
public:
    static constexpr int TickMs = 15;

    struct Position
    {
        int frame = 0;
        bool stopped = false; // on a frame of time -1 (or nothing to play)
        qint64 nextMs = -1;   // when the shown frame ends; -1 when stopped
    };

    void setAction(const AnimAction *action);
    int frameCount() const { return int(m_times.size()); }
    int loopFrame() const { return m_loop; }
    // Milliseconds from the start of the action to the start of `frame` in
    // its first lap.
    qint64 startOf(int frame) const;
    Position at(qint64 ms) const;

private:
    QList<int> m_times;
    QList<qint64> m_starts; // tick at which each frame begins, first lap
    qint64 m_lap = 0;       // ticks of the first lap
    int m_loop = 0;
    int m_stop = -1;        // first frame of time -1
};
