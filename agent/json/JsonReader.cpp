#include "agent/json/JsonReader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "agent/json/CountingIterator.h"
#include "agent/json/DuplicateKeys.h"
#include "agent/json/SyntaxFault.h"

namespace QosAgent {

namespace {

using Lexer = nlohmann::json;

constexpr int kNumberOverflow = 406;  // the id of that exception
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

/// The tokens that the grammar allows after a token, and after the separator that may follow it.
struct Place {
    const Expected& expected;
    char separator;
    const Expected& expectedBeyond;
};

constexpr char kNoSeparator = ' ';  // never found, because white space is skipped
constexpr Place kAtStart{kExpectedValue, kNoSeparator, kExpectedValue};
constexpr Place kInArray{kExpectedElement, kNoSeparator, kExpectedElement};
constexpr Place kInObject{kExpectedMember, kNoSeparator, kExpectedMember};
constexpr Place kAfterKey{kExpectedColon, ':', kExpectedValue};
constexpr Place kAfterElement{kExpectedNextElement, ',', kExpectedValue};
constexpr Place kAfterMember{kExpectedNextMember, ',', kExpectedKey};
constexpr Place kAtEnd{kExpectedEnd, kNoSeparator, kExpectedEnd};

/// The offset of the next token, and the tokens that the grammar allows there.
struct Token {
    std::size_t start;
    const Expected& expected;
};

bool isSpace(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

std::string longerThan(std::size_t bytes) {
    return " longer than " + std::to_string(bytes) + " bytes";
}

/// Builds the tree from the lexer's events. The events have no offsets: a token begins at the first
/// byte after the previous token that is neither white space nor the one separator that is allowed
/// there.
class TreeBuilder {
public:
    TreeBuilder(std::string_view text, const Limits& limits);

    /// Must be called once only, because it moves the tree out.
    JsonResult parse();

    // The lexer's events, with the names that it requires. Returning false stops the lexer.
    bool null() { return plainValue(JsonKind::null, 0); }
    bool boolean(bool value) { return plainValue(JsonKind::boolean, value ? 1 : 0); }
    bool number_integer(std::int64_t) { return number(); }
    bool number_unsigned(std::uint64_t) { return number(); }
    bool number_float(double, const std::string&) { return number(); }
    bool string(const std::string& decoded) { return text(Last::value, decoded); }
    bool binary(const Lexer::binary_t&) { return false; }  // does not occur in JSON text
    bool start_object(std::size_t) { return open(JsonKind::object); }
    bool key(const std::string& decoded) { return text(Last::key, decoded); }
    bool end_object() { return close(); }
    bool start_array(std::size_t) { return open(JsonKind::array); }
    bool end_array() { return close(); }
    bool parse_error(std::size_t position, const std::string&, const Lexer::exception& error);

private:
    enum class Last { nothing, bracket, key, value };

    bool number();
    bool text(Last what, const std::string& decoded);
    bool plainValue(JsonKind kind, std::uint32_t size);
    bool open(JsonKind kind);
    bool close();

    Token nextToken() const;
    const Place& placeAfterLast() const;
    std::size_t skipSpace(std::size_t at) const;
    bool endToken(Last last, std::size_t end);

    void addText(JsonKind kind, std::size_t start, std::string_view text);
    void addNode(JsonKind kind, std::size_t start, std::size_t size, std::size_t place);

    bool fail(Fault fault);
    /// Objects are checked for duplicates at their end; this checks those that have not ended.
    void preferOpenDuplicate();
    std::optional<Fault> duplicateIn(std::uint32_t container) {
        return duplicateKeys_.firstIn(nodes_, texts_, container);
    }

    std::string_view text_;
    const Limits& limits_;
    std::size_t taken_ = 0;  // bytes that the lexer consumed
    std::size_t end_ = 0;    // the end of the last token
    Last last_ = Last::nothing;
    std::vector<JsonNode> nodes_;
    std::vector<char> texts_;
    std::vector<std::uint32_t> open_;  // the containers around the next token, by node
    DuplicateKeys duplicateKeys_;
    std::optional<Fault> fault_;
};

/// Takes room for the tree of a usual line at once; that of a document grows.
TreeBuilder::TreeBuilder(std::string_view text, const Limits& limits)
    : text_(text), limits_(limits) {
    constexpr std::size_t kLineBytes = 1024;
    const std::size_t bytes = std::min(text.size(), kLineBytes);
    texts_.reserve(bytes);
    nodes_.reserve(bytes / 8 + 1);
    open_.reserve(8);
}

JsonResult TreeBuilder::parse() {
    Lexer::sax_parse(CountingIterator(text_, 0, &taken_),
                     CountingIterator(text_, text_.size() + 1, &taken_), this);
    if (!fault_) {
        // The lexer treats a NUL as the end of its input.
        const auto [start, expected] = nextToken();
        if (start < text_.size()) fail(syntaxFault(text_, expected, start, start, {}));
    }
    if (!fault_) return Json(std::move(nodes_), std::move(texts_));
    preferOpenDuplicate();
    return *std::move(fault_);
}

bool TreeBuilder::number() {
    const std::size_t start = nextToken().start;
    const std::size_t end = taken_ - 1;
    addText(JsonKind::number, start, text_.substr(start, end - start));
    return endToken(Last::value, end);
}

bool TreeBuilder::text(Last what, const std::string& decoded) {
    const std::size_t start = nextToken().start;
    if (decoded.size() > limits_.textBytes) {
        const std::string_view name = what == Last::key ? "key" : "string";
        return fail({start, std::string(name) + longerThan(limits_.textBytes)});
    }
    addText(JsonKind::string, start, decoded);
    return endToken(what, taken_);
}

bool TreeBuilder::plainValue(JsonKind kind, std::uint32_t size) {
    addNode(kind, nextToken().start, size, 0);
    return endToken(Last::value, taken_);
}

bool TreeBuilder::open(JsonKind kind) {
    const std::size_t start = nextToken().start;
    if (open_.size() == limits_.depth) {
        return fail({start, "nested deeper than " + std::to_string(limits_.depth) + " levels"});
    }
    addNode(kind, start, 0, 0);
    open_.push_back(static_cast<std::uint32_t>(nodes_.size() - 1));
    return endToken(Last::bracket, taken_);
}

bool TreeBuilder::close() {
    const std::uint32_t container = open_.back();
    nodes_[container].place = static_cast<std::uint32_t>(nodes_.size() - container);
    if (auto fault = duplicateIn(container)) return fail(*std::move(fault));
    open_.pop_back();
    return endToken(Last::value, taken_);
}

bool TreeBuilder::parse_error(std::size_t position, const std::string&,
                              const Lexer::exception& error) {
    const auto [start, expected] = nextToken();
    if (error.id == kNumberOverflow) return fail({start, "number out of range"});
    // The lexer's own words begin after the dash; quotations of the text follow them.
    const std::string_view message = error.what();
    const std::string_view reason = message.substr(std::min(message.find(" - "), message.size()));
    const std::size_t broken = std::min(position - 1, text_.size());
    return fail(syntaxFault(text_, expected, start, broken, reason.substr(0, reason.find(';'))));
}

Token TreeBuilder::nextToken() const {
    const std::size_t start = skipSpace(end_);
    const Place& place = placeAfterLast();
    if (start == text_.size() || text_[start] != place.separator) return {start, place.expected};
    return {skipSpace(start + 1), place.expectedBeyond};
}

const Place& TreeBuilder::placeAfterLast() const {
    if (last_ == Last::key) return kAfterKey;
    if (last_ == Last::nothing) return kAtStart;
    if (open_.empty()) return kAtEnd;
    const bool isInObject = nodes_[open_.back()].kind == JsonKind::object;
    if (last_ == Last::bracket) return isInObject ? kInObject : kInArray;
    return isInObject ? kAfterMember : kAfterElement;
}

std::size_t TreeBuilder::skipSpace(std::size_t at) const {
    while (at < text_.size() && isSpace(text_[at]))
        ++at;
    return at;
}

/// Returns true, so that the lexer continues.
bool TreeBuilder::endToken(Last last, std::size_t end) {
    end_ = end;
    last_ = last;
    return true;
}

void TreeBuilder::addText(JsonKind kind, std::size_t start, std::string_view text) {
    addNode(kind, start, text.size(), texts_.size());
    texts_.insert(texts_.end(), text.begin(), text.end());
}

void TreeBuilder::addNode(JsonKind kind, std::size_t start, std::size_t size, std::size_t place) {
    // Counts one more item of an array or, by its key, of an object.
    if (!open_.empty() && last_ != Last::key) ++nodes_[open_.back()].size;
    nodes_.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(size),
                      static_cast<std::uint32_t>(place), kind});
}

/// Returns false, so that the lexer stops.
bool TreeBuilder::fail(Fault fault) {
    fault_ = std::move(fault);
    return false;
}

void TreeBuilder::preferOpenDuplicate() {
    // From the innermost outwards: an object can be walked once the ends of its contents are known.
    // The keys of an open object precede all faults within it, so the outermost duplicate wins.
    for (; !open_.empty(); open_.pop_back()) {
        const std::uint32_t container = open_.back();
        nodes_[container].place = static_cast<std::uint32_t>(nodes_.size() - container);
        if (auto duplicate = duplicateIn(container)) fault_ = std::move(duplicate);
    }
}

JsonResult parseWithin(std::size_t mostBytes, std::string_view text, const Limits& limits) {
    mostBytes = std::min<std::size_t>(mostBytes, std::numeric_limits<std::uint32_t>::max());
    if (text.size() > mostBytes) return Fault{0, "text" + longerThan(mostBytes)};
    if (text.starts_with(kByteOrderMark)) return Fault{0, "byte order mark before the text"};
    return TreeBuilder(text, limits).parse();
}

}  // namespace

JsonResult parseJson(std::string_view text, const Limits& limits) {
    return parseWithin(limits.documentBytes, text, limits);
}

JsonResult parseJsonLine(std::string_view line, const Limits& limits) {
    return parseWithin(limits.lineBytes, line, limits);
}

}  // namespace QosAgent
