#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>

class QProject;
class QTranslationUnit;

// A large central view shared by several editors; its widget is one page of
// the central stack. The workspace owns its widget.
class QInterfaceWorkspace : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~QInterfaceWorkspace() override;

    virtual int id() const = 0;
    virtual QString name() const = 0;
    virtual QWidget *widget() const { return m_widget; }
    virtual void activate() { m_active = true; }
    virtual void deactivate() { m_active = false; }
    virtual void applyConfig() {}
    virtual void setProject(QProject *project) { m_project = project; }
    virtual void retranslate(const QTranslationUnit &) {}

    bool isActive() const { return m_active; }
    QProject *project() const { return m_project; }

public slots:
    // The status field of this workspace was clicked.
    virtual void statusClicked() {}

protected:
    QPointer<QWidget> m_widget;
    bool m_active = false;
    QProject *m_project = nullptr;
};
