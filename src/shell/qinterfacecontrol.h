#pragma once

#include <QString>

class QTranslationUnit;
class QWidget;

// Something a preset can place on a panel by name. A preset may place the
// same control more than once; clear() undoes what the last preset built.
class QInterfaceControl
{
public:
    QInterfaceControl() = default;
    QInterfaceControl(const QInterfaceControl &) = delete;
    QInterfaceControl &operator=(const QInterfaceControl &) = delete;
    virtual ~QInterfaceControl() = default;

    virtual void clear() = 0;
    virtual void setEnabled(bool enabled) = 0;
    // Builds (or places) a widget on parent and returns it, or null when the
    // control has nothing more to place. A width or height of -1 keeps the
    // widget's natural size.
    virtual QWidget *create(QWidget *parent, const QString &name, int x, int y, int width,
                            int height, const QTranslationUnit &translation) = 0;
    virtual void retranslate(const QTranslationUnit &translation) = 0;
};
