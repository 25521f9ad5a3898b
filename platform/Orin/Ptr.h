#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace Orin {

/// A reference-counting pointer to a node, or null. Copies share ownership. Compares identity.
template <class T>
class Ptr;

template <class T>
class Ptr<const T> {
public:
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    /// Deleted: a new node already has one reference, and a raw pointer does not say whether to
    /// take it over or to add another. Use `adopt` or `sharing`.
    explicit Ptr(const T* node) = delete;
    /// Takes over the reference that a new node has.
    static Ptr adopt(const T* node) noexcept {
        Ptr result;
        result.node_ = node;
        return result;
    }

    /// Adds a reference to a node that already has an owner. Returns null if the argument is null.
    static Ptr sharing(const T* node) noexcept {
        if (node) node->retain();
        return adopt(node);
    }

    Ptr(const Ptr& other) noexcept : node_(other.node_) {
        if (node_) node_->retain();
    }
    Ptr(Ptr&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, const T*> Ptr(const Ptr<U>& other)
    noexcept : node_(other.get()) {
        if (node_) node_->retain();
    }
    template <class U>
    requires std::is_convertible_v<U*, const T*> Ptr(Ptr<U>&& other)
    noexcept : node_(other.detach()) {}
    Ptr& operator=(Ptr other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }
    ~Ptr() {
        if (node_) node_->release();
    }

    const T* get() const noexcept { return node_; }
    const T* operator->() const noexcept { return node_; }
    const T& operator*() const noexcept { return *node_; }
    explicit operator bool() const noexcept { return node_ != nullptr; }

    /// Gives the reference to the caller, who must release it. The pointer is null afterwards.
    [[nodiscard]] const T* detach() noexcept { return std::exchange(node_, nullptr); }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.node_ == b.node_; }

private:
    const T* node_ = nullptr;
};

/// Returns the pointer without the const that was added when it was made.
template <class T>
class Ptr {
public:
    constexpr Ptr() noexcept = default;
    constexpr Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* node) = delete;
    static Ptr adopt(T* node) noexcept {
        Ptr result;
        result.held_ = Ptr<const T>::adopt(node);
        return result;
    }
    static Ptr sharing(T* node) noexcept {
        Ptr result;
        result.held_ = Ptr<const T>::sharing(node);
        return result;
    }

    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(const Ptr<U>& other)
    noexcept : held_(Ptr<const T>::sharing(other.get())) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U>&& other)
    noexcept : held_(Ptr<const T>::adopt(other.detach())) {}

    T* get() const noexcept { return const_cast<T*>(held_.get()); }
    T* operator->() const noexcept { return get(); }
    T& operator*() const noexcept { return *get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(held_); }

    [[nodiscard]] T* detach() noexcept { return const_cast<T*>(held_.detach()); }
    /// Returns the same pointer as a pointer to const, by reference, so that no copy is needed.
    const Ptr<const T>& asConst() const& noexcept { return held_; }
    const Ptr<const T>& asConst() && = delete;

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.held_ == b.held_; }

private:
    Ptr<const T> held_;
};

}  // namespace Orin
