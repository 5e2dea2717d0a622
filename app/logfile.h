// The program's log, kept for the technician: every line the program logs,
// its debug lines included, goes to a file per user under the standard
// state location, time-stamped and with its thread, written at once (a
// crash leaves its last lines) and rotated, so that it never grows beyond
// a bound. The terminal shows warnings and errors only, unless
// QT_LOGGING_RULES asks for more: then it follows those rules.
#pragma once

#include <QString>

namespace LogFile {

struct Limits
{
    qint64 fileBytes = 2 * 1024 * 1024; // a file is rotated beyond this
    int oldFiles = 4;                    // orvix.log.1 ... orvix.log.N kept
};

// The folder of the log: $XDG_STATE_HOME/Kelvane/Orvix (by default
// ~/.local/state/...) on Linux, the local application data folder's "log"
// elsewhere. Needs the organisation and application names set.
QString folder();
// The file written now.
QString path();

// Starts the log; false, and the terminal alone as before, when its file
// cannot be written.
bool install(const Limits &limits = {});
// Back to Qt's own output; for tests.
void uninstall();

} // namespace LogFile
