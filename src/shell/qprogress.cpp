#include "qprogress.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

QProgress::QProgress(const QString &caption, QWidget *parent)
    : QDialog(parent)
    , m_label(new QLabel(caption, this))
    , m_bar(new QProgressBar(this))
    , m_cancel(new QPushButton(tr("Cancel"), this))
{
    setWindowTitle(caption);
    setWindowModality(Qt::ApplicationModal);
    setMinimumWidth(360);
    m_bar->setRange(0, 0);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addWidget(m_bar);
    layout->addLayout(buttons);
    connect(m_cancel, &QPushButton::clicked, this, &QProgress::cancel);
}

bool QProgress::attach(QObject *sender)
{
    if (!sender)
        return false;
    // String-based: any class with the signal will do, whatever its type.
    return connect(sender, SIGNAL(progress(uint, uint, bool &)), this, SLOT(progress(uint, uint, bool &)),
                   Qt::DirectConnection);
}

void QProgress::setCaption(const QString &caption)
{
    setWindowTitle(caption);
    m_label->setText(caption);
}

QString QProgress::caption() const
{
    return m_label->text();
}

int QProgress::value() const
{
    return m_bar->value();
}

int QProgress::maximum() const
{
    return m_bar->maximum();
}

void QProgress::progress(uint position, uint maximum, bool &allow)
{
    // QProgressBar counts in int; scale large totals down.
    const uint shift = maximum > uint(INT_MAX) ? 1 : 0;
    m_bar->setRange(0, int(maximum >> shift));
    m_bar->setValue(int(qMin(position, maximum) >> shift));
    const bool first = !isVisible();
    if (first)
        show();
    // Pumping on every call would slow down fine-grained work; a few dozen
    // times a second keeps the window alive and the cancel button answering.
    if (first || position >= maximum || !m_sincePump.isValid() || m_sincePump.elapsed() >= 30) {
        QCoreApplication::processEvents();
        m_sincePump.start();
    }
    if (m_cancelled)
        allow = false;
}

void QProgress::cancel()
{
    m_cancelled = true;
    m_cancel->setEnabled(false);
    m_label->setText(tr("Cancelling..."));
}

void QProgress::closeEvent(QCloseEvent *event)
{
    // Closing the window while work runs means stop, not vanish.
    if (!m_cancelled && isVisible()) {
        cancel();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void QProgress::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        cancel();
        return;
    }
    QDialog::keyPressEvent(event);
}
