#include "agent/streams/LineBuffer.h"

#include <algorithm>

namespace QosAgent {
namespace {

/// The memory of a longer line is freed when the next line begins.
constexpr std::size_t kMostRetained = std::size_t{1} << 16;

}  // namespace

bool LineBuffer::next() {
    begin();
    if (rest_.empty()) return false;
    const std::size_t length = rest_.find('\n');
    const std::string_view piece = rest_.substr(0, length);
    line_.append(piece.substr(0, mostKept_ - std::min(mostKept_, line_.size())));
    isBegun_ = true;
    if (length == std::string_view::npos) {
        rest_ = {};
        return false;
    }
    rest_.remove_prefix(length + 1);
    end();
    return true;
}

bool LineBuffer::last() {
    begin();
    if (!isBegun_) return false;
    end();
    return true;
}

void LineBuffer::begin() {
    if (!isEnded_) return;
    isEnded_ = false;
    if (line_.capacity() > kMostRetained) line_ = {};
    line_.clear();
}

void LineBuffer::end() {
    if (line_.ends_with('\r')) line_.pop_back();
    isEnded_ = true;
    isBegun_ = false;
    ++number_;
}

}  // namespace QosAgent
