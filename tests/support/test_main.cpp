#include <gtest/gtest.h>
#include <signal.h>

int main(int argc, char** argv)
{
    // A peer that goes away must fail a test, not kill the runner.
    signal(SIGPIPE, SIG_IGN);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
