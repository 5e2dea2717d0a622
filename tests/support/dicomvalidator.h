// A DICOM object as a validator reads it: dciodvfy, from Debian's
// dicom3tools, checks it against the standard's modules.
#pragma once

#include <QStringList>

namespace DicomValidator {
// The validator's errors, one a line; its warnings are left out.
QStringList errors(const QString &object);
} // namespace DicomValidator
