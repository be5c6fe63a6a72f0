#pragma once

#include "base/qorganizableobject.h"

#include <QString>

// The samples of one SND container, one row a sound. The store is the
// project's sound slot; the SND reader and writer come with the sound cache.
class QSounds : public QOrganizableObject
{
    Q_OBJECT

public:
    // Cache settings ("cache_type", "cache_compression") are fixed for the
    // lifetime of the store.
    explicit QSounds(int cacheType = 0, int cacheCompression = 0, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    void move(int from, int to) override;
    void autoOrganize() override;

    int count() const { return 0; }
    bool isEmpty() const { return count() == 0; }
    bool isModified() const { return m_modified; }
    QString path() const { return m_path; }
    int cacheType() const { return m_cacheType; }
    int cacheCompression() const { return m_cacheCompression; }

    void clear();

signals:
    void changed();
    void stopped();
    void progress(uint position, uint total, bool &goOn);

private:
    int m_cacheType;
    int m_cacheCompression;
    QString m_path;
    bool m_modified = false;
};
