#pragma once

#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Publisher.h"

namespace Vex {

/// An input whose publisher the machine subscribes to, and the subscriber record for it.
template <class T>
class Watched {
public:
    using Given = Orin::Ptr<const T>;

    Watched(Given notifier) noexcept : notifier_(std::move(notifier)) {}

    const T* operator->() const noexcept { return notifier_.get(); }
    const T& operator*() const noexcept { return *notifier_; }
    explicit operator bool() const noexcept { return static_cast<bool>(notifier_); }
    const Given& notifier() const noexcept { return notifier_; }
    friend bool operator==(const Watched& watched, const Given& given) noexcept {
        return watched.notifier_ == given;
    }

    void bind(Orin::Dispatch dispatch, void* owner) noexcept {
        record_.dispatch = dispatch;
        record_.owner = owner;
    }
    bool isSubscribed() const noexcept { return record_.isLinked(); }
    void subscribedIs(bool subscribed) noexcept {
        if (!notifier_) return;
        if (subscribed)
            notifier_->publisher()->subscriberAdd(record_);
        else
            notifier_->publisher()->subscriberDel(record_);
    }

private:
    Given notifier_;
    Orin::Subscriber record_;
};

}  // namespace Vex
