// The round-trip counter (see xreply_counter.h).
#include "xreply_counter.h"

#include <X11/Xlib.h>
#include <dlfcn.h>

namespace {

unsigned long replies = 0;

using ReplyFunction = Status (*)(Display*, void*, int, Bool);

}  // namespace

unsigned long hnsyb_bench::roundTrips() { return replies; }

// libX11's own _XReply is found once, as the next definition after ours.
extern "C" __attribute__((visibility("default"))) Status _XReply(Display* display, void* reply, int extra,
                                                                 Bool discard)
{
    static ReplyFunction real = reinterpret_cast<ReplyFunction>(dlsym(RTLD_NEXT, "_XReply"));
    ++replies;
    return real(display, reply, extra, discard);
}
