#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

// The application's settings and, at the same time, the list of configured
// engines. The map is read and written directly by key; values loaded from a
// file are always strings, so consumers convert at the point of use.
class QMugenModel : public QAbstractListModel
{
    Q_OBJECT

public:
    struct Engine
    {
        QString name;
        QString exe;
        QString params;
    };

    // The engine slots a file can describe: mugen_0_ to mugen_49_.
    static constexpr int EngineSlots = 50;

    explicit QMugenModel(QObject *parent = nullptr);
    ~QMugenModel() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool insertRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;
    bool removeRows(int row, int count, const QModelIndex &parent = QModelIndex()) override;

    // Replaces the map by the default table; the engine list is kept.
    void setDefaults();

    // Reads a configuration file (config.xml or an exported .bfc3). Every key
    // not in the file falls back to its default; engines of the file are
    // appended to those already listed.
    bool load(const QString &fileName);
    bool save(const QString &fileName);

    // Convenience for the many consumers: same as map[key].
    QVariant &operator[](const QString &key) { return map[key]; }

    QList<Engine> engines;
    QMap<QString, QVariant> map;
};
