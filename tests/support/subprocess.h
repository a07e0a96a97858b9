/*
 * Running programs from tests: a command with its output captured, and the
 * orderly end of a child.  Every wait has a time-out; no shell is involved
 * unless the caller asks for one by running "sh -c".
 */
#ifndef HNSYB_TESTS_SUBPROCESS_H
#define HNSYB_TESTS_SUBPROCESS_H

#include <sys/types.h>

#include <string>
#include <vector>

struct RunResult {
    int exitCode = -1;      // -1 when the program did not exit normally
    bool timedOut = false;
    std::string output;     // standard output and standard error together
};

// Runs argv[0] (searched along PATH) with the given arguments.
RunResult runProgram(const std::vector<std::string>& argv, int timeoutMs = 60000);

// TERM, then KILL after graceMs; always reaps the child.
void stopChild(pid_t pid, int graceMs);

#endif
