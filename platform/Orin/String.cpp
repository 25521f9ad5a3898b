#include "platform/Orin/String.h"

#include <sys/auxv.h>

#include <algorithm>
#include <cstdlib>
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

/// Makes hashes differ from process to process, so that nobody can choose texts whose hashes
/// collide. Nothing that the program puts out depends on it.
struct HashSecret {
    std::uint64_t start;
    std::uint64_t factors[2];  ///< odd
};

/// Mixes a word into a hash. With one multiplication a change of the word's highest bits would
/// change the hash in a way that does not depend on the factor; the second one hides it.
std::uint64_t folded(std::uint64_t hash, std::uint64_t word, const HashSecret& secret) noexcept {
    hash = (hash ^ word) * secret.factors[0];
    hash = (hash ^ (hash >> 32)) * secret.factors[1];
    return hash ^ (hash >> 32);
}

/// Made of what the kernel drew when the process began. `QOS_HASH_SEED` gives a number in its
/// place, so that counted instructions are the same in each run.
HashSecret drawnSecret() noexcept {
    constexpr HashSecret kSpread{0x9E3779B97F4A7C15, {0xBF58476D1CE4E5B9, 0x94D049BB133111EB}};
    std::uint64_t drawn[2];
    std::memcpy(drawn, reinterpret_cast<const void*>(::getauxval(AT_RANDOM)), sizeof(drawn));
    if (const char* seed = std::getenv("QOS_HASH_SEED"))
        drawn[0] = drawn[1] = std::strtoull(seed, nullptr, 10);
    const std::uint64_t start = folded(drawn[0], kSpread.start, kSpread);
    const std::uint64_t first = folded(start, drawn[1], kSpread);
    return {start, {first | 1, folded(first, kSpread.start, kSpread) | 1}};
}

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

}  // namespace

constinit const String String::kNone;

TextNote::~TextNote() = default;

std::uint32_t hashOf(std::string_view text) noexcept {
    static const HashSecret secret = drawnSecret();
    if (text.empty()) return 0;
    std::uint64_t hash = secret.start ^ text.size();
    while (text.size() > sizeof(std::uint64_t)) {
        hash = folded(hash, wordAt<std::uint64_t>(text.data()), secret);
        text.remove_prefix(sizeof(std::uint64_t));
    }
    return static_cast<std::uint32_t>(folded(hash, shortWordOf(text), secret));
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
    /// A text behind the place moves there if it could not be found any more otherwise; then its
    /// own place is vacant, and so on up to the next place that is free.
    void vacate(std::size_t place) noexcept {
        for (std::size_t next = after(place); places_[next] != nullptr; next = after(next)) {
            const std::size_t home = places_[next]->hash & (places_.size() - 1);
            if (distance(home, next) < distance(place, next)) continue;
            places_[place] = places_[next];
            place = next;
        }
        places_[place] = nullptr;
        --count_;
    }
    std::size_t distance(std::size_t from, std::size_t to) const noexcept {
        return (to - from) & (places_.size() - 1);
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
