#include "tests/model/Shrink.h"

#include <algorithm>

namespace Model {
namespace {

using Fails = std::function<bool(const Story&)>;

/// Takes runs of items out, long ones first.
template <class Items>
bool withoutRuns(Story& story, Items Story::*member, const Fails& fails) {
    bool isShorter = false;
    std::size_t run = (story.*member).size();
    while (run > 0) {
        for (std::size_t from = 0; from < (story.*member).size();) {
            Story tried = story;
            auto& items = tried.*member;
            const auto first = items.begin() + static_cast<std::ptrdiff_t>(from);
            const auto count = std::min(run, items.size() - from);
            items.erase(first, first + static_cast<std::ptrdiff_t>(count));
            if (fails(tried)) {
                story = std::move(tried);
                isShorter = true;
            } else {
                from += run;
            }
        }
        run /= 2;
    }
    return isShorter;
}

/// Takes members out of one JSON value, the outer ones first. `within` finds it in a story.
bool withoutMembers(Story& story, const std::function<Json&(Story&)>& within, const Fails& fails) {
    bool isShorter = false;
    for (std::size_t i = 0; i < within(story).members.size();) {
        Story tried = story;
        auto& members = within(tried).members;
        members.erase(members.begin() + static_cast<std::ptrdiff_t>(i));
        if (fails(tried)) {
            story = std::move(tried);
            isShorter = true;
            continue;
        }
        const auto inner = [&within, i](Story& of) -> Json& { return within(of).members[i].value; };
        isShorter = withoutMembers(story, inner, fails) || isShorter;
        ++i;
    }
    return isShorter;
}

std::size_t sizeOf(const Json& json) {
    std::size_t size = 0;
    for (const auto& [key, value] : json.members)
        size += 1 + sizeOf(value);
    return size;
}

}  // namespace

Story shrunk(Story story, const Fails& fails) {
    for (bool isShorter = true; isShorter;) {
        isShorter = withoutRuns(story, &Story::lines, fails);
        isShorter = withoutRuns(story, &Story::afterlife, fails) || isShorter;
        isShorter = withoutMembers(
                        story, [](Story& of) -> Json& { return of.document; }, fails) ||
                    isShorter;
        for (std::size_t i = 0; i < story.lines.size(); ++i)
            isShorter = withoutMembers(
                            story, [i](Story& of) -> Json& { return of.lines[i].value; }, fails) ||
                        isShorter;
    }
    return story;
}

std::size_t sizeOf(const Story& story) {
    std::size_t size = sizeOf(story.document) + story.afterlife.size();
    for (const Change& change : story.lines)
        size += 1 + sizeOf(change.value);
    return size;
}

}  // namespace Model
