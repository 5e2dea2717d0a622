// The File Size menu's table: what each entry stores and the limit it sets.
#pragma once

#include <QtGlobal>

namespace SizeLimit {

// In menu order.
enum Entry { OneGB, TwoGB, ThreeGB, FourGB, FiveGB, TenGB, NoLimit, EntryCount };

constexpr qint64 gigabyte = qint64(1) << 30;

// The value written to the settings; 5 GB stores 4, 10 GB and no limit store
// 1. The next start therefore offers another entry; kept as it always was.
int storedValue(Entry entry);
qint64 byteLimit(Entry entry);

// The entry checked at start for a stored value; -1 for an unknown value.
int entryForStoredValue(int stored);
// The entry that re-checks itself for the current limit; -1 when none does.
int entryForLimit(qint64 limit);

// The limit an unknown stored value leaves in force: two bytes, not gigabytes.
constexpr qint64 unknownValueLimit = 2;

} // namespace SizeLimit
