#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <utility>

namespace Orin {

/// A growable sequence of small plain values. Up to eight bytes of values are stored in the object
/// itself, so that the usual few DSCP values need no allocation.
template <class T>
class Vector {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    static constexpr std::uint32_t kInline = sizeof(std::uint64_t) / sizeof(T);

    Vector() noexcept = default;
    Vector(std::initializer_list<T> values) { assign(values.begin(), values.size()); }
    Vector(const Vector& other) { assign(other.begin(), other.size()); }
    Vector(Vector&& other) noexcept { swap(other); }
    Vector& operator=(const Vector& other) {
        if (this != &other) assign(other.begin(), other.size());
        return *this;
    }
    Vector& operator=(Vector&& other) noexcept {
        swap(other);
        return *this;
    }
    ~Vector() { release(); }

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    const T* begin() const noexcept { return isInline() ? inline_ : heap_; }
    const T* end() const noexcept { return begin() + size_; }
    T* begin() noexcept { return isInline() ? inline_ : heap_; }
    T* end() noexcept { return begin() + size_; }
    const T& operator[](std::size_t index) const noexcept { return begin()[index]; }
    T& operator[](std::size_t index) noexcept { return begin()[index]; }

    void push(T value) {
        if (size_ == capacity_) grow(size_ + 1);
        begin()[size_++] = value;
    }
    /// Removes the last value and returns it. Precondition: not empty.
    T pop() noexcept { return begin()[--size_]; }
    void clear() noexcept { size_ = 0; }
    /// Removes all values and reserves room for `count` others at the returned address. The caller
    /// may write up to that many, and must then call `endIs` with their end.
    T* roomFor(std::size_t count) {
        size_ = 0;
        if (count > capacity_) grow(static_cast<std::uint32_t>(count));
        return begin();
    }
    void endIs(const T* end) noexcept { size_ = static_cast<std::uint32_t>(end - begin()); }
    void swap(Vector& other) noexcept {
        std::swap(bits_, other.bits_);
        std::swap(size_, other.size_);
        std::swap(capacity_, other.capacity_);
    }

    friend bool operator==(const Vector& a, const Vector& b) noexcept {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    bool isInline() const noexcept { return capacity_ == kInline; }
    void release() noexcept {
        if (!isInline()) delete[] heap_;
    }
    void assign(const T* values, std::size_t count) {
        if (count > capacity_) grow(static_cast<std::uint32_t>(count));
        std::copy_n(values, count, begin());
        size_ = static_cast<std::uint32_t>(count);
    }
    /// Precondition: `atLeast` exceeds the capacity.
    void grow(std::uint32_t atLeast) {
        const std::uint32_t capacity = std::max(atLeast, 2 * capacity_);
        T* grown = new T[capacity];
        std::copy_n(begin(), size_, grown);
        release();
        heap_ = grown;
        capacity_ = capacity;
    }

    union {
        T inline_[kInline == 0 ? 1 : kInline];
        T* heap_;
        std::uint64_t bits_ = 0;
    };
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = kInline;
};

}  // namespace Orin
