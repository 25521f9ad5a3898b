#include "agent/store/StateRecords.h"

#include <utility>

namespace QosAgent {

void StateRecords::removed(std::string_view path) {
    removed_.emplace(path);
    if (const auto at = put_.find(path); at != put_.end()) put_.erase(at);
    const std::string below = std::string(path) + '/';
    auto last = put_.lower_bound(below);
    const auto first = last;
    while (last != put_.end() && last->first.starts_with(below))
        ++last;
    put_.erase(first, last);
}

void StateRecords::add(const RecordEdit& edit) {
    if (edit.key.area != RecordArea::state) return;
    if (edit.kind == RecordEdit::Kind::put)
        updated(edit.key.path, edit.value);
    else
        removed(edit.key.path);
}

void StateRecords::take(std::vector<RecordEdit>& edits) {
    for (const std::string& path : removed_)
        edits.push_back({RecordEdit::Kind::eraseBelow, {RecordArea::state, path}});
    for (auto& [path, value] : put_)
        edits.push_back({RecordEdit::Kind::put, {RecordArea::state, path}, std::move(value)});
    removed_.clear();
    put_.clear();
}

}  // namespace QosAgent
