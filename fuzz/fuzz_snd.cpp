// Any bytes as an SND: nothing may crash, hang or overrun, the samples kept
// never add up to more than the file holds, and what the writer makes of the
// sounds reads back to the very same sounds and the very same bytes.
#include "base/qmessages.h"
#include "sounds/qsounds.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

namespace {

bool sameSounds(const QSounds &a, const QSounds &b)
{
    if (a.count() != b.count())
        return false;
    for (int i = 0; i < a.count(); ++i) {
        const SoundRecord x = a.record(i);
        const SoundRecord y = b.record(i);
        if (x.group != y.group || x.number != y.number || x.channels != y.channels || x.sampleRate != y.sampleRate
            || x.bits != y.bits || a.sample(i) != b.sample(i))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QMessages messages;
    QSounds sounds;
    sounds.setMessages(&messages);
    if (!sounds.fromBytes(bytes, QStringLiteral("fuzz.snd")))
        return 0;
    if (sounds.cache().originalTotal() > quint64(bytes.size()))
        __builtin_trap();
    for (int i = 0; i < sounds.count(); ++i)
        (void)QWavInfo::read(sounds.sample(i));
    const QByteArray written = sounds.toBytes();
    QSounds again;
    if (!again.fromBytes(written, QStringLiteral("again.snd")) || !sameSounds(sounds, again)
        || again.toBytes() != written)
        __builtin_trap();
    return 0;
}
