/*
 * Counts the blocking round trips a process makes to the X server.  Every
 * request that waits for the server's answer (a sync, a colour allocation,
 * a keyboard mapping, a property read) goes through libX11's _XReply, which
 * the library calls through its procedure linkage table; the benchmark
 * executables define and export their own _XReply that counts and then
 * calls libX11's.  The count is process-wide and only read by the thread
 * that runs the dialogs.
 */
#ifndef HNSYB_BENCH_XREPLY_COUNTER_H
#define HNSYB_BENCH_XREPLY_COUNTER_H

namespace hnsyb_bench {

// Round trips made so far by this process.
unsigned long roundTrips();

}  // namespace hnsyb_bench

#endif
