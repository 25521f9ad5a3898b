#include "platform/Orin/String.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <stdexcept>
#include <unordered_set>

#include "platform/Orin/ThreadLock.h"

namespace Orin {
namespace {

constexpr std::uint32_t kLongest = 0x7FFFFFFF;
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;

std::uint64_t wordAt(const char* bytes, std::size_t count) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return word;
}

std::uint64_t folded(std::uint64_t hash, std::uint64_t word) noexcept {
    hash = (hash ^ word) * kMultiplier;
    return hash ^ (hash >> 32);
}

}  // namespace

constinit const String String::kNone;

TextNote::~TextNote() = default;

std::uint32_t hashOf(std::string_view text) noexcept {
    if (text.empty()) return 0;
    std::uint64_t hash = text.size() * kMultiplier;
    while (text.size() > sizeof(std::uint64_t)) {
        hash = folded(hash, wordAt(text.data(), sizeof(std::uint64_t)));
        text.remove_prefix(sizeof(std::uint64_t));
    }
    hash = folded(hash, wordAt(text.data(), text.size()));
    // The upper bits of a product depend on all bits below them; tables index by the lowest ones.
    return static_cast<std::uint32_t>(hash * kMultiplier >> 32);
}

String::String(std::string_view text) : text_(text.empty() ? nullptr : made(text)) {}

String::Text* String::made(std::string_view text) {
    if (text.size() > kLongest) throw std::length_error("text too long");
    constexpr std::size_t kBytesBegin = offsetof(Text, hash) + sizeof(Text::hash);
    void* memory = ::operator new(std::max(sizeof(Text), kBytesBegin + text.size()));
    const auto size = static_cast<std::uint32_t>(text.size());
    auto* made = new (memory) Text{{}, size & kLongest, 0, nullptr, hashOf(text)};
    std::memcpy(made->bytes(), text.data(), text.size());
    return made;
}

/// The texts given out by `String::shared`; it does not keep them alive.
class SharedTexts {
public:
    String find(std::string_view text) {
        const ThreadLock lock(mutex_);
        const auto held = texts_.find(text);
        const bool isHeld = held != texts_.end();
        if (isHeld && (*held)->refs.upUnlessGone()) {  // uncovered: as below
            String found;
            found.text_ = *held;
            return found;
        }
        // One that lost its last owner this moment, in another thread, makes room.
        if (isHeld) texts_.erase(held);  // uncovered: true only against another thread
        String made(text);
        texts_.insert(made.text_);
        made.text_->isShared = 1;
        return made;
    }
    void remove(String::Text* text) noexcept {
        const ThreadLock lock(mutex_);
        const auto held = texts_.find(viewOf(text));
        const bool isKept = held != texts_.end() && *held == text;  // uncovered: see find()
        if (isKept) texts_.erase(held);  // uncovered: false only where find() made room
    }
    static SharedTexts& instance() {
        static auto* const texts = new SharedTexts;  // outlives every static text
        return *texts;
    }

private:
    static std::string_view viewOf(std::string_view text) { return text; }
    static std::string_view viewOf(String::Text* text) { return {text->bytes(), text->size}; }
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept { return hashOf(text); }
        std::size_t operator()(const String::Text* text) const noexcept { return text->hash; }
    };
    struct Equal {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(A a, B b) const {
            return viewOf(a) == viewOf(b);
        }
    };

    std::mutex mutex_;
    std::unordered_set<String::Text*, Hash, Equal> texts_;
};

String String::shared(std::string_view text) {
    return text.empty() ? String() : SharedTexts::instance().find(text);
}

void String::destroy(Text* text) noexcept {
    if (text->isShared != 0) SharedTexts::instance().remove(text);
    delete text->note.load(std::memory_order_acquire);
    text->~Text();
    ::operator delete(text);
}

bool String::hasEqualBytes(const String& a, const String& b) noexcept {
    return a.view() == b.view();
}

// Where two threads make the same note at once, the first one stays: notes depend on nothing but
// the text.
const TextNote& String::noteIs(std::unique_ptr<TextNote> note) const {
    TextNote* kept = nullptr;
    if (text_->note.compare_exchange_strong(kept, note.get(), std::memory_order_acq_rel))
        return *note.release();
    return *kept;
}

}  // namespace Orin
