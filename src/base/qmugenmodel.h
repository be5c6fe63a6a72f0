#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

// The application's settings and, at the same time, the list of configured
// engines. Values loaded from a file are always strings, values set in code
// are typed: the typed reads below take both alike, and are the one place
// where a setting's text becomes a number or a switch.
class QMugenModel : public QAbstractListModel
{
    Q_OBJECT

public:
    struct Engine
    {
        QString name;
        QString exe;
        QString params;
        // A program that runs the executable, with its own arguments: "wine"
        // for a Windows engine on Linux. Empty: the executable runs itself.
        QString launcher;
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

    // Typed reads; a key that is missing, or has no value, gives the fallback.
    bool flag(const QString &key, bool fallback = false) const;
    int number(const QString &key, int fallback = 0) const;
    QString text(const QString &key, const QString &fallback = QString()) const;
    void set(const QString &key, const QVariant &value) { map[key] = value; }

    // Engine list edits, with the model's notifications, so that the lists
    // bound to it follow at once. Out-of-range rows do nothing. After any of
    // them the file holds exactly the list: slots left over from an older
    // file are dropped, so that a removed engine stays removed.
    void addEngine(const Engine &engine);
    void setEngine(int row, const Engine &engine);
    void removeEngine(int row);
    void clearEngines();
    // Swaps a row with its neighbour above (up) or below; false at the ends.
    bool moveEngine(int row, bool up);

    // "true", "yes", "on" or a number other than 0 are on; "false", "no",
    // "off" and 0 are off (letter case aside); anything else, the fallback.
    static bool toFlag(const QVariant &value, bool fallback = false);

    // The entry itself: reading a key that has none creates it, empty.
    QVariant &operator[](const QString &key) { return map[key]; }

    QList<Engine> engines;
    QMap<QString, QVariant> map;

private:
    void dropStaleSlots();
};
