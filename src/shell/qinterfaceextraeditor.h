#pragma once

#include <QObject>
#include <QString>

class QProject;
class QTranslationUnit;
class QWidget;

// A page of the right panel that works beside any editor (organizer,
// palettes, thumbnails). Its contents come from the preset's panel.
class QInterfaceExtraEditor : public QObject
{
    Q_OBJECT

public:
    // The id that means "no extra editor".
    static constexpr int None = 3;

    using QObject::QObject;

    virtual int id() const = 0;
    virtual QString name() const = 0;
    virtual QWidget *widget() const { return nullptr; }
    virtual void activate(bool reload)
    {
        if (reload)
            m_active = true;
    }
    virtual void deactivate() { m_active = false; }
    virtual void applyConfig() {}
    virtual void setProject(QProject *project) { m_project = project; }
    virtual int captionId() const = 0;
    virtual void retranslate(const QTranslationUnit &) {}

    bool isActive() const { return m_active; }
    QProject *project() const { return m_project; }

signals:
    void modifiedChanged();

protected:
    bool m_active = false;
    QProject *m_project = nullptr;
};
