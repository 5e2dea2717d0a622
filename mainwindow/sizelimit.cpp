// The File Size menu's table: what each entry stores and the limit it sets.
#include "sizelimit.h"

namespace SizeLimit {
namespace {
constexpr int stored[EntryCount] = { 1, 2, 3, 4, 4, 1, 1 };
constexpr qint64 limits[EntryCount] = { 1 * gigabyte, 2 * gigabyte, 3 * gigabyte, 4 * gigabyte,
                                        5 * gigabyte, 10 * gigabyte, 0 };

// 0 means no limit, 1 to 5 and 10 the entry of that many gigabytes; compared
// unsigned, so negative counts are unknown too.
int entryForCount(quint32 count)
{
    if (count == 0)
        return NoLimit;
    if (count >= 1 && count <= 5)
        return int(count) - 1;
    if (count == 10)
        return TenGB;
    return -1;
}
}

int storedValue(Entry entry)
{
    return stored[entry];
}

qint64 byteLimit(Entry entry)
{
    return limits[entry];
}

int entryForStoredValue(int value)
{
    return entryForCount(quint32(value));
}

int entryForLimit(qint64 limit)
{
    return entryForCount(quint32(limit >> 30));
}

} // namespace SizeLimit
