#pragma once

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/model/Reach.h"

namespace Model {

/// A machine, by the order of creation; its address is the plug-in's affair.
using Id = unsigned;
inline constexpr Id kNobody = 0;

/// What a trace line begins with.
struct Point {
    Point(std::string source, unsigned line, std::string function, std::string signature,
          std::string more = "");

    std::string lead;      ///< up to the source's colon
    unsigned line;         ///< 0: that of the plug-in's own source
    std::string function;  ///< with a blank on both sides
    std::string signature;
    Counter counter;
};

/// A line that the plug-in is to write.
struct Line {
    const Point* point;
    Id machine;
    std::string rest;
};

/// A text as it is inserted into a line.
std::string inserted(std::string_view text);

/// Collects the lines that the plug-in is to write.
class Trace {
public:
    /// Off: rules are counted, and no lines are due.
    explicit Trace(bool isOn) : isOn_(isOn) {}

    /// Labels and texts by turns, each text escaped as it is inserted.
    template <class... Pieces>
    void line(const Point& point, Id machine, const Pieces&... pieces) {
        point.counter.hit();
        if (!isOn_) return;
        Line line{&point, machine, {}};
        (append(line.rest, pieces), ...);
        lines_.push_back(std::move(line));
    }
    /// The lines since the last call.
    std::vector<Line> take() { return std::exchange(lines_, {}); }

private:
    static void append(std::string& out, const char* label) { out += label; }
    static void append(std::string& out, const std::string& text) { out += inserted(text); }

    bool isOn_;
    std::vector<Line> lines_;
};

}  // namespace Model
