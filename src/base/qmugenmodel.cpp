#include "qmugenmodel.h"

#include "qlifecyclelog.h"
#include "qxmlhelper.h"

#include <QDomDocument>
#include <QFile>

#include <algorithm>

namespace {
QString engineKey(int index, const char *field)
{
    return QStringLiteral("mugen_%1_%2").arg(index).arg(QLatin1String(field));
}
} // namespace

QMugenModel::QMugenModel(QObject *parent)
    : QAbstractListModel(parent)
{
    setDefaults();
    QLifecycleLog::record(QStringLiteral("+QMugenModel"));
}

QMugenModel::~QMugenModel()
{
    QLifecycleLog::record(QStringLiteral("-QMugenModel"));
}

bool QMugenModel::toFlag(const QVariant &value, bool fallback)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    const QString s = value.toString().trimmed().toLower();
    if (s == QLatin1String("true") || s == QLatin1String("yes") || s == QLatin1String("on"))
        return true;
    if (s == QLatin1String("false") || s == QLatin1String("no") || s == QLatin1String("off"))
        return false;
    bool isNumber = false;
    const int n = s.toInt(&isNumber);
    return isNumber ? n != 0 : fallback;
}

bool QMugenModel::flag(const QString &key, bool fallback) const
{
    const auto it = map.constFind(key);
    return it == map.constEnd() ? fallback : toFlag(it.value(), fallback);
}

int QMugenModel::number(const QString &key, int fallback) const
{
    const auto it = map.constFind(key);
    if (it == map.constEnd())
        return fallback;
    bool ok = false;
    const int n = it.value().toString().trimmed().toInt(&ok);
    return ok ? n : fallback;
}

QString QMugenModel::text(const QString &key, const QString &fallback) const
{
    const auto it = map.constFind(key);
    return it == map.constEnd() || it.value().isNull() ? fallback : it.value().toString();
}

int QMugenModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(engines.size());
}

QVariant QMugenModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.column() != 0 || role != Qt::DisplayRole || index.row() < 0
        || index.row() >= engines.size())
        return QVariant();
    return engines.at(index.row()).name;
}

bool QMugenModel::insertRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row < 0 || row > engines.size() || count <= 0)
        return false;
    beginInsertRows(QModelIndex(), row, row + count - 1);
    for (int i = 0; i < count; ++i)
        engines.insert(row, Engine());
    endInsertRows();
    return true;
}

bool QMugenModel::removeRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row < 0 || count <= 0 || row + count > engines.size())
        return false;
    beginRemoveRows(QModelIndex(), row, row + count - 1);
    engines.remove(row, count);
    endRemoveRows();
    return true;
}

void QMugenModel::setDefaults()
{
    map.clear();
    map[QStringLiteral("preset")] = QStringLiteral("Classic");
    map[QStringLiteral("iconset")] = QString();
    map[QStringLiteral("stylesheet")] = QString();
    map[QStringLiteral("colorset")] = QString();
    map[QStringLiteral("use_opengl")] = false;
    map[QStringLiteral("zoom_level")] = 2;
    map[QStringLiteral("main_axis_x")] = 150;
    map[QStringLiteral("main_axis_y")] = 250;
    map[QStringLiteral("cache_type")] = 0;
    map[QStringLiteral("cache_compression")] = true;
    map[QStringLiteral("onion_effect")] = 1;
    map[QStringLiteral("onion_opacity")] = 100;
    map[QStringLiteral("thumb_size")] = 64;
    map[QStringLiteral("switch_to_imgpal")] = true;
    map[QStringLiteral("confirm_delete")] = true;
    map[QStringLiteral("confirm_close")] = true;
    map[QStringLiteral("confirm_editimg")] = true;
    map[QStringLiteral("show_addsprite_dialog")] = true;
    map[QStringLiteral("show_addsound_dialog")] = true;
    map[QStringLiteral("show_addpalette_dialog")] = true;
    map[QStringLiteral("backup_onload")] = false;
    map[QStringLiteral("ask_save_palettes")] = true;
    map[QStringLiteral("show_trans_color")] = false;
    map[QStringLiteral("show_left_panel")] = true;
    map[QStringLiteral("show_right_panel")] = true;
    map[QStringLiteral("show_sctrl_list")] = true;
    map[QStringLiteral("show_rulers")] = true;
    map[QStringLiteral("show_clsn1")] = true;
    map[QStringLiteral("show_clsn2")] = true;
    map[QStringLiteral("show_clsn_def1")] = true;
    map[QStringLiteral("show_clsn_def2")] = true;
    map[QStringLiteral("background_type")] = 1;
    map[QStringLiteral("background_x")] = -213;
    map[QStringLiteral("background_y")] = -208;
    map[QStringLiteral("background_file")] = QString();
    map[QStringLiteral("crosshair_type")] = 0;
    map[QStringLiteral("crosshair_sprite")] = QString();
    map[QStringLiteral("crosshair_animation")] = QString();
    map[QStringLiteral("crosshair_extra")] = QString();
    map[QStringLiteral("default_codepage")] = 0;
    map[QStringLiteral("font_name")] = QStringLiteral("Courier");
    map[QStringLiteral("font_size")] = 10;
    map[QStringLiteral("code_line_numbers")] = true;
    map[QStringLiteral("code_highlight_line")] = true;
    map[QStringLiteral("code_highlight_blocks")] = false;
    map[QStringLiteral("code_folding_markers")] = true;
    map[QStringLiteral("code_paren_matching")] = true;
    map[QStringLiteral("window_left")] = 0;
    map[QStringLiteral("window_top")] = 0;
    map[QStringLiteral("window_width")] = 580;
    map[QStringLiteral("window_height")] = 750;
    map[QStringLiteral("window_state")] = 0;
}

bool QMugenModel::load(const QString &fileName)
{
    setDefaults();

    QDomDocument doc(QStringLiteral("ORVConfigML"));
    QFile file(fileName);
    if (!file.exists())
        return false;
    if (!file.open(QIODevice::ReadOnly)) {
        // Goes through the helper so the user hears of it like of a bad file.
        return QXmlHelper::parseFile(doc, fileName);
    }
    if (!QXmlHelper::parse(doc, &file))
        return false;
    file.close();

    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("configuration"))
        return false;

    for (QDomNode n = root.firstChild(); !n.isNull(); n = n.nextSibling()) {
        const QDomElement e = n.toElement();
        if (e.isNull() || e.tagName() != QLatin1String("config"))
            continue;
        const QString value = e.attribute(QStringLiteral("value"), QString());
        const QString name = e.attribute(QStringLiteral("name"), QString());
        map[name] = QVariant(value);
    }

    // Slots may have gaps; the list closes up. Existing rows are kept: a
    // second file adds its engines to the ones already listed.
    for (int i = 0; i < EngineSlots; ++i) {
        const QString nameKey = engineKey(i, "name");
        const auto it = map.constFind(nameKey);
        if (it == map.constEnd())
            continue;
        Engine engine;
        engine.name = it.value().toString();
        engine.params = map.value(engineKey(i, "params")).toString();
        engine.exe = map.value(engineKey(i, "exe")).toString();
        engine.launcher = map.value(engineKey(i, "launcher")).toString();
        const int row = int(engines.size());
        beginInsertRows(QModelIndex(), row, row);
        engines.append(engine);
        endInsertRows();
    }
    return true;
}

bool QMugenModel::save(const QString &fileName)
{
    // Keys of slots beyond the list are left alone: a deleted last engine
    // comes back at the next start, which users of old files rely on.
    for (int i = 0; i < engines.size(); ++i) {
        map[engineKey(i, "name")] = engines.at(i).name;
        map[engineKey(i, "exe")] = engines.at(i).exe;
        map[engineKey(i, "params")] = engines.at(i).params;
        map[engineKey(i, "launcher")] = engines.at(i).launcher;
    }

    QDomDocument doc(QStringLiteral("ORVConfigML"));
    QDomElement root = doc.createElement(QStringLiteral("configuration"));
    doc.appendChild(root);
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        QDomElement e = doc.createElement(QStringLiteral("config"));
        e.setAttribute(QStringLiteral("name"), it.key());
        e.setAttribute(QStringLiteral("value"), it.value().toString());
        root.appendChild(e);
    }
    return QXmlHelper::save(doc, fileName);
}

void QMugenModel::addEngine(const Engine &engine)
{
    const int row = int(engines.size());
    beginInsertRows(QModelIndex(), row, row);
    engines.append(engine);
    endInsertRows();
    dropStaleSlots();
}

void QMugenModel::setEngine(int row, const Engine &engine)
{
    if (row < 0 || row >= engines.size())
        return;
    engines[row] = engine;
    emit dataChanged(index(row), index(row));
    dropStaleSlots();
}

void QMugenModel::removeEngine(int row)
{
    if (removeRows(row, 1))
        dropStaleSlots();
}

void QMugenModel::clearEngines()
{
    if (engines.isEmpty())
        return;
    beginResetModel();
    engines.clear();
    endResetModel();
    dropStaleSlots();
}

bool QMugenModel::moveEngine(int row, bool up)
{
    const int other = up ? row - 1 : row + 1;
    if (row < 0 || row >= engines.size() || other < 0 || other >= engines.size())
        return false;
    // beginMoveRows names the row in front of which the moved one lands.
    const int first = qMin(row, other);
    if (!beginMoveRows(QModelIndex(), first + 1, first + 1, QModelIndex(), first))
        return false;
    engines.swapItemsAt(first, first + 1);
    endMoveRows();
    dropStaleSlots();
    return true;
}

void QMugenModel::dropStaleSlots()
{
    static const char *const fields[] = {"name", "exe", "params", "launcher"};
    const QString prefix = QStringLiteral("mugen_");
    for (auto it = map.begin(); it != map.end();) {
        bool stale = false;
        if (it.key().startsWith(prefix)) {
            const qsizetype end = it.key().indexOf(QLatin1Char('_'), prefix.size());
            bool isNumber = false;
            const int slot = it.key().mid(prefix.size(), end - prefix.size()).toInt(&isNumber);
            const QString field = it.key().mid(end + 1);
            stale = end > 0 && isNumber && slot >= engines.size()
                    && std::any_of(std::begin(fields), std::end(fields),
                                   [&field](const char *f) { return field == QLatin1String(f); });
        }
        it = stale ? map.erase(it) : std::next(it);
    }
}
