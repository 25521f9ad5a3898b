#include "platform/Orin/String.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace Orin {
namespace {

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

String::String(std::string_view text) {
    if (text.empty()) return;
    constexpr std::size_t kBytesBegin = offsetof(Text, hash) + sizeof(Text::hash);
    void* memory = ::operator new(std::max(sizeof(Text), kBytesBegin + text.size()));
    text_ = new (memory) Text{{}, static_cast<std::uint32_t>(text.size()), nullptr, hashOf(text)};
    std::memcpy(text_->bytes(), text.data(), text.size());
}

void String::destroy(Text* text) noexcept {
    delete text->note.load(std::memory_order_acquire);
    text->~Text();
    ::operator delete(text);
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
