#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace QosBench {

/// A text that exists once: equal names are equal pointers.
struct NameText {
    std::string text;
    std::uint32_t hash;
};
using Name = const NameText*;

inline std::uint32_t hashOf(Name name) noexcept {
    return name->hash;
}
inline std::uint32_t hashOf(std::uint32_t number) noexcept {
    return number;
}

/// As little as a map can be: chained nodes that keep their place, found by key and walked in no
/// order. Removed nodes wait for the next entry.
template <class K, class V>
class ChainMap {
public:
    struct Node {
        K key;
        V value;
        Node* next = nullptr;
    };

    ChainMap() = default;
    ChainMap(ChainMap&& other) noexcept { *this = std::move(other); }
    ChainMap& operator=(ChainMap&& other) noexcept {
        std::swap(buckets_, other.buckets_);
        std::swap(size_, other.size_);
        std::swap(spare_, other.spare_);
        return *this;
    }
    ~ChainMap() {
        for (Node* chain : buckets_)
            drop(chain);
        drop(spare_);
    }

    std::size_t size() const noexcept { return size_; }
    V* find(K key) const noexcept {
        if (buckets_.empty()) return nullptr;
        Node* node = buckets_[bucketOf(key)];
        while (node != nullptr && node->key != key)
            node = node->next;
        return node == nullptr ? nullptr : &node->value;
    }
    /// The value under the key, made if there is none.
    V& operator[](K key) {
        if (V* held = find(key)) return *held;
        if (size_ == buckets_.size()) grow();
        Node*& bucket = buckets_[bucketOf(key)];
        bucket = made(key, bucket);
        ++size_;
        return bucket->value;
    }
    void erase(K key) noexcept {
        if (buckets_.empty()) return;
        Node** at = &buckets_[bucketOf(key)];
        while (*at != nullptr && (*at)->key != key)
            at = &(*at)->next;
        if (*at == nullptr) return;
        Node* gone = std::exchange(*at, (*at)->next);
        gone->value = V();
        gone->next = std::exchange(spare_, gone);
        --size_;
    }
    template <class Visit>
    void each(Visit visit) const {
        for (Node* node : buckets_)
            for (; node != nullptr; node = node->next)
                visit(node->key, node->value);
    }

private:
    std::size_t bucketOf(K key) const noexcept { return hashOf(key) & (buckets_.size() - 1); }
    Node* made(K key, Node* next) {
        if (spare_ == nullptr) return new Node{key, V(), next};
        Node* node = std::exchange(spare_, spare_->next);
        node->key = key;
        node->next = next;
        return node;
    }
    void grow() {
        std::vector<Node*> chains(buckets_.empty() ? 4 : 2 * buckets_.size());
        chains.swap(buckets_);
        for (Node* node : chains)
            while (node != nullptr) {
                Node* next = node->next;
                node->next = std::exchange(buckets_[bucketOf(node->key)], node);
                node = next;
            }
    }
    static void drop(Node* node) noexcept {
        while (node != nullptr)
            delete std::exchange(node, node->next);
    }

    std::vector<Node*> buckets_;
    std::size_t size_ = 0;
    Node* spare_ = nullptr;
};

/// Makes names.
class Names {
public:
    Name operator()(const std::string& text) {
        const auto hash = static_cast<std::uint32_t>(std::hash<std::string>()(text));
        auto& alike = byHash_[hash];
        for (const auto& known : alike)
            if (known->text == text) return known.get();
        return alike.emplace_back(new NameText{text, hash}).get();
    }

private:
    ChainMap<std::uint32_t, std::vector<std::unique_ptr<const NameText>>> byHash_;
};

}  // namespace QosBench
