#include "tests/support/Reentrancy.h"

#include <cstdlib>
#include <iostream>
#include <sstream>

namespace TestSupport {
namespace {

/// More than any play of two acts can come to: three tellings, each of all members.
constexpr std::size_t kEndless = 1'000;

const char* textOf(Verb verb) {
    switch (verb) {
        case Verb::remove:
            return "removes";
        case Verb::enterAgain:
            return "enters again";
        case Verb::assign:
            return "assigns to";
        case Verb::off:
            return "turns off";
        case Verb::on:
            return "turns on";
        case Verb::offAndOn:
            return "turns off and on";
        case Verb::zombie:
            return "makes a zombie of";
        case Verb::noZombie:
            return "revives";
        case Verb::enterAfter:
            return "enters a newcomer after";
        case Verb::enter:
            return "enters a newcomer";
        case Verb::clear:
            return "clears";
        case Verb::again:
            return "tells again";
        case Verb::dropWhole:
            return "drops the whole";
        case Verb::dropOwner:
            return "drops the owner";
        case Verb::allOff:
            return "turns all off";
        case Verb::allOn:
            return "turns all on";
    }
    return "";
}

std::ostream& operator<<(std::ostream& out, const Told& told) {
    for (const int event : told) {
        if (event == kNextTelling)
            out << " |";
        else if (event < 0)
            out << " (" << -1 - event << ')';
        else
            out << ' ' << event;
    }
    return out;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Cue& cue) {
    out << cue.actor << (cue.moment == Moment::told ? "" : ", dropped,") << ' ' << textOf(cue.verb);
    return cue.verb <= Verb::enterAfter ? out << ' ' << cue.target : out;
}

std::vector<Cue> cuesFor(int members, const std::vector<Verb>& verbs, bool dropsAct) {
    std::vector<Cue> cues;
    const auto add = [&](int actor, Verb verb, int target) {
        cues.push_back({actor, Moment::told, verb, target});
        if (dropsAct) cues.push_back({actor, Moment::dropped, verb, target});
    };
    for (int actor = 0; actor < members; ++actor) {
        for (const Verb verb : verbs) {
            if (verb > Verb::enterAfter) {
                add(actor, verb, actor);
                continue;
            }
            for (int target = verb == Verb::enterAfter ? -1 : 0; target < members; ++target)
                add(actor, verb, target);
        }
    }
    return cues;
}

void Script::note(int event) {
    told_.push_back(event);
    if (told_.size() < kEndless) return;
    std::cerr << "there is no end to it:" << told_ << '\n';
    std::abort();
}

std::string difference(int members, const Cue& first, const Cue& second, const Told& told,
                       const Told& expected) {
    std::ostringstream out;
    out << members << " members; " << first << "; " << second << "; told:" << told
        << "; expected:" << expected;
    return out.str();
}

int mostMembers() {
    const char* most = std::getenv("QOS_REENTRANCY_MEMBERS");
    return most == nullptr ? 4 : std::atoi(most);
}

}  // namespace TestSupport
