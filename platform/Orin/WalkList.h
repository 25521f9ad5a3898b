#pragma once

#include "platform/Orin/Export.h"

namespace Orin {

/// What makes an object a member of a `WalkList`.
struct Link {
    Link* next = nullptr;
    Link* prev = nullptr;
    bool isLinked() const noexcept { return next != nullptr; }
};

/// A list, in order of entry, that may change while it is walked.
///
/// It owns nothing. Entering and leaving cost the same however long the list is. Every `Walk`
/// visits each link that was there when it began at most once; a link that leaves before its turn
/// is not visited, one that enters meanwhile (again, or anew) is not visited by walks under way.
class PLATFORM_API WalkList {
public:
    class Walk;

    WalkList() noexcept : ends_{&ends_, &ends_} {}
    WalkList(const WalkList&) = delete;
    WalkList& operator=(const WalkList&) = delete;
    /// Walks under way end at their next step.
    ~WalkList();

    bool empty() const noexcept { return ends_.next == &ends_; }
    Link& front() noexcept { return *ends_.next; }
    const Link& front() const noexcept { return *ends_.next; }
    bool hasOne() const noexcept { return ends_.next == ends_.prev && !empty(); }

    /// The link behind one of this list; null at the end.
    const Link* after(const Link& link) const noexcept {
        return link.next == &ends_ ? nullptr : link.next;
    }

    /// The link must not be in a list.
    void append(Link& link) noexcept {
        link.prev = ends_.prev;
        link.next = &ends_;
        ends_.prev->next = &link;
        ends_.prev = &link;
        if (walks_ != nullptr) [[unlikely]]
            stopWalksBefore(link);
    }
    /// The link must be in this list.
    void remove(Link& link) noexcept {
        if (walks_ != nullptr) [[unlikely]]
            stepWalksOff(link);
        link.prev->next = link.next;
        link.next->prev = link.prev;
        link.next = link.prev = nullptr;
    }
    /// The walk that stands on the link, the outermost if several do; null if none does.
    Walk* outermostWalkAt(const Link& link) const noexcept {
        return walks_ == nullptr ? nullptr : outermostOfWalksAt(link);
    }

private:
    Walk* outermostOfWalksAt(const Link& link) const noexcept;
    void stopWalksBefore(Link& entered) noexcept;
    void stepWalksOff(Link& link) noexcept;

    Link ends_;
    /// The walks under way, innermost first.
    mutable Walk* walks_ = nullptr;
};

/// One pass over a list. Walks of one list end in the opposite order of their beginning.
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

    /// Goes on to the next link and returns it; null at the end.
    Link* step() noexcept {
        if (next_ == stop_) return current_ = nullptr;
        current_ = next_;
        next_ = current_->next;
        return current_;
    }
    /// Where the last step went; dangles when the owner destroys a link that left meanwhile.
    Link* current() const noexcept { return current_; }

private:
    friend class WalkList;

// The destructor takes the walk out again, which GCC does not see.
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
    /// What entered first since the walk began, or the end of the list.
    const Link* stop_;
};

}  // namespace Orin
