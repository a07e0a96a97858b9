#include <gtest/gtest.h>
#include <signal.h>

// Sanitizer settings for every test program, read by the sanitizer runtimes
// at start-up (unused in other builds).
extern "C" {
// Memory that the X libraries keep for the life of the process (resource
// databases, converter caches, per-display data) is not ours to free.
__attribute__((visibility("default"))) const char* __lsan_default_suppressions()
{
    return "leak:libXt.so\nleak:libXm.so\nleak:libX11.so\nleak:libXext.so\n"
           "leak:libXft.so\nleak:libfontconfig.so\n";
}
__attribute__((visibility("default"))) const char* __tsan_default_options() { return "halt_on_error=1:second_deadlock_stack=1"; }
__attribute__((visibility("default"))) const char* __ubsan_default_options() { return "halt_on_error=1:print_stacktrace=1"; }
}

int main(int argc, char** argv)
{
    // A peer that goes away must fail a test, not kill the runner.
    signal(SIGPIPE, SIG_IGN);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
