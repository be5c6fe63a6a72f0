#include "qanimplayback.h"

#include "animrecords.h"

#include <algorithm>

void QAnimPlayback::setAction(const AnimAction *action)
{
    m_times.clear();
    m_starts.clear();
    m_lap = 0;
    m_loop = 0;
    m_stop = -1;
    if (!action)
        return;
    for (qsizetype i = 0; i < action->frames.size(); ++i) {
        const AnimFrame *f = action->frames.at(i);
        m_times.append(f->time);
        m_starts.append(m_lap);
        if (f->loopstart)
            m_loop = int(i);
        if (f->time < 0) {
            if (m_stop < 0)
                m_stop = int(i);
        } else if (m_stop < 0) {
            m_lap += f->time;
        }
    }
}

qint64 QAnimPlayback::startOf(int frame) const
{
    if (frame < 0 || frame >= m_starts.size())
        return 0;
    return m_starts.at(frame) * TickMs;
}

QAnimPlayback::Position QAnimPlayback::at(qint64 ms) const
{
    Position p;
    if (m_times.isEmpty()) {
        p.stopped = true;
        return p;
    }
    const qint64 ticks = qMax<qint64>(0, ms) / TickMs;
    // The frame that started last at or before `tick` within [from, to).
    const auto find = [this](qint64 tick, int from, int to) {
        const auto begin = m_starts.cbegin() + from;
        const auto end = m_starts.cbegin() + to;
        // Frames of time 0 start where the next one does: the last of equal starts wins.
        auto it = std::upper_bound(begin, end, tick);
        return int(it - m_starts.cbegin()) - 1;
    };
    qint64 lapStart = 0; // tick at which the current lap began, relative to its first frame's start
    int frame = 0;
    if (m_stop >= 0) {
        // Play ends on the frame of time -1: no lap ever completes.
        frame = ticks >= m_starts.at(m_stop) ? m_stop : find(ticks, 0, m_stop + 1);
        p.frame = qMax(0, frame);
        if (p.frame == m_stop) {
            p.stopped = true;
            return p;
        }
        p.nextMs = (m_starts.at(p.frame) + m_times.at(p.frame)) * TickMs;
        return p;
    }
    if (ticks < m_lap) {
        frame = find(ticks, 0, int(m_times.size()));
    } else {
        const qint64 loopTicks = m_lap - m_starts.at(m_loop);
        if (loopTicks <= 0) {
            // Nothing in the loop takes time: the last frame stays.
            p.frame = int(m_times.size()) - 1;
            p.stopped = true;
            return p;
        }
        const qint64 laps = (ticks - m_lap) / loopTicks;
        lapStart = m_lap + laps * loopTicks - m_starts.at(m_loop);
        frame = find(ticks - lapStart, m_loop, int(m_times.size()));
    }
    p.frame = qMax(0, frame);
    p.nextMs = (lapStart + m_starts.at(p.frame) + m_times.at(p.frame)) * TickMs;
    return p;
}
