#include "agent/openconfig/Ownership.h"

namespace QosAgent {
namespace {

constexpr char kSeparator = '/';
constexpr char kBehindSeparator = kSeparator + 1;

std::string withEnd(std::string_view path, char end) {
    return std::string(path) + end;
}

}  // namespace

void Ownership::inputChanged(InputChanges::Kind kind, std::string_view path) {
    if (kind == InputChanges::Kind::created) {
        note(others_, std::string(path));
    } else if (kind == InputChanges::Kind::removed) {
        eraseWithin(others_, path);
        eraseWithin(left_, path);
    }
}

void Ownership::describe(const Place& place, bool wasDescribed) {
    if (wasDescribed) return;
    std::string path = place.path();
    if (!eraseNote(left_, path)) note(others_, std::move(path));
}

void Ownership::noteOthers(const Place& place) {
    note(others_, place.path());
}

bool Ownership::isOthers(const Place& place) const {
    return !others_.empty() && others_.contains(place.path());
}

bool Ownership::holdsOthers(const Place& place) const {
    return !others_.empty() && holdsBelow(others_, place.path());
}

bool Ownership::leave(const Place& place) {
    if (isOthers(place)) return false;
    if (holdsOthers(place)) {
        note(left_, place.path());
        return false;
    }
    removed(place);
    return true;
}

void Ownership::removed(const Place& place) {
    report(InputChanges::Kind::removed, place);
    forget(place);
}

void Ownership::forget(const Place& place) {
    if (isEmpty()) return;
    const std::string path = place.path();
    eraseWithin(others_, path);
    eraseWithin(left_, path);
}

std::vector<std::string> Ownership::takeHollow() {
    std::vector<std::string> hollow;
    for (auto at = left_.begin(); at != left_.end();) {
        if (holdsBelow(others_, *at)) {
            ++at;
            continue;
        }
        hollow.push_back(*at);
        eraseWithin(left_, hollow.back());
        at = left_.lower_bound(hollow.back());
    }
    return hollow;
}

bool Ownership::holdsBelow(const Paths& paths, std::string_view path) {
    const auto at = paths.lower_bound(withEnd(path, kSeparator));
    return at != paths.end() && at->size() > path.size() && at->starts_with(path) &&
           (*at)[path.size()] == kSeparator;
}

unsigned Ownership::notesOn(std::string_view path) const {
    return (others_.contains(path) ? kOthers : 0) | (left_.contains(path) ? kLeft : 0);
}

void Ownership::notesAre(const std::string& path, unsigned notes) {
    const auto is = [&](Paths& paths, unsigned mark) {
        if ((notes & mark) != 0)
            paths.insert(path);
        else
            paths.erase(path);
    };
    is(others_, kOthers);
    is(left_, kLeft);
}

void Ownership::note(Paths& paths, std::string path) {
    const auto [at, isNew] = paths.insert(std::move(path));
    if (isNew && noteChanged_) noteChanged_(*at);
}

bool Ownership::eraseNote(Paths& paths, const std::string& path) {
    if (paths.erase(path) == 0) return false;
    if (noteChanged_) noteChanged_(path);
    return true;
}

void Ownership::eraseWithin(Paths& paths, std::string_view path) {
    if (paths.empty()) return;
    eraseNote(paths, std::string(path));
    // All that begins with the path and a separator.
    const auto first = paths.lower_bound(withEnd(path, kSeparator));
    const auto last = paths.lower_bound(withEnd(path, kBehindSeparator));
    if (noteChanged_)
        for (auto at = first; at != last; ++at)
            noteChanged_(*at);
    paths.erase(first, last);
}

}  // namespace QosAgent
