// Network work for the hospital's systems off the user-interface thread:
// each call takes up to its timeout, and the window must not wait for it.
#pragma once

#include <functional>

#include <QObject>
#include <QPointer>

namespace HospitalJobs {
// Runs `work` on a thread of its own pool, then `done` with its result on
// the application's thread, unless the receiver is gone by then.
void run(QObject *receiver, std::function<QVariant()> work, std::function<void(const QVariant &)> done);
} // namespace HospitalJobs
