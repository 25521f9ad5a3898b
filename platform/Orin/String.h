#pragma once

#include <atomic>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string_view>
#include <utility>

#include "platform/Orin/Export.h"
#include "platform/Orin/RefCount.h"

namespace Orin {

/// Returns the hash that `String` stores, for look-ups by other text types.
PLATFORM_API std::uint32_t hashOf(std::string_view text) noexcept;

/// Data that is derived from a text and kept with it; see `String::note`.
class PLATFORM_API TextNote {
public:
    virtual ~TextNote();
};

/// Immutable text that its copies share. The hash is computed once. The empty text needs no memory.
///
/// Equality compares the pointer, the hash and the size before the bytes. The order is that of the
/// unsigned bytes. A text may contain NUL, and has at most 2 GiB: a constructor throws
/// `std::length_error` for a longer one.
class PLATFORM_API String {
public:
    String() noexcept = default;
    String(std::string_view text);
    String(const char* text) : String(std::string_view(text)) {}
    String(const String& other) noexcept : text_(other.text_) {
        if (text_ != nullptr) text_->refs.up();
    }
    String(String&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    String& operator=(String other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~String() {
        if (text_ != nullptr && text_->refs.down()) destroy(text_);
    }

    /// Returns the shared text with these bytes: the same one as long as a copy of it exists. For
    /// names that many objects repeat, because comparing them is then comparing pointers.
    static String shared(std::string_view text);

    /// Returns a reference to an empty text.
    static const String& none() noexcept { return kNone; }

    bool empty() const noexcept { return text_ == nullptr; }
    std::size_t size() const noexcept { return text_ == nullptr ? 0 : text_->size; }
    std::string_view view() const noexcept {
        return text_ == nullptr ? std::string_view()
                                : std::string_view(text_->bytes(), text_->size);
    }
    operator std::string_view() const noexcept { return view(); }
    std::uint32_t hash() const noexcept { return text_ == nullptr ? kEmptyHash : text_->hash; }

    /// Returns the note of this text. The first call creates it by `make(view())`. A text has one
    /// kind of note in its lifetime. Precondition: the text is not empty. The reference is valid as
    /// long as any copy of the text exists.
    template <class Note>
    const Note& note(std::unique_ptr<Note> (*make)(std::string_view)) const {
        const TextNote* kept = text_->note.load(std::memory_order_acquire);
        if (kept == nullptr) [[unlikely]]
            kept = &noteIs(make(view()));
        return static_cast<const Note&>(*kept);
    }

    friend bool operator==(const String& a, const String& b) noexcept {
        return a.text_ == b.text_ || (a.hash() == b.hash() && hasEqualBytes(a, b));
    }
    friend bool operator==(const String& a, std::string_view b) noexcept { return a.view() == b; }
    friend bool operator==(const String& a, const char* b) noexcept { return a.view() == b; }
    friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
        return a.view() <=> b.view();
    }
    friend std::ostream& operator<<(std::ostream& out, const String& text) {
        return out << text.view();
    }

private:
    struct Text {
        RefCount refs;
        std::uint32_t size : 31;
        std::uint32_t isShared : 1;
        std::atomic<TextNote*> note;
        std::uint32_t hash;

        char* bytes() noexcept { return reinterpret_cast<char*>(&hash + 1); }
    };
    static constexpr std::uint32_t kEmptyHash = 0;
    static const String kNone;

    friend class SharedTexts;

    static Text* made(std::string_view text);
    static void destroy(Text* text) noexcept;
    static bool hasEqualBytes(const String& a, const String& b) noexcept;
    const TextNote& noteIs(std::unique_ptr<TextNote> note) const;

    Text* text_ = nullptr;
};

}  // namespace Orin

template <>
struct std::hash<Orin::String> {
    std::size_t operator()(const Orin::String& text) const noexcept { return text.hash(); }
};
