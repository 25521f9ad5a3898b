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
        others_.emplace(path);
    } else if (kind == InputChanges::Kind::removed) {
        eraseWithin(others_, path);
        eraseWithin(left_, path);
    }
}

void Ownership::describe(const Place& place, bool wasDescribed) {
    if (wasDescribed) return;
    std::string path = place.path();
    if (left_.erase(path) == 0) others_.insert(std::move(path));
}

void Ownership::noteOthers(const Place& place) {
    others_.insert(place.path());
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
        left_.insert(place.path());
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

void Ownership::eraseWithin(Paths& paths, std::string_view path) {
    if (paths.empty()) return;
    if (const auto at = paths.find(path); at != paths.end()) paths.erase(at);
    // All that begins with the path and a separator.
    paths.erase(paths.lower_bound(withEnd(path, kSeparator)),
                paths.lower_bound(withEnd(path, kBehindSeparator)));
}

}  // namespace QosAgent
