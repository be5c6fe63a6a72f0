// Any text through the animation parser: as an AIR file, as a DEF whose
// actions are written back in place, as pasted boxes, and any bytes as a
// bug-report image of the store. Nothing may crash, hang or overrun, the
// messages stay capped, and what the writer makes of a text must read back to
// the very same actions and the very same text.
#include "animations/airformat.h"
#include "animations/qanimationparser.h"
#include "animations/qanimations.h"
#include "base/qmessages.h"
#include "project/qdefanimations.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

namespace {

// Floats are written with six significant digits: compare them as written.
float asWritten(float value)
{
    return AirFormat::number(value).toFloat();
}

bool sameActions(const QList<AnimAction *> &a, const QList<AnimAction *> &b)
{
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i) {
        const AnimAction &x = *a.at(i);
        const AnimAction &y = *b.at(i);
        if (x.name != y.name || x.number != y.number || x.frames.size() != y.frames.size())
            return false;
        for (qsizetype j = 0; j < x.frames.size(); ++j) {
            AnimFrame f;
            f.copyContent(*x.frames.at(j));
            f.scaleX = asWritten(f.scaleX);
            f.scaleY = asWritten(f.scaleY);
            f.angle = asWritten(f.angle);
            if (!f.sameContent(*y.frames.at(j)))
                return false;
        }
    }
    return true;
}

QList<AnimAction *> parse(const QString &text, QAnimationParser::Source source, QMessages *messages = nullptr)
{
    QAnimationParser parser(messages, QStringLiteral("fuzz.air"));
    parser.setSource(source);
    parser.setText(text);
    return parser.parseAll();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Damaged streams make the library warn on every run; printing it only slows the search.
    static const bool quiet = (qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {}), true);
    (void)quiet;
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString text = QString::fromUtf8(bytes);

    // An AIR file: messages capped, and written text reads back the same.
    QMessages messages;
    const QList<AnimAction *> actions = parse(text, QAnimationParser::AirText, &messages);
    if (messages.messages().size() > QAnimationParser::MaxIssues + 1)
        __builtin_trap();
    const QString written = AirFormat::fileText(actions);
    const QList<AnimAction *> again = parse(written, QAnimationParser::AirText);
    if (!sameActions(actions, again) || AirFormat::fileText(again) != written)
        __builtin_trap();
    AnimPool::giveActions(again);

    // A DEF: its actions rewritten in place, once or twice, give the same text.
    const QList<AnimAction *> inDef = parse(text, QAnimationParser::DefinitionsText);
    const QString merged = QDefAnimations::merge(text, inDef, true);
    const QList<AnimAction *> mergedActions = parse(merged, QAnimationParser::DefinitionsText);
    if (!sameActions(inDef, mergedActions) || QDefAnimations::merge(merged, mergedActions, true) != merged)
        __builtin_trap();
    AnimPool::giveActions(inDef);
    AnimPool::giveActions(mergedActions);

    // Pasted boxes, and one action as edited text.
    {
        QAnimations store;
        store.setMessages(&messages);
        store.add();
        store.addClsnFromText(0, 0, text);
        store.updateFromText(0, text);
        // The store's image reads back whole; any bytes are a damaged image.
        QByteArray image;
        store.writeStream(&image);
        QAnimations copy;
        if (!copy.readStream(image) || copy.count() != store.count())
            __builtin_trap();
        copy.readStream(bytes);
    }
    AnimPool::giveActions(actions);
    return 0;
}
