#pragma once

#include <QWidget>

// A titled surface for the controls a preset places by absolute geometry.
class QPanelWidget : public QWidget
{
    Q_OBJECT

public:
    explicit QPanelWidget(QWidget *parent = nullptr);

    QString title() const { return m_title; }
    int titleTop() const { return m_titleTop; }
    int titleHeight() const { return m_titleHeight; }
    void setTitleMetrics(int top, int height);

public slots:
    void setTitle(const QString &title);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_title;
    int m_titleTop = 0;
    int m_titleHeight = 0;
};
