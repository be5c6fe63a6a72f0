#include "qbfcachefilter.h"

#include <memory>

#include "sprites/qbypasscachefilter.h"
#include "sprites/qlz5cachefilter.h"
#include "sprites/qpcxcachefilter.h"
#include "sprites/qpngcachefilter.h"
#include "sprites/qrle5cachefilter.h"
#include "sprites/qrle8cachefilter.h"

namespace {
struct FilterTable
{
    std::unique_ptr<QBFCacheFilter> filters[QBFCacheFilter::SlotCount];
    std::unique_ptr<QBFCacheFilter> byPass;
};
// Written once at start-up and once at exit, read from the main thread only.
FilterTable &table()
{
    static FilterTable t;
    return t;
}
} // namespace

QBFCacheFilter::~QBFCacheFilter() = default;

QByteArray QBFCacheFilter::decodeChecked(const QByteArray &stored, const QSpriteSize &size, bool *complete) const
{
    *complete = true;
    return decode(stored, size);
}

void QBFCacheFilter::createFilters()
{
    FilterTable &t = table();
    if (t.byPass)
        return;
    t.filters[PCX] = std::make_unique<QPCXCacheFilter>();
    t.filters[RLE8] = std::make_unique<QRLE8CacheFilter>();
    t.filters[RLE5] = std::make_unique<QRLE5CacheFilter>();
    t.filters[LZ5] = std::make_unique<QLZ5CacheFilter>();
    t.filters[PNG] = std::make_unique<QPNGCacheFilter>();
    t.filters[PCXShortPalette] = std::make_unique<QPCXShortPaletteFilter>();
    t.byPass = std::make_unique<QByPassCacheFilter>();
}

void QBFCacheFilter::destroyFilters()
{
    FilterTable &t = table();
    for (auto &slot : t.filters)
        slot.reset();
    t.byPass.reset();
}

const QBFCacheFilter *QBFCacheFilter::filter(int slot)
{
    if (slot < 0 || slot >= SlotCount)
        return nullptr;
    return table().filters[slot].get();
}

const QBFCacheFilter *QBFCacheFilter::byPass()
{
    return table().byPass.get();
}
