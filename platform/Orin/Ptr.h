#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace Orin {

/// A counted pointer to a node, or null. Copies share ownership; comparison is by identity.
template <class T>
class Ptr {
public:
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* node) noexcept : node_(node) {
        if (node_) node_->retain();
    }
    /// Takes over the ownership that a new node is born with.
    static Ptr adopt(T* node) noexcept {
        Ptr result;
        result.node_ = node;
        return result;
    }

    Ptr(const Ptr& other) noexcept : Ptr(other.node_) {}
    Ptr(Ptr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    template <class U>
        requires std::is_convertible_v<U*, T*>
    Ptr(const Ptr<U>& other) noexcept : Ptr(other.get()) {}
    template <class U>
        requires std::is_convertible_v<U*, T*>
    Ptr(Ptr<U>&& other) noexcept : node_(other.detach()) {}
    Ptr& operator=(Ptr other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }
    ~Ptr() {
        if (node_) node_->release();
    }

    T* get() const noexcept { return node_; }
    T* operator->() const noexcept { return node_; }
    T& operator*() const noexcept { return *node_; }
    explicit operator bool() const noexcept { return node_ != nullptr; }

    /// Gives the ownership away; the pointer is null afterwards.
    [[nodiscard]] T* detach() noexcept { return std::exchange(node_, nullptr); }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.node_ == b.node_; }

private:
    T* node_ = nullptr;
};

}  // namespace Orin
