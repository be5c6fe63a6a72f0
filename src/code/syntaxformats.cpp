#include "syntaxformats.h"

#include "base/qlifecyclelog.h"

namespace {
const char *const names[SyntaxFormats::Count] = {"comment", "number",     "string",
                                                 "keyword", "block",      "controller",
                                                 "trigger", "const",      "value"};
}

QString SyntaxFormats::roleName(int index)
{
    return index >= 0 && index < Count ? QString::fromLatin1(names[index]) : QString();
}

SyntaxFormats::SyntaxFormats()
    : m_font(QStringLiteral("Courier"), 10)
{
    m_font.setFixedPitch(true);
    m_font.setStyleHint(QFont::TypeWriter);
    for (int i = 0; i < Count; ++i)
        setFormat(i, Record());
    QLifecycleLog::record(QStringLiteral("+SyntaxFormats"));
}

SyntaxFormats::~SyntaxFormats()
{
    QLifecycleLog::record(QStringLiteral("-SyntaxFormats"));
}

void SyntaxFormats::setFont(const QFont &font, bool applyToFormats)
{
    m_font = font;
    if (!applyToFormats)
        return;
    for (QTextCharFormat &f : m_formats) {
        f.setFontFamilies({font.family()});
        f.setFontPointSize(font.pointSizeF() > 0 ? font.pointSizeF() : 10);
        f.setFontFixedPitch(font.fixedPitch());
    }
}

bool SyntaxFormats::applyColors(const QMap<QString, Record> &colors)
{
    bool changed = false;
    for (int i = 0; i < Count; ++i)
        changed |= setFormat(i, colors.value(roleName(i)));
    return changed;
}

SyntaxFormats::Record SyntaxFormats::format(int index) const
{
    if (index < 0 || index >= Count)
        return Record();
    const QTextCharFormat &f = m_formats[size_t(index)];
    return {f.foreground().color(), f.fontWeight() >= QFont::Bold, f.fontItalic()};
}

bool SyntaxFormats::setFormat(int index, const Record &r)
{
    if (index < 0 || index >= Count)
        return false;
    const Record old = format(index);
    QTextCharFormat &f = m_formats[size_t(index)];
    const bool changed = old.color != r.color || old.bold != r.bold || old.italic != r.italic
                         || !f.hasProperty(QTextFormat::ForegroundBrush);
    f.setFontWeight(r.bold ? QFont::Bold : QFont::Normal);
    f.setFontItalic(r.italic);
    f.setForeground(QBrush(r.color));
    f.setFontFamilies({m_font.family()});
    f.setFontPointSize(m_font.pointSizeF() > 0 ? m_font.pointSizeF() : 10);
    return changed;
}

const QTextCharFormat &SyntaxFormats::charFormat(int index) const
{
    return m_formats[size_t(qBound(0, index, Count - 1))];
}
