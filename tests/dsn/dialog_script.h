/*
 * A scripted user for dialog tests: steps run one after another from timers
 * inside the dialog's own loops (invokeBackend does not return until the
 * dialog ends); a step that returns false runs again a little later, while
 * the server catches up.  A guard ends the dialog like Cancel when the script
 * has not ended it in time; the optional `onExpire` hook then keeps running
 * from the timer, to close boxes that hold nested loops open.
 */
#ifndef HNSYB_TESTS_DSN_DIALOG_SCRIPT_H
#define HNSYB_TESTS_DSN_DIALOG_SCRIPT_H

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "dsn.h"
#include "dsn/backend_impl.h"

#include <X11/Intrinsic.h>

class Script {
public:
    using Step = std::function<bool()>;
    explicit Script(std::vector<Step> steps, std::function<void()> onExpire = {})
        : steps_(std::move(steps)), onExpire_(std::move(onExpire)) {}

    int run(XtAppContext app, Widget parent, driverDSNName* dsn, nd* list, int timeoutMs)
    {
        app_ = app;
        timer_ = XtAppAddTimeOut(app, 50, &Script::tick, this);
        guard_ = XtAppAddTimeOut(app, static_cast<unsigned long>(timeoutMs), &Script::expire, this);
        const int code = invokeBackend(parent, dsn, list);
        if (timer_ != 0)
            XtRemoveTimeOut(timer_);
        if (guard_ != 0)
            XtRemoveTimeOut(guard_);
        return code;
    }
    bool finished() const { return next_ == steps_.size(); }
    bool expired() const { return expired_; }

private:
    bool keepTicking() const { return next_ < steps_.size() || (expired_ && onExpire_); }
    static void tick(XtPointer data, XtIntervalId*)
    {
        auto* self = static_cast<Script*>(data);
        self->timer_ = 0;
        if (self->expired_) {
            if (self->onExpire_)
                self->onExpire_();
        } else if (self->next_ < self->steps_.size() && self->steps_[self->next_]()) {
            ++self->next_;
        }
        if (self->keepTicking())
            self->timer_ = XtAppAddTimeOut(self->app_, 30, &Script::tick, self);
    }
    static void expire(XtPointer data, XtIntervalId*)
    {
        auto* self = static_cast<Script*>(data);
        self->guard_ = 0;
        self->expired_ = true;
        if (self->onExpire_)
            self->onExpire_();
        commonCancelFunctionality(shell1);
        if (self->timer_ == 0 && self->keepTicking())
            self->timer_ = XtAppAddTimeOut(self->app_, 30, &Script::tick, self);
    }

    std::vector<Step> steps_;
    std::function<void()> onExpire_;
    std::size_t next_ = 0;
    XtAppContext app_ = nullptr;
    XtIntervalId timer_ = 0;
    XtIntervalId guard_ = 0;
    bool expired_ = false;
};

#endif
