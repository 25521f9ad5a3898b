#pragma once
// long: a map and the walks over its nodes are one thing

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace QosAgent {

/// An ordered map whose copies share what they have in common: a copy costs a pointer, a change of
/// one of them O(log n). Entries are immutable, found by their `key()`, and know the order in which
/// they came. Copies may be read by several threads.
///
/// A treap: which entry is above which is up to chance, so no choice of keys makes it slow.
template <class Entry>
class PersistentMap {
public:
    using EntryPtr = std::shared_ptr<const Entry>;

    std::size_t size() const { return sizeOf(root_); }
    bool empty() const { return root_ == nullptr; }

    /// Null if there is none. `Key` is whatever the entries' keys compare with.
    template <class Key>
    const EntryPtr* find(const Key& key) const {
        const Node* at = nodeOf(key);
        return at == nullptr ? nullptr : &at->entry;
    }
    /// The place of an entry in the order in which they came; 0 if there is none.
    template <class Key>
    std::uint64_t orderOf(const Key& key) const {
        const Node* at = nodeOf(key);
        return at == nullptr ? 0 : at->order;
    }
    /// Puts the entry under its key: in the place of the one there, else behind all others. An
    /// `order` that is given is its place instead; it must be above 0, and no other entry's.
    void set(EntryPtr entry, std::uint64_t order = 0) {
        const Node* held = nodeOf(entry->key());
        if (order == 0) order = held == nullptr ? lastOrder_ + 1 : held->order;
        lastOrder_ = std::max(lastOrder_, order);
        if (held != nullptr) {
            root_ = replaced(std::move(root_), std::move(entry), order);
            return;
        }
        auto node = std::make_shared<Node>(Node{{}, {}, std::move(entry), order, chance(), 1});
        root_ = inserted(std::move(root_), std::move(node));
    }
    /// Has no effect if there is none.
    template <class Key>
    void erase(const Key& key) {
        if (nodeOf(key) != nullptr) root_ = without(std::move(root_), key);
    }

    /// Calls `visit` with each entry, in ascending order of keys.
    template <class Visit>
    void each(Visit visit) const {
        eachNode(root_, [&](const Node& node) { visit(node.entry); });
    }
    /// The entry with the least key; null if there is none.
    const EntryPtr* first() const {
        const Node* at = root_.get();
        while (at != nullptr && at->left != nullptr)
            at = at->left.get();
        return at == nullptr ? nullptr : &at->entry;
    }
    /// The entries in the order in which they came.
    std::vector<EntryPtr> inOrder() const {
        std::vector<const Node*> nodes;
        nodes.reserve(size());
        eachNode(root_, [&](const Node& node) { nodes.push_back(&node); });
        std::sort(nodes.begin(), nodes.end(),
                  [](const Node* left, const Node* right) { return left->order < right->order; });
        std::vector<EntryPtr> entries;
        entries.reserve(nodes.size());
        for (const Node* node : nodes)
            entries.push_back(node->entry);
        return entries;
    }

    /// Calls `visit` with what each of the two maps has under a key, one of them null where only
    /// the other has the key, unless both share the entry. Does not look at what copies share.
    template <class Visit>
    static void eachDifference(const PersistentMap& before, const PersistentMap& after,
                               Visit visit) {
        differences(before.root_, after.root_, visit);
    }

private:
    struct Node;
    using NodePtr = std::shared_ptr<Node>;
    struct Node {
        NodePtr left, right;
        EntryPtr entry;
        std::uint64_t order;
        std::uint32_t priority;
        std::uint32_t size;
    };

    static std::uint32_t chance() {
        thread_local std::minstd_rand random{std::random_device{}()};
        return static_cast<std::uint32_t>(random());
    }
    static std::size_t sizeOf(const NodePtr& node) { return node == nullptr ? 0 : node->size; }
    template <class Key>
    const Node* nodeOf(const Key& key) const {
        const Node* at = root_.get();
        while (at != nullptr) {
            const auto& held = at->entry->key();
            if (key == held) return at;
            at = key < held ? at->left.get() : at->right.get();
        }
        return nullptr;
    }
    /// A node that may be changed: itself if no other map has it, else a copy.
    static NodePtr own(NodePtr node) {
        if (node.use_count() > 1) return std::make_shared<Node>(*node);
        // The last reader of another thread may have let go of it just now.
        std::atomic_thread_fence(std::memory_order_acquire);
        return node;
    }
    static NodePtr counted(NodePtr node) {
        node->size = static_cast<std::uint32_t>(1 + sizeOf(node->left) + sizeOf(node->right));
        return node;
    }
    static NodePtr replaced(NodePtr at, EntryPtr entry, std::uint64_t order) {
        at = own(std::move(at));
        if (entry->key() == at->entry->key()) {
            at->entry = std::move(entry);
            at->order = order;
        } else if (entry->key() < at->entry->key()) {
            at->left = replaced(std::move(at->left), std::move(entry), order);
        } else {
            at->right = replaced(std::move(at->right), std::move(entry), order);
        }
        return at;
    }
    static NodePtr inserted(NodePtr at, NodePtr node) {
        if (at == nullptr) return node;
        if (node->priority > at->priority) {
            std::tie(node->left, node->right) = split(std::move(at), node->entry->key());
            return counted(std::move(node));
        }
        at = own(std::move(at));
        if (node->entry->key() < at->entry->key())
            at->left = inserted(std::move(at->left), std::move(node));
        else
            at->right = inserted(std::move(at->right), std::move(node));
        return counted(std::move(at));
    }
    template <class Key>
    static std::pair<NodePtr, NodePtr> split(NodePtr at, const Key& key) {
        if (at == nullptr) return {};
        at = own(std::move(at));
        if (at->entry->key() < key) {
            auto [left, right] = split(std::move(at->right), key);
            at->right = std::move(left);
            return {counted(std::move(at)), std::move(right)};
        }
        auto [left, right] = split(std::move(at->left), key);
        at->left = std::move(right);
        return {std::move(left), counted(std::move(at))};
    }
    static NodePtr joined(NodePtr left, NodePtr right) {
        if (left == nullptr) return right;
        if (right == nullptr) return left;
        if (left->priority > right->priority) {
            left = own(std::move(left));
            left->right = joined(std::move(left->right), std::move(right));
            return counted(std::move(left));
        }
        right = own(std::move(right));
        right->left = joined(std::move(left), std::move(right->left));
        return counted(std::move(right));
    }
    template <class Key>
    static NodePtr without(NodePtr at, const Key& key) {
        at = own(std::move(at));
        if (at->entry->key() == key) return joined(std::move(at->left), std::move(at->right));
        if (key < at->entry->key())
            at->left = without(std::move(at->left), key);
        else
            at->right = without(std::move(at->right), key);
        return counted(std::move(at));
    }
    template <class Visit>
    static void eachNode(const NodePtr& at, Visit&& visit) {
        if (at == nullptr) return;
        eachNode(at->left, visit);
        visit(*at);
        eachNode(at->right, visit);
    }

    /// What a walk has yet to visit, the next on top: whole subtrees and single nodes.
    struct Pending {
        const Node* node;
        bool isWhole;
    };
    class Walk {
    public:
        explicit Walk(const NodePtr& root) { push(root.get()); }
        bool isAtEnd() const { return pending_.empty(); }
        const Pending& top() const { return pending_.back(); }
        void pop() { pending_.pop_back(); }
        /// Takes the subtree on top apart.
        void open() {
            const Node* node = pending_.back().node;
            pending_.pop_back();
            push(node->right.get());
            pending_.push_back({node, false});
            push(node->left.get());
        }

    private:
        void push(const Node* node) {
            if (node != nullptr) pending_.push_back({node, true});
        }
        std::vector<Pending> pending_;
    };

    template <class Visit>
    static void differences(const NodePtr& before, const NodePtr& after, Visit& visit) {
        static const EntryPtr kNone;
        Walk left(before);
        Walk right(after);
        while (!left.isAtEnd() || !right.isAtEnd()) {
            const Pending* l = left.isAtEnd() ? nullptr : &left.top();
            const Pending* r = right.isAtEnd() ? nullptr : &right.top();
            if (l != nullptr && r != nullptr && l->node == r->node && l->isWhole == r->isWhole) {
                left.pop();
                right.pop();
            } else if (l != nullptr && l->isWhole &&
                       (r == nullptr || !r->isWhole || l->node->size >= r->node->size)) {
                left.open();
            } else if (r != nullptr && r->isWhole) {
                right.open();
            } else {
                const bool hasLeft =
                    l != nullptr &&
                    (r == nullptr || !(r->node->entry->key() < l->node->entry->key()));
                const bool hasRight =
                    r != nullptr &&
                    (l == nullptr || !(l->node->entry->key() < r->node->entry->key()));
                const EntryPtr& earlier = hasLeft ? l->node->entry : kNone;
                const EntryPtr& later = hasRight ? r->node->entry : kNone;
                if (earlier != later) visit(earlier, later);
                if (hasLeft) left.pop();
                if (hasRight) right.pop();
            }
        }
    }

    NodePtr root_;
    std::uint64_t lastOrder_ = 0;
};

}  // namespace QosAgent
