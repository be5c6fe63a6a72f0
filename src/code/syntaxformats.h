#pragma once

#include <QColor>
#include <QFont>
#include <QMap>
#include <QString>
#include <QTextCharFormat>

#include <array>

// The colour roles of the code editors and the code font, one table for the
// whole program so every open document looks the same.
class SyntaxFormats
{
public:
    struct Record
    {
        QColor color = Qt::black;
        bool bold = false;
        bool italic = false;
    };

    static constexpr int Count = 9;
    static QString roleName(int index);

    SyntaxFormats();
    ~SyntaxFormats();

    QFont font() const { return m_font; }
    void setFont(const QFont &font, bool applyToFormats);

    // Takes the nine roles from a map of role name to record; a missing role
    // counts as black, plain. Returns whether anything changed.
    bool applyColors(const QMap<QString, Record> &colors);
    Record format(int index) const;
    bool setFormat(int index, const Record &record);
    const QTextCharFormat &charFormat(int index) const;

private:
    std::array<QTextCharFormat, Count> m_formats;
    QFont m_font;
};
