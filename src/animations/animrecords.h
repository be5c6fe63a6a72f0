#pragma once

#include <QList>
#include <QRect>
#include <QString>

// The values of one animation element that an editor sets as a whole.
struct AnimFrameData
{
    bool loopstart = false;
    qint16 group = 0;   // -1 for an element with no sprite
    qint16 number = 0;
    qint32 x = 0;
    qint32 y = 0;
    qint32 time = 0;    // ticks; -1 stays forever
    quint8 flip = 0;    // FlipV | FlipH
    quint8 trans = 0;   // TransNone, TransAdd (with src, dst), TransSub
    quint16 src = 256;
    quint16 dst = 256;
    float scaleX = 0;   // 0: not given
    float scaleY = 0;
    float angle = 0;    // degrees, 0: not given
    bool interpOffset = false;
    bool interpBlend = false;
    bool interpScale = false;
    bool interpAngle = false;

    bool operator==(const AnimFrameData &o) const = default;
};

// One element of an action with its collision boxes and the text lines it was
// read from (for the text view and for messages).
struct AnimFrame : AnimFrameData
{
    enum Flip : quint8 { FlipV = 1, FlipH = 2 };
    enum Trans : quint8 { TransNone = 0, TransAdd = 1, TransSub = 2 };
    // Box lists: bit 0 tells Clsn2, bit 1 the default kind.
    enum Clsn { Clsn1 = 0, Clsn2 = 1, Clsn1Default = 2, Clsn2Default = 3 };
    // Slots of `lines`: the frame's first line, the header and the last line of
    // each box block (by Clsn), the element line, and the keyword lines.
    static constexpr int FirstLine = 0;
    static constexpr int ClsnHeadLine = 1; // + Clsn
    static constexpr int DataLine = 5;
    static constexpr int ClsnEndLine = 6;  // + Clsn
    static constexpr int LoopstartLine = 11;
    static constexpr int InterpAngleLine = 12;
    static constexpr int InterpOffsetLine = 13;
    static constexpr int InterpBlendLine = 14;
    static constexpr int InterpScaleLine = 15;
    static constexpr int LineCount = 16;

    qint32 lines[LineCount];
    // A block written with no box ("Clsn2: 0") still says something: the frame
    // has none of its own, or the default is cleared. Bit per Clsn.
    quint8 clsnGiven = 0;
    // Corners as written: x1, y1 in topLeft, x2, y2 in bottomRight, in any order.
    QList<QRect> clsn[4];

    AnimFrame() { resetForParser(); }

    // What the parser starts from: nothing read yet, full alpha.
    void resetForParser();
    // What a new frame of an editor starts from: no sprite, ten ticks.
    void resetForEditor();

    bool hasClsn(int type) const { return !clsn[type].isEmpty() || (clsnGiven & (1u << type)); }
    // Same element and boxes; text lines don't count.
    bool sameContent(const AnimFrame &o) const;
    void copyContent(const AnimFrame &o);
};

struct AnimAction
{
    qint32 firstLine = -1;   // comment above the header, or the header
    qint32 headerLine = -1;
    QString name;
    qint32 number = 0;
    QList<AnimFrame *> frames;

    bool sameContent(const AnimAction &o) const;
};

// Process-wide pools of records: parsing an action again on every edit of its
// text takes records back from the pool instead of allocating. The free lists
// are kept short so that closing a huge file gives its memory back.
namespace AnimPool {

AnimFrame *takeFrame();
void giveFrame(AnimFrame *frame);
// An empty action record.
AnimAction *takeAction();
// Gives the action and all its frames back.
void giveAction(AnimAction *action);
void giveActions(const QList<AnimAction *> &actions);
// Deep copy from the pool.
AnimAction *copyAction(const AnimAction &source);

// Stores count themselves in and out; when the last one goes, the free
// records are deleted.
void storeCreated();
void storeDestroyed();

struct Counts
{
    qsizetype framesMade = 0;
    qsizetype framesFree = 0;
    qsizetype actionsMade = 0;
    qsizetype actionsFree = 0;
};
Counts counts();

} // namespace AnimPool
