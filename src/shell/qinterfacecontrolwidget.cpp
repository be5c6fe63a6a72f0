#include "qinterfacecontrolwidget.h"

QInterfaceControlWidget::QInterfaceControlWidget(int type, int captionId,
                                                 const QInterfaceControlOptions *options,
                                                 QObject *owner, const char *slot,
                                                 const char *signal, const QTranslationUnit &tu,
                                                 QWidget *custom)
    : QInterfaceControlWidgetBase(type, captionId, options)
{
    m_widget = build(custom, owner, slot, signal, tu);
}

QInterfaceControlWidget::~QInterfaceControlWidget()
{
    delete m_widget.data();
}

void QInterfaceControlWidget::clear()
{
    // The widget outlives presets: it is only taken off its panel.
    if (m_widget) {
        m_widget->hide();
        m_widget->setParent(nullptr);
    }
}

void QInterfaceControlWidget::setEnabled(bool enabled)
{
    m_enabled = enabled;
    if (m_widget)
        m_widget->setEnabled(enabled);
}

QWidget *QInterfaceControlWidget::create(QWidget *parent, const QString &name, int x, int y,
                                         int width, int height, const QTranslationUnit &)
{
    if (!m_widget)
        return nullptr;
    place(m_widget, parent, name, x, y, width, height);
    return m_widget;
}

void QInterfaceControlWidget::retranslate(const QTranslationUnit &tu)
{
    retranslateWidget(m_widget, tu);
}
