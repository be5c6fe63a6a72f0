#pragma once

#include "sprites/qrgbpal.h"

#include <QString>

class QIODevice;

// A palette-file reader. Readers are stateless and made on the fly. The caller
// clears `colors` before load(), so that a short file leaves zeros behind;
// every reader stops after 256 colours and never reads past the device's end.
class QAbstractPalette
{
public:
    virtual ~QAbstractPalette() = default;
    virtual bool load(QIODevice &device, QRGBPal *colors) = 0;
    // Why the last load() failed, for the caller's message.
    QString error() const { return m_error; }

    // Up to `limit` bytes without reserving `limit` first, as QIODevice::read does.
    static QByteArray readAtMost(QIODevice &device, qint64 limit);

protected:
    bool fail(const QString &why)
    {
        m_error = why;
        return false;
    }

private:
    QString m_error;
};
