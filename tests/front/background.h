/*
 * A program that runs beside the test while the test is blocked in a call
 * (the dialog's modal loop): started without a shell unless "sh -c" is
 * asked for, waited for with a time-out, always reaped.
 */
#ifndef HNSYB_TESTS_FRONT_BACKGROUND_H
#define HNSYB_TESTS_FRONT_BACKGROUND_H

#include <sys/types.h>

#include <string>
#include <vector>

class Background {
public:
    explicit Background(const std::vector<std::string>& argv);
    ~Background();  // stops the program if it still runs
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    bool started() const { return pid_ > 0; }
    pid_t pid() const { return pid_; }
    bool running();
    // The exit code once the program ended within timeoutMs, else -1 (the
    // program is then stopped).
    int wait(int timeoutMs);

private:
    pid_t pid_ = -1;
};

// "xdotool ..." with a time-out of its own: the output, empty on failure.
std::string xdotool(const std::vector<std::string>& args, int timeoutMs = 30000);
// Unique colours of a window's picture taken with ImageMagick (0 on failure).
int windowColours(const std::string& window, const std::string& pngPath);

#endif
