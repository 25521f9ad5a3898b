#include "platform/OvSlab/Tracker.h"

namespace OvSlab {
namespace {

constinit Tracker* firstTracker = nullptr;

}  // namespace

Tracker::Tracker(std::string_view typeName) noexcept : typeName_(typeName), next_(firstTracker) {
    firstTracker = this;
}

Tracker::~Tracker() {
    Tracker** at = &firstTracker;
    while (*at != this)
        at = &(*at)->next_;
    *at = next_;
}

const Tracker* Tracker::first() noexcept {
    return firstTracker;
}

const Tracker* Tracker::find(std::string_view typeName) noexcept {
    const Tracker* at = firstTracker;
    while (at != nullptr && at->typeName_ != typeName)
        at = at->next_;
    return at;
}

}  // namespace OvSlab
