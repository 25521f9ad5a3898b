#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "agent/database/InputChanges.h"
#include "agent/openconfig/Place.h"

namespace QosAgent {

/// Who made the members of the inputs that the OpenConfig configuration describes. They are the
/// configuration's own, except those noted here: others made them. A member goes with the
/// configuration only if it is its own and holds nothing of others.
///
/// What is not described belongs to others, except the objects that the configuration left behind
/// because they hold something of others: these go as soon as they hold nothing any more.
///
/// Also reports what the configuration does to the inputs.
class Ownership final : public InputChanges::Listener {
public:
    /// `changes` must outlive the ownership.
    explicit Ownership(const InputChanges& changes) : changes_(changes) {}

    /// Must be told of all changes that others make while something is described or `isEmpty()` is
    /// false, and of no others.
    void inputChanged(InputChanges::Kind kind, std::string_view path) override;
    bool isEmpty() const { return others_.empty() && left_.empty(); }

    /// Tells that a member is described that is there. One that was not described before was made
    /// by others, or left behind.
    void describe(const Place& place, bool wasDescribed);
    /// Others made the member.
    void noteOthers(const Place& place);
    bool isOthers(const Place& place) const;
    /// Others made something within the member.
    bool holdsOthers(const Place& place) const;
    /// Tells that a member is described no longer. True if the caller must remove it, else it
    /// stays.
    bool leave(const Place& place);
    /// Nothing is known any more of the member, and of what is within.
    void forget(const Place& place);
    /// The configuration removed the member.
    void removed(const Place& place);
    /// The configuration made the member.
    void created(const Place& place) const { report(InputChanges::Kind::created, place); }
    /// The configuration changed the member, or something within.
    void changed(const Place& place) const { report(InputChanges::Kind::changed, place); }

    /// What is noted of one path: any of these together.
    static constexpr unsigned kOthers = 1;  ///< others made it
    static constexpr unsigned kLeft = 2;    ///< the configuration left it behind
    unsigned notesOn(std::string_view path) const;
    /// Takes the notes over from an earlier run.
    void notesAre(const std::string& path, unsigned notes);
    /// From now on, `changed` is called with each path whose notes change.
    void noteWatchIs(std::function<void(const std::string& path)> changed) {
        noteChanged_ = std::move(changed);
    }

    /// The topmost objects left behind that hold nothing any more; the caller must remove them.
    std::vector<std::string> takeHollow();

private:
    using Paths = std::set<std::string, std::less<>>;

    static bool holdsBelow(const Paths& paths, std::string_view path);
    void note(Paths& paths, std::string path);
    bool eraseNote(Paths& paths, const std::string& path);
    void eraseWithin(Paths& paths, std::string_view path);
    void report(InputChanges::Kind kind, const Place& place) const {
        if (changes_.hasListeners()) changes_.report(kind, place.path());
    }

    const InputChanges& changes_;
    Paths others_;
    Paths left_;
    std::function<void(const std::string& path)> noteChanged_;
};

}  // namespace QosAgent
