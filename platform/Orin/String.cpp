#include "platform/Orin/String.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <stdexcept>
#include <vector>

#include "platform/Orin/ThreadLock.h"

namespace Orin {
namespace {

constexpr std::uint32_t kLongest = 0x7FFFFFFF;
constexpr std::size_t kFirstPlaces = 64;
constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;

template <class Word>
std::uint64_t wordAt(const char* bytes) noexcept {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof(Word));
    return word;
}

/// All bytes of a text that is not empty and fits into a word, some of them twice.
std::uint64_t shortWordOf(std::string_view text) noexcept {
    const char* end = text.data() + text.size();
    if (text.size() >= sizeof(std::uint32_t))
        return wordAt<std::uint32_t>(text.data()) << 32 |
               wordAt<std::uint32_t>(end - sizeof(std::uint32_t));
    const auto byteAt = [&](std::size_t index) {
        return static_cast<std::uint64_t>(static_cast<unsigned char>(text[index]));
    };
    return byteAt(0) << 16 | byteAt(text.size() / 2) << 8 | byteAt(text.size() - 1);
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
        hash = folded(hash, wordAt<std::uint64_t>(text.data()));
        text.remove_prefix(sizeof(std::uint64_t));
    }
    hash = folded(hash, shortWordOf(text));
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

/// The texts given out by `String::shared`; it does not keep them alive. A table that is at most
/// half full; a text stands at the first place that was free from that of its hash on.
class SharedTexts {
public:
    String find(std::string_view text) {
        const ThreadLock lock(mutex_);
        const std::uint32_t hash = hashOf(text);
        const std::size_t place = placeOf(text, hash);
        const bool isHeld = places_[place] != nullptr;
        if (isHeld && places_[place]->refs.upUnlessGone()) {  // uncovered: as below
            String found;
            found.text_ = places_[place];
            return found;
        }
        // One that lost its last owner this moment, in another thread, makes room.
        if (isHeld) vacate(place);  // uncovered: true only against another thread
        if (2 * (count_ + 1) > places_.size()) grow();
        String made(text);
        made.text_->isShared = 1;
        places_[placeOf(text, hash)] = made.text_;
        ++count_;
        return made;
    }
    void remove(String::Text* text) noexcept {
        const ThreadLock lock(mutex_);
        const std::size_t place = placeOf(viewOf(text), text->hash);
        const bool isKept = places_[place] == text;  // uncovered: see find()
        if (isKept) vacate(place);                   // uncovered: false only where find() made room
    }
    static SharedTexts& instance() {
        static auto* const texts = new SharedTexts;  // outlives every static text
        return *texts;
    }

private:
    static std::string_view viewOf(String::Text* text) { return {text->bytes(), text->size}; }
    std::size_t after(std::size_t place) const noexcept {
        return (place + 1) & (places_.size() - 1);
    }
    /// Where the text is, or is to come.
    std::size_t placeOf(std::string_view text, std::uint32_t hash) const noexcept {
        std::size_t place = hash & (places_.size() - 1);
        while (places_[place] != nullptr &&
               !(places_[place]->hash == hash && viewOf(places_[place]) == text))
            place = after(place);
        return place;
    }
    void grow() {
        std::vector<String::Text*> before(2 * places_.size());
        before.swap(places_);
        for (String::Text* text : before)
            if (text != nullptr) places_[placeOf(viewOf(text), text->hash)] = text;
    }
    /// Those behind the place may stand there for want of it: they are placed anew.
    void vacate(std::size_t place) noexcept {
        places_[place] = nullptr;
        --count_;
        for (place = after(place); places_[place] != nullptr; place = after(place)) {
            String::Text* text = std::exchange(places_[place], nullptr);
            places_[placeOf(viewOf(text), text->hash)] = text;
        }
    }

    std::mutex mutex_;
    std::vector<String::Text*> places_ = std::vector<String::Text*>(kFirstPlaces);
    std::size_t count_ = 0;
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
