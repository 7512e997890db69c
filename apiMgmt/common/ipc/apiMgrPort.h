#pragma once

#include <atomic>

/// The TCP port of the API manager: that of the service-database entry "ostrel-apimgr" over
/// "tcp", or 35000 when there is none. Looked up once per process; later changes of the
/// database show after a restart. Safe from any thread and without a lock: racing first
/// callers store the same value.
int getApiMgrPort();

/// The same with the word that keeps the result; 0 in it means that none is kept yet. An
/// entry with port 0 is returned as 0, and so is looked up again by the next call.
int getApiMgrPort(std::atomic<int>& cache);
