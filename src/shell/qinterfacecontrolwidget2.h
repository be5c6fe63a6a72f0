#pragma once

#include "qinterfacecontrolwidgetbase.h"

#include <QPointer>
#include <QWidget>

#include <array>

// A control shown twice, in the left panel and in one other place: two
// widgets of the same kind, wired to the same owner. The first placement of a
// preset takes the first widget, the second the other.
class QInterfaceControlWidget2 : public QInterfaceControlWidgetBase
{
public:
    QInterfaceControlWidget2(int type, int captionId, const QInterfaceControlOptions *options,
                             QObject *owner, const char *ownerSlot, const char *ownerSignal,
                             const QTranslationUnit &translation);
    ~QInterfaceControlWidget2() override;

    void clear() override;
    void setEnabled(bool enabled) override;
    QWidget *create(QWidget *parent, const QString &name, int x, int y, int width, int height,
                    const QTranslationUnit &translation) override;
    void retranslate(const QTranslationUnit &translation) override;

    QWidget *widget(int i) const { return i == 0 || i == 1 ? m_widgets[size_t(i)].data() : nullptr; }

private:
    std::array<QPointer<QWidget>, 2> m_widgets;
    int m_placed = 0;
};
