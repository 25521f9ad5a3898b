#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// All pairs of things that members of a whole may do while they are told of a change, visited by a
/// walk, or dropped. Members are numbered from 0 in order of their entry; newcomers from
/// `kNewcomers` on.
///
/// The whole under test and a plain model of it are each a *stage*, on which the same play is run:
///
///     struct Stage {
///         static const std::vector<Verb> kVerbs;      // what its members may do
///         static constexpr bool kDropsAct;            // members may also act when they are
///         dropped Stage(int members, Script& script); void tell(); // one whole notification, or
///         walk void perform(Verb verb, int target);        // nothing where it makes no sense any
///         more
///     };
///
/// A stage says `script.told(*this, member)` at each member that is told, which may perform.
namespace TestSupport {

enum class Verb {
    // with a target, which may be the one who acts
    remove,
    enterAgain,  ///< removed, if it is there, and entered again
    assign,      ///< gets another value
    off,         ///< its notification; `on` is without effect when it is on, and so forth
    on,
    offAndOn,
    zombie,
    noZombie,
    enterAfter,  ///< a newcomer behind the target; before all for a target of -1
    // without
    enter,
    clear,
    again,  ///< tells, or walks, once more
    dropWhole,
    dropOwner,
    allOff,
    allOn,
};

inline constexpr int kNewcomers = 100;

/// When whoever acts does so.
enum class Moment { told, dropped };

struct Cue {
    int actor;
    Moment moment;
    Verb verb;
    int target;
};
std::ostream& operator<<(std::ostream& out, const Cue& cue);

/// All that each of so many members may do.
std::vector<Cue> cuesFor(int members, const std::vector<Verb>& verbs, bool dropsAct);

/// Who was told, in order; a member `m` that was dropped shows as `-1 - m`.
using Told = std::vector<int>;
inline constexpr int kNextTelling = 1'000;

/// What happened on a stage so far, and what is still to be performed.
class Script {
public:
    Script(const Cue& first, const Cue& second) : cues_{first, second} {}

    template <class Stage>
    void told(Stage& stage, int member) {
        note(member);
        perform(stage, member, Moment::told);
    }
    template <class Stage>
    void dropped(Stage& stage, int member) {
        note(-1 - member);
        perform(stage, member, Moment::dropped);
    }
    void nextTelling() { note(kNextTelling); }
    const Told& told() const { return told_; }

private:
    /// Stops the program when there is no end to it.
    void note(int event);
    /// Whoever acts may be gone, and the rest performed by others, when `stage.perform` returns.
    template <class Stage>
    void perform(Stage& stage, int member, Moment moment) {
        for (std::optional<Cue>& cue : cues_) {
            if (!cue || cue->actor != member || cue->moment != moment) continue;
            const Cue now = *std::exchange(cue, std::nullopt);
            stage.perform(now.verb, now.target);
        }
    }

    std::optional<Cue> cues_[2];
    Told told_;
};

/// Plays on a stage: the members are told, and those who are left a second time.
template <class Stage>
Told played(int members, const Cue& first, const Cue& second) {
    Script script(first, second);
    {
        Stage stage(members, script);
        stage.tell();
        script.nextTelling();
        stage.tell();
        script.nextTelling();
    }
    return script.told();
}

/// The plays of which a stage made something else than its model did.
struct Differences {
    std::size_t plays = 0;
    std::size_t count = 0;
    std::string first;
};
std::string difference(int members, const Cue& first, const Cue& second, const Told& told,
                       const Told& expected);

/// Runs all plays of 1 to `largest` members on both stages.
template <class Stage, class Model>
Differences differences(int largest) {
    Differences found;
    for (int members = 1; members <= largest; ++members) {
        const std::vector<Cue> cues = cuesFor(members, Stage::kVerbs, Stage::kDropsAct);
        for (const Cue& first : cues) {
            for (const Cue& second : cues) {
                const Told told = played<Stage>(members, first, second);
                const Told expected = played<Model>(members, first, second);
                ++found.plays;
                if (told == expected) continue;
                if (found.count++ == 0)
                    found.first = difference(members, first, second, told, expected);
            }
        }
    }
    return found;
}

/// The most members to try: 4, or what the environment variable `QOS_REENTRANCY_MEMBERS` says.
int mostMembers();

}  // namespace TestSupport
