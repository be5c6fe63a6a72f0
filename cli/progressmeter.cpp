#include "progressmeter.h"

#include "console.h"

ProgressMeter::ProgressMeter(const QString &caption, QObject *parent)
    : QObject(parent)
    , m_caption(caption)
    , m_active(Console::errIsTerminal())
{
}

ProgressMeter::~ProgressMeter() { finish(); }

void ProgressMeter::update(uint pos, uint max, bool &allow)
{
    Q_UNUSED(allow); // the tool never cancels: it runs to the end or fails
    if (!m_active)
        return;
    // A redraw costs a write to the terminal: a few per second are plenty.
    const bool last = max != 0 && pos >= max;
    if (m_drawn && !last && m_sinceDraw.isValid() && m_sinceDraw.elapsed() < 100)
        return;
    m_sinceDraw.start();
    QString text = max ? QStringLiteral("%1: %2/%3 (%4%)").arg(m_caption).arg(pos).arg(max)
                             .arg(qMin<quint64>(100, quint64(pos) * 100 / max))
                       : QStringLiteral("%1: %2").arg(m_caption).arg(pos);
    Console::err(QStringLiteral("\r\x1b[K") + text);
    m_drawn = true;
}

void ProgressMeter::finish()
{
    if (m_drawn)
        Console::err(QStringLiteral("\r\x1b[K"));
    m_drawn = false;
}
