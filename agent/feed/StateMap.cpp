#include "agent/feed/StateMap.h"

#include <algorithm>
#include <utility>

namespace QosAgent {

/// A node of a height-balanced tree; never changed once it is shared.
struct StateMap::Node {
    std::shared_ptr<const Entry> entry;
    Link left;
    Link right;
    std::size_t size;
    unsigned height;
};

struct StateMapNodes {
    using Node = StateMap::Node;
    using Link = StateMap::Link;
    using EntryPtr = std::shared_ptr<const StateMap::Entry>;

    static unsigned height(const Link& node) { return node ? node->height : 0; }
    static std::size_t size(const Link& node) { return node ? node->size : 0; }

    static Link make(const EntryPtr& entry, const Link& left, const Link& right) {
        return std::make_shared<const Node>(Node{entry, left, right, size(left) + size(right) + 1,
                                                 std::max(height(left), height(right)) + 1});
    }
    /// Joins two trees whose heights differ by at most 2.
    static Link balanced(const EntryPtr& entry, const Link& left, const Link& right) {
        if (height(left) > height(right) + 1) {
            if (height(left->left) >= height(left->right))
                return make(left->entry, left->left, make(entry, left->right, right));
            const Link& middle = left->right;
            return make(middle->entry, make(left->entry, left->left, middle->left),
                        make(entry, middle->right, right));
        }
        if (height(right) > height(left) + 1) {
            if (height(right->right) >= height(right->left))
                return make(right->entry, make(entry, left, right->left), right->right);
            const Link& middle = right->left;
            return make(middle->entry, make(entry, left, middle->left),
                        make(right->entry, middle->right, right->right));
        }
        return make(entry, left, right);
    }
    static Link inserted(const Link& node, const EntryPtr& entry) {
        if (!node) return make(entry, nullptr, nullptr);
        const int order = entry->path.compare(node->entry->path);
        if (order == 0) return make(entry, node->left, node->right);
        if (order < 0) return balanced(node->entry, inserted(node->left, entry), node->right);
        return balanced(node->entry, node->left, inserted(node->right, entry));
    }
    static EntryPtr least(const Link& node) {
        const Node* at = node.get();
        while (at->left)
            at = at->left.get();
        return at->entry;
    }
    static Link withoutLeast(const Link& node) {
        if (!node->left) return node->right;
        return balanced(node->entry, withoutLeast(node->left), node->right);
    }
    static Link erased(const Link& node, std::string_view path) {
        const int order = path.compare(node->entry->path);
        if (order < 0) return balanced(node->entry, erased(node->left, path), node->right);
        if (order > 0) return balanced(node->entry, node->left, erased(node->right, path));
        if (!node->left) return node->right;
        if (!node->right) return node->left;
        return balanced(least(node->right), node->left, withoutLeast(node->right));
    }
};

std::size_t StateMap::size() const {
    return StateMapNodes::size(root_);
}

StateValuePtr StateMap::find(std::string_view path) const {
    const Entry* entry = firstFrom(path);
    return entry != nullptr && entry->path == path ? entry->value : nullptr;
}

const StateMap::Entry* StateMap::firstFrom(std::string_view path) const {
    const Entry* found = nullptr;
    for (const Node* at = root_.get(); at != nullptr;) {
        const bool isBefore = at->entry->path < path;
        if (!isBefore) found = at->entry.get();
        at = (isBefore ? at->right : at->left).get();
    }
    return found;
}

const StateMap::Entry* StateMap::firstAfter(std::string_view path) const {
    const Entry* found = nullptr;
    for (const Node* at = root_.get(); at != nullptr;) {
        const bool isBehind = at->entry->path > path;
        if (isBehind) found = at->entry.get();
        at = (isBehind ? at->left : at->right).get();
    }
    return found;
}

bool StateMap::holds(std::string_view path) const {
    if (find(path)) return true;
    const std::string below = std::string(path) + '/';
    const Entry* entry = firstFrom(below);
    return entry != nullptr && entry->path.starts_with(below);
}

StateMap StateMap::with(std::string path, StateValuePtr value) const {
    const auto entry = std::make_shared<const Entry>(Entry{std::move(path), std::move(value)});
    return StateMap(StateMapNodes::inserted(root_, entry));
}

StateMap StateMap::without(std::string_view path) const {
    StateMap rest = *this;
    if (find(path)) rest.root_ = StateMapNodes::erased(rest.root_, path);
    const std::string below = std::string(path) + '/';
    for (const Entry* entry = rest.firstFrom(below);
         entry != nullptr && entry->path.starts_with(below); entry = rest.firstFrom(below)) {
        const std::string gone = entry->path;
        rest.root_ = StateMapNodes::erased(rest.root_, gone);
    }
    return rest;
}

bool isAtOrBelow(std::string_view path, std::string_view ancestor) {
    return path.starts_with(ancestor) &&
           (path.size() == ancestor.size() || path[ancestor.size()] == '/');
}

}  // namespace QosAgent
