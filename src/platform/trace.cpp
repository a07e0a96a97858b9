#include "trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {
unsigned long readTraceWord()
{
    const char* text = std::getenv("ZU_DEBUGGING");
    return text == nullptr ? 0 : std::strtoul(text, nullptr, 16);
}
}  // namespace

unsigned long BOS_RUNTIME_DEBUG = readTraceWord();

void bosTrace(unsigned long bit, const char* format, ...)
{
    if ((BOS_RUNTIME_DEBUG & bit) == 0)
        return;
    va_list args;
    va_start(args, format);
    std::vprintf(format, args);
    va_end(args);
    std::fflush(stdout);
}
