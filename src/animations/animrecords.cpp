#include "animrecords.h"

#include <QMutex>
#include <QMutexLocker>

#include <algorithm>

void AnimFrame::resetForParser()
{
    static_cast<AnimFrameData &>(*this) = AnimFrameData();
    std::fill(std::begin(lines), std::end(lines), -1);
    clsnGiven = 0;
    for (QList<QRect> &list : clsn)
        list.clear();
}

void AnimFrame::resetForEditor()
{
    resetForParser();
    group = -1;
    time = 10;
    src = 0;
    dst = 0;
}

bool AnimFrame::sameContent(const AnimFrame &o) const
{
    // Alpha values only count with additive transparency: the text has them nowhere else.
    AnimFrameData a = *this;
    AnimFrameData b = o;
    if (a.trans != TransAdd)
        a.src = a.dst = 0;
    if (b.trans != TransAdd)
        b.src = b.dst = 0;
    if (!(a == b))
        return false;
    for (int i = 0; i < 4; ++i) {
        if (hasClsn(i) != o.hasClsn(i) || clsn[i] != o.clsn[i])
            return false;
    }
    return true;
}

void AnimFrame::copyContent(const AnimFrame &o)
{
    static_cast<AnimFrameData &>(*this) = o;
    std::copy(std::begin(o.lines), std::end(o.lines), std::begin(lines));
    clsnGiven = o.clsnGiven;
    for (int i = 0; i < 4; ++i)
        clsn[i] = o.clsn[i];
}

bool AnimAction::sameContent(const AnimAction &o) const
{
    if (name != o.name || number != o.number || frames.size() != o.frames.size())
        return false;
    for (qsizetype i = 0; i < frames.size(); ++i) {
        if (!frames.at(i)->sameContent(*o.frames.at(i)))
            return false;
    }
    return true;
}

namespace {

// Free records above these counts are deleted at once.
constexpr qsizetype MaxFreeFrames = 65536;
constexpr qsizetype MaxFreeActions = 8192;

template<typename T>
class Pool
{
public:
    ~Pool()
    {
        // Process exit: the free records go; records still held belong to
        // stores that outlive the pool and delete their own.
        QMutexLocker locker(&lock);
        qDeleteAll(free);
        free.clear();
        dead = true;
    }

    T *take()
    {
        QMutexLocker locker(&lock);
        if (!free.isEmpty())
            return free.takeLast();
        ++made;
        return new T;
    }

    void give(T *record)
    {
        QMutexLocker locker(&lock);
        if (dead || free.size() >= MaxFree) {
            --made;
            delete record;
            return;
        }
        free.append(record);
    }

    void purge()
    {
        QMutexLocker locker(&lock);
        made -= free.size();
        qDeleteAll(free);
        free.clear();
        free.squeeze();
    }

    QMutex lock;
    QList<T *> free;
    qsizetype made = 0;
    qsizetype MaxFree = 0;
    bool dead = false;
};

struct Pools
{
    Pools()
    {
        frames.MaxFree = MaxFreeFrames;
        actions.MaxFree = MaxFreeActions;
    }
    Pool<AnimFrame> frames;
    Pool<AnimAction> actions;
    QMutex storesLock;
    int stores = 0;
};

Pools &pools()
{
    static Pools p;
    return p;
}

} // namespace

namespace AnimPool {

AnimFrame *takeFrame()
{
    AnimFrame *f = pools().frames.take();
    f->resetForParser();
    return f;
}

void giveFrame(AnimFrame *frame)
{
    if (!frame)
        return;
    // Emptied here, outside the lock.
    for (QList<QRect> &list : frame->clsn)
        list = QList<QRect>();
    pools().frames.give(frame);
}

AnimAction *takeAction()
{
    AnimAction *a = pools().actions.take();
    a->firstLine = -1;
    a->headerLine = -1;
    a->name.clear();
    a->number = 0;
    a->frames.clear();
    return a;
}

void giveAction(AnimAction *action)
{
    if (!action)
        return;
    for (AnimFrame *f : std::as_const(action->frames))
        giveFrame(f);
    action->frames = QList<AnimFrame *>();
    action->name = QString();
    pools().actions.give(action);
}

void giveActions(const QList<AnimAction *> &actions)
{
    for (AnimAction *a : actions)
        giveAction(a);
}

AnimAction *copyAction(const AnimAction &source)
{
    AnimAction *a = takeAction();
    a->firstLine = source.firstLine;
    a->headerLine = source.headerLine;
    a->name = source.name;
    a->number = source.number;
    a->frames.reserve(source.frames.size());
    for (const AnimFrame *f : source.frames) {
        AnimFrame *copy = takeFrame();
        copy->copyContent(*f);
        a->frames.append(copy);
    }
    return a;
}

void storeCreated()
{
    Pools &p = pools();
    QMutexLocker locker(&p.storesLock);
    ++p.stores;
}

void storeDestroyed()
{
    Pools &p = pools();
    QMutexLocker locker(&p.storesLock);
    if (--p.stores > 0)
        return;
    p.frames.purge();
    p.actions.purge();
}

Counts counts()
{
    Pools &p = pools();
    Counts c;
    {
        QMutexLocker locker(&p.frames.lock);
        c.framesMade = p.frames.made;
        c.framesFree = p.frames.free.size();
    }
    {
        QMutexLocker locker(&p.actions.lock);
        c.actionsMade = p.actions.made;
        c.actionsFree = p.actions.free.size();
    }
    return c;
}

} // namespace AnimPool
