// Texts typed by people, made into values an archive takes: names in the
// "Family^Given" form, no backslash (it would make one value several), no
// control characters, and no value longer than its kind allows. A value
// that is too long is cut with a visible "…" rather than refused.
#pragma once

#include <QString>

namespace DicomText {
// Longest values in bytes of UTF-8, by value representation.
constexpr int longString = 64;  // LO
constexpr int shortString = 16; // SH
constexpr int nameComponent = 64; // PN, each of family, given, middle, prefix, suffix

// A value of at most `maxBytes`, cleaned as above.
QString fitted(const QString &typed, int maxBytes);
// A person's name: "Family, Given" becomes "Family^Given"; a name already
// in that form is kept; each component fits.
QString personName(const QString &typed);
// "Family, Given", as a person reads it.
QString readableName(const QString &personName);
} // namespace DicomText
