// Ends the event loop normally on SIGTERM, SIGINT and SIGHUP, so that a
// logout or a shutdown closes the recording pipeline the orderly way.
#pragma once

class QObject;

namespace QuitOnSignal {
void install(QObject *parent);
}
