/*
 * Allocation fault injection, a test facility.
 *
 * Present only in builds configured with HNSYB_FAULT_INJECTION (the test
 * presets); a release build has neither the calls nor their cost.  The
 * countdown belongs to the calling thread, so a test that fails its own
 * allocations leaves other threads alone.
 *
 * The usual loop: arm with 0 to count the allocations an operation makes
 * (ramFaultAllocations), then for each N from 1 to that count run the
 * operation again with ramFaultFailNth(N) and check it fails cleanly.
 */
#ifndef HNSYB_PLATFORM_RAMFAULT_H
#define HNSYB_PLATFORM_RAMFAULT_H

#include "export.h"

#ifdef HNSYB_FAULT_INJECTION
// The n-th allocation of this thread from now fails (once); 0 disarms.
// Either way the thread's allocation counter restarts at 0.
ZU_EXPORT void ramFaultFailNth(unsigned long n);
// Allocations made by this thread since the last ramFaultFailNth.
ZU_EXPORT unsigned long ramFaultAllocations();
// 1 while an armed failure has not been reached yet.
ZU_EXPORT int ramFaultPending();
#endif

#endif
