#pragma once

#include "qinterfacecontrol.h"

#include <QAbstractItemView>
#include <QList>

class QAbstractItemModel;
class QObject;

// How a control widget is set up beyond its type. Only the fields of the
// control's type are read.
struct QInterfaceControlOptions
{
    // Spin boxes (types 5 and 6).
    double minimum = -99999;
    double maximum = 99999;
    double step = 1;
    // Combo boxes (types 8 and 9): caption ids; a -1 ends the list early.
    QList<int> captions;
    // List views (type 10).
    QAbstractItemModel *model = nullptr;
    QAbstractItemView::SelectionBehavior selectionBehavior = QAbstractItemView::SelectRows;
    QAbstractItemView::SelectionMode selectionMode = QAbstractItemView::SingleSelection;
};

// Common part of the controls that are widgets: the kind, the caption and
// the options the widget is built from.
class QInterfaceControlWidgetBase : public QInterfaceControl
{
public:
    enum Type {
        ToolButton = 1,
        Label = 2,
        ScrollBar = 3,
        LineEdit = 4,
        SpinBox = 5,
        DoubleSpinBox = 6,
        CheckBox = 7,
        ComboBox = 8,
        ComboBox2 = 9,
        ListView = 10,
        TreeView = 11,
        Palette = 12,
        Line = 13,
    };

    QInterfaceControlWidgetBase(int type, int captionId, const QInterfaceControlOptions *options);

    int type() const { return m_type; }
    int captionId() const { return m_captionId; }
    bool isEnabled() const { return m_enabled; }

protected:
    // Builds the widget of the type and wires it to the owner: the widget's
    // change signal to ownerSlot, ownerSignal to the widget's setter. custom
    // is the widget for types the framework can't build itself (the palette).
    QWidget *build(QWidget *custom, QObject *owner, const char *ownerSlot, const char *ownerSignal,
                   const QTranslationUnit &translation);
    void retranslateWidget(QWidget *widget, const QTranslationUnit &translation) const;
    void place(QWidget *widget, QWidget *parent, const QString &name, int x, int y, int width,
               int height);

    int m_type;
    int m_captionId;
    QInterfaceControlOptions m_options; // a copy: callers pass temporaries
    bool m_enabled = true;
};
