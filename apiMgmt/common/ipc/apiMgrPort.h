#pragma once

#include <atomic>

/// The TCP port of the API manager: that of the service-database entry "ostrel-apimgr" over
/// "tcp", or 35000 when there is none. Looked up once per process; later changes of the
/// database show after a restart. Safe from any thread and without a lock: racing first
/// callers store the same value.
int getApiMgrPort();

/// Looks the port up anew, for a process that starts others: those that it starts later have the
/// port of this look-up and need none of their own.
void renewApiMgrPort();

/// The same as the first, with the port stored in `cache`; 0 there means that it has not been
/// looked up. An entry that names port 0 gives 0, so the next call looks it up again.
int getApiMgrPort(std::atomic<int>& cache);
