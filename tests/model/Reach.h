#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Counts how often each rule of the model was at work, so that a generator that has gone blind is
/// seen: a rule that never fired tells.
namespace Model {

/// Listed from the start of the program, whether or not it is ever counted.
class Counter {
public:
    explicit Counter(std::string name) : name_(std::move(name)) { all().push_back(this); }
    Counter(const Counter&) = delete;
    Counter& operator=(const Counter&) = delete;

    const std::string& name() const { return name_; }
    std::uint64_t count() const { return count_; }
    void hit() const { ++count_; }

    static std::vector<const Counter*>& all() {
        static std::vector<const Counter*> counters;
        return counters;
    }

private:
    std::string name_;
    mutable std::uint64_t count_ = 0;
};

/// A text as an argument of a template.
template <std::size_t N>
struct Label {
    consteval Label(const char (&from)[N]) { std::copy_n(from, N, text); }
    char text[N];
};

template <Label kName>
inline const Counter ruleCounter{kName.text};

/// Says that the rule of this name is at work.
template <Label kName>
void rule() {
    ruleCounter<kName>.hit();
}

}  // namespace Model
