#include "qpalettelist.h"

#include "sprites/qremapmodel.h"

QPaletteList::QPaletteList(const QPaletteList &other)
{
    *this = other;
}

QPaletteList &QPaletteList::operator=(const QPaletteList &other)
{
    if (this == &other)
        return *this;
    std::vector<std::unique_ptr<QPaletteItem>> copy;
    copy.reserve(other.m_items.size());
    for (const auto &p : other.m_items)
        copy.push_back(std::make_unique<QPaletteItem>(*p));
    m_items = std::move(copy);
    return *this;
}

QPaletteItem *QPaletteList::item(int index)
{
    return index >= 0 && index < count() ? m_items[size_t(index)].get() : nullptr;
}

const QPaletteItem *QPaletteList::item(int index) const
{
    return index >= 0 && index < count() ? m_items[size_t(index)].get() : nullptr;
}

int QPaletteList::append(std::unique_ptr<QPaletteItem> item)
{
    if (!item)
        return -1;
    m_items.push_back(std::move(item));
    return count() - 1;
}

int QPaletteList::find(int start, int group, int number) const
{
    for (int i = qMax(0, start); i < count(); ++i)
        if (m_items[size_t(i)]->group == group && m_items[size_t(i)]->number == number)
            return i;
    return -1;
}

QPaletteInfo QPaletteList::info(int index) const
{
    if (const QPaletteItem *p = item(index))
        return p->info();
    return QPaletteInfo{false, 0, 0, 0, 0};
}

bool QPaletteList::setInfo(int index, const QPaletteInfo &info)
{
    QPaletteItem *p = item(index);
    if (!p)
        return false;
    p->setInfo(info);
    return true;
}

int QPaletteList::root(int index) const
{
    // A chain longer than the list has to run in a circle.
    for (int steps = 0; steps <= count(); ++steps) {
        const QPaletteItem *p = item(index);
        if (!p)
            return -1;
        if (p->hasColors)
            return index;
        index = p->link;
    }
    return -1;
}

QRGBPal *QPaletteList::colors(int index)
{
    const int r = root(index);
    return r < 0 ? nullptr : &m_items[size_t(r)]->colors;
}

const QRGBPal *QPaletteList::colors(int index) const
{
    const int r = root(index);
    return r < 0 ? nullptr : &m_items[size_t(r)]->colors;
}

void QPaletteList::colorsOrZero(int index, QRGBPal *out) const
{
    if (!out)
        return;
    *out = QRGBPal::zeroed();
    if (const QRGBPal *c = colors(index))
        *out = *c;
}

int QPaletteList::findLink(int start, int index) const
{
    for (int i = qMax(0, start); i < count(); ++i)
        if (!m_items[size_t(i)]->hasColors && m_items[size_t(i)]->link == index)
            return i;
    return -1;
}

int QPaletteList::previousGroup(int index) const
{
    if (!item(index))
        return 0;
    int s = index;
    while (s > 0 && m_items[size_t(s - 1)]->group == m_items[size_t(index)]->group)
        --s;
    if (s == 0)
        return 0;
    const qint16 before = m_items[size_t(s - 1)]->group;
    int t = s - 1;
    while (t > 0 && m_items[size_t(t - 1)]->group == before)
        --t;
    return t;
}

int QPaletteList::nextGroup(int index) const
{
    if (!item(index))
        return 0;
    int n = index;
    while (n < count() && m_items[size_t(n)]->group == m_items[size_t(index)]->group)
        ++n;
    return n < count() ? n : 0;
}

static std::unique_ptr<QPaletteItem> newItem(const QPaletteList &list, const QRGBPal &colors, int group, int number)
{
    auto p = std::make_unique<QPaletteItem>();
    p->hasColors = true;
    p->group = qint16(group);
    if (number < 0) {
        int highest = -1;
        bool any = false;
        for (int i = 0; i < list.count(); ++i) {
            const QPaletteItem *q = list.item(i);
            if (q->group == p->group && (!any || q->number > highest)) {
                highest = q->number;
                any = true;
            }
        }
        number = any ? highest + 1 : 0;
    }
    p->number = qint16(number);
    p->setColors(colors);
    return p;
}

static int sameBytes(const std::vector<std::unique_ptr<QPaletteItem>> &items, const QRGBPal &colors)
{
    for (size_t i = 0; i < items.size(); ++i)
        if (items[i]->colors == colors)
            return int(i);
    return -1;
}

int QPaletteList::add(const QRGBPal &colors, bool dedupe, int group, int number, bool *added)
{
    if (added)
        *added = false;
    if (dedupe) {
        const int same = sameBytes(m_items, colors);
        if (same >= 0)
            return same;
    }
    m_items.push_back(newItem(*this, colors, group, number));
    if (added)
        *added = true;
    return count() - 1;
}

int QPaletteList::insert(int position, const QRGBPal &colors, bool dedupe, int group, int number,
                         QList<int> *spritePalettes, bool *added)
{
    position = qMax(0, position);
    if (position >= count())
        return add(colors, dedupe, group, number, added);
    if (added)
        *added = false;
    if (dedupe) {
        const int same = sameBytes(m_items, colors);
        if (same >= 0)
            return same;
    }
    auto p = newItem(*this, colors, group, number);
    m_items.insert(m_items.begin() + position, std::move(p));
    if (spritePalettes)
        for (int &pal : *spritePalettes)
            if (pal >= position)
                ++pal;
    if (added)
        *added = true;
    return position;
}

bool QPaletteList::setColors(int index, const QRGBPal &colors)
{
    QPaletteItem *p = item(index);
    if (!p)
        return false;
    p->setColors(colors);
    p->hasColors = true;
    p->link = 0;
    return true;
}

bool QPaletteList::remove(int index, QList<int> *spritePalettes)
{
    if (!item(index))
        return false;
    // The first later link inherits the colours the removed palette shows.
    const int h = findLink(index + 1, index);
    if (h >= 1) {
        QPaletteItem *heir = m_items[size_t(h)].get();
        const QRGBPal *shown = colors(index);
        heir->colors = shown ? *shown : m_items[size_t(index)]->colors;
        heir->hasColors = true;
        heir->link = 0;
    }
    // Other links to it follow the heir's position before the removal, as the
    // sprite links do; with no heir they are left broken.
    for (int i = index + 1; i < count(); ++i) {
        QPaletteItem *p = m_items[size_t(i)].get();
        if (p->hasColors)
            continue;
        if (p->link > index)
            --p->link;
        else if (p->link == index)
            p->link = quint16(h);
    }
    if (spritePalettes)
        for (int &pal : *spritePalettes) {
            if (pal == index)
                pal = 0;
            else if (pal > index)
                --pal;
        }
    m_items.erase(m_items.begin() + index);
    return true;
}

bool QPaletteList::mergeDuplicates(QList<int> *spritePalettes)
{
    bool merged = false;
    for (int i = count() - 1; i >= 0; --i) {
        if (i >= count())
            continue;
        const QPaletteItem *p = m_items[size_t(i)].get();
        int r = -1;
        if (!p->hasColors) {
            r = root(i);
        } else {
            // Only palettes with colours of their own qualify: a link's stale
            // bytes are not what it shows.
            for (int j = 0; j < i; ++j)
                if (m_items[size_t(j)]->hasColors && m_items[size_t(j)]->colors == p->colors) {
                    r = j;
                    break;
                }
        }
        if (r < 0 || r == i)
            continue;
        if (spritePalettes)
            for (int &pal : *spritePalettes)
                if (pal == i)
                    pal = r;
        remove(i, spritePalettes);
        merged = true;
    }
    return merged;
}

bool QPaletteList::removeUnused(QList<int> *spritePalettes)
{
    for (auto &p : m_items)
        p->offset = 0;
    if (spritePalettes)
        for (int pal : *spritePalettes)
            if (QPaletteItem *p = item(pal))
                ++p->offset;
    bool removed = false;
    for (int i = count() - 1; i >= 0; --i) {
        const QPaletteItem *p = m_items[size_t(i)].get();
        if (p->offset == 0 && p->group != 1) {
            remove(i, spritePalettes);
            removed = true;
        }
    }
    return removed;
}

bool QPaletteList::move(int from, int to, QList<int> *spritePalettes)
{
    if (from == to || !item(from) || !item(to))
        return false;
    auto moving = std::move(m_items[size_t(from)]);
    m_items.erase(m_items.begin() + from);
    m_items.insert(m_items.begin() + to, std::move(moving));
    const int n = count();
    auto at = [this](int i) { return m_items[size_t(i)].get(); };

    if (from < to) {
        for (int i = from + 1; i < n; ++i) {
            QPaletteItem *p = at(i);
            if (p->hasColors)
                continue;
            if (from < p->link && p->link <= to)
                --p->link;
            else if (p->link == from)
                p->link = quint16(to);
        }
        // A link now standing before its target takes over the colours.
        QPaletteItem *moved = at(to);
        if (moved->hasColors) {
            int j = -1;
            for (int i = from; i < to; ++i)
                if (!at(i)->hasColors && at(i)->link == to) {
                    j = i;
                    break;
                }
            if (j >= 0) {
                QPaletteItem *owner = at(j);
                owner->hasColors = true;
                owner->colors = moved->colors;
                owner->link = 0;
                moved->hasColors = false;
                moved->link = quint16(j);
                for (int i = j + 1; i < n; ++i)
                    if (!at(i)->hasColors && at(i)->link == to)
                        at(i)->link = quint16(j);
            }
        }
    } else {
        for (int i = to + 2; i < n; ++i) {
            QPaletteItem *p = at(i);
            if (p->hasColors)
                continue;
            if (to <= p->link && p->link < from)
                ++p->link;
            else if (p->link == from)
                p->link = quint16(to);
        }
        // A link moved in front of its target becomes the owner.
        QPaletteItem *moved = at(to);
        if (!moved->hasColors && moved->link >= to && moved->link + 1 < n) {
            const int t = moved->link + 1;
            QPaletteItem *target = at(t);
            moved->hasColors = true;
            moved->colors = target->colors;
            moved->link = 0;
            target->hasColors = false;
            target->link = quint16(to);
            for (int i = t + 1; i < n; ++i)
                if (!at(i)->hasColors && at(i)->link == t)
                    at(i)->link = quint16(to);
        }
    }

    if (spritePalettes)
        for (int &pal : *spritePalettes) {
            if (pal == from)
                pal = to;
            else if (from < to && pal > from && pal <= to)
                --pal;
            else if (from > to && pal >= to && pal < from)
                ++pal;
        }
    return true;
}

static bool ordersAfter(const QPaletteItem &a, const QPaletteItem &b)
{
    if (a.group != b.group)
        return a.group > b.group;
    return a.number > b.number;
}

bool QPaletteList::autoOrganize(QList<int> *spritePalettes)
{
    bool moved = false;
    for (int i = 1; i < count(); ++i)
        for (int j = 0; j < i; ++j)
            if (ordersAfter(*m_items[size_t(j)], *m_items[size_t(i)])) {
                move(i, j, spritePalettes);
                moved = true;
                break;
            }
    return moved;
}

int QPaletteList::remapped(int index, const QRemapModel &remap) const
{
    const QPaletteItem *p = item(index);
    const int group = p ? p->group : 0;
    const int number = p ? p->number : 0;
    const QRemapModel::Row *row = remap.find(group, number);
    if (!row)
        return -1;
    return find(0, row->dstGroup, row->dstNumber);
}

int QPaletteList::remappedOrSelf(int index, const QRemapModel &remap) const
{
    const int r = remapped(index, remap);
    return r < 0 ? index : r;
}
