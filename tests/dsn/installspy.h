/*
 * A spy on the installer call that writes profile values.
 *
 * The test program defines SQLWritePrivateProfileString itself: the
 * library's calls reach this definition first (the program comes first in
 * the symbol search), which records the arguments exactly as the library
 * gave them and forwards to unixODBC's own function (dlsym RTLD_NEXT).  So a
 * test sees each value as written, before unixODBC rewrites the file and
 * normalises it.  Only programs that link installspy.cpp have the spy.
 */
#ifndef HNSYB_TESTS_DSN_INSTALLSPY_H
#define HNSYB_TESTS_DSN_INSTALLSPY_H

#include <string>
#include <vector>

struct ProfileWrite {
    std::string section;
    std::string key;    // "(null)" for a null entry
    std::string value;  // "(null)" for a null value
    std::string file;
};

// Starts recording (and forgets what was recorded before).
void spyStart();
// What was written since spyStart, in call order.
std::vector<ProfileWrite> spyStop();

#endif
