#pragma once

#include "qinterfacecontrolwidgetbase.h"

#include <QPointer>
#include <QWidget>

class QObject;

// A control that is one widget, built once; a preset only moves it onto a
// panel and fixes its size. Placing it again moves the same widget.
class QInterfaceControlWidget : public QInterfaceControlWidgetBase
{
public:
    // owner's ownerSlot receives the widget's changes; ownerSignal drives the
    // widget. custom is the widget of a type built elsewhere (the palette).
    QInterfaceControlWidget(int type, int captionId, const QInterfaceControlOptions *options,
                            QObject *owner, const char *ownerSlot, const char *ownerSignal,
                            const QTranslationUnit &translation, QWidget *custom = nullptr);
    ~QInterfaceControlWidget() override;

    void clear() override;
    void setEnabled(bool enabled) override;
    QWidget *create(QWidget *parent, const QString &name, int x, int y, int width, int height,
                    const QTranslationUnit &translation) override;
    void retranslate(const QTranslationUnit &translation) override;

    QWidget *widget() const { return m_widget; }

private:
    QPointer<QWidget> m_widget;
};
