#pragma once

#include "platform/Orin/Export.h"

namespace Orin {

/// The base class of the members of a `WalkList`.
struct Link {
    Link* next = nullptr;
    Link* prev = nullptr;
    bool isLinked() const noexcept { return next != nullptr; }
};

/// A list in insertion order that may change while it is walked.
///
/// The list does not own its links. Insertion and removal take constant time. A `Walk` visits each
/// link that was in the list when the walk began at most once. It does not visit a link that is
/// removed before its turn, or inserted (even again) after the walk began.
class PLATFORM_API WalkList {
public:
    class Walk;

    WalkList() noexcept : ends_{&ends_, &ends_} {}
    WalkList(const WalkList&) = delete;
    WalkList& operator=(const WalkList&) = delete;
    /// Running walks end at their next step.
    ~WalkList();

    bool empty() const noexcept { return ends_.next == &ends_; }
    Link& front() noexcept { return *ends_.next; }
    const Link& front() const noexcept { return *ends_.next; }
    bool hasOne() const noexcept { return ends_.next == ends_.prev && !empty(); }

    /// Returns the link after this one, which must be in the list; null at the end.
    const Link* after(const Link& link) const noexcept {
        return link.next == &ends_ ? nullptr : link.next;
    }

    /// Precondition: the link is in no list.
    void append(Link& link) noexcept {
        link.prev = ends_.prev;
        link.next = &ends_;
        ends_.prev->next = &link;
        ends_.prev = &link;
        if (walks_ != nullptr) [[unlikely]]
            stopWalksBefore(link);
    }
    /// Precondition: the link is in this list.
    void remove(Link& link) noexcept {
        if (walks_ != nullptr) [[unlikely]]
            stepWalksOff(link);
        link.prev->next = link.next;
        link.next->prev = link.prev;
        link.next = link.prev = nullptr;
    }
    /// Returns the walk that stands on the link, the outermost of several; null if there is none.
    Walk* outermostWalkAt(const Link& link) const noexcept {
        return walks_ == nullptr ? nullptr : outermostOfWalksAt(link);
    }

private:
    Walk* outermostOfWalksAt(const Link& link) const noexcept;
    void stopWalksBefore(Link& entered) noexcept;
    void stepWalksOff(Link& link) noexcept;

    Link ends_;
    /// The running walks, innermost first.
    mutable Walk* walks_ = nullptr;
};

/// One pass over a list. Walks over one list must end in the reverse order of their beginning.
class PLATFORM_API WalkList::Walk {
public:
    explicit Walk(const WalkList& list) noexcept
        : list_(&list), outer_(list.walks_), next_(list.ends_.next), stop_(&list.ends_) {
        enter();
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        if (list_ != nullptr) list_->walks_ = outer_;
    }

    /// Moves to the next link and returns it; null at the end.
    Link* step() noexcept {
        if (next_ == stop_) return current_ = nullptr;
        current_ = next_;
        next_ = current_->next;
        return current_;
    }
    /// Returns the link of the last step. It dangles if the link was removed and destroyed since.
    Link* current() const noexcept { return current_; }

private:
    friend class WalkList;

// The destructor unregisters the walk, which GCC does not see.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif
    void enter() noexcept {
        list_->walks_ = this;
    }
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

    const WalkList* list_;
    Walk* outer_;
    Link* current_ = nullptr;
    Link* next_;
    /// The first link that was inserted since the walk began, or the end of the list.
    const Link* stop_;
};

}  // namespace Orin
