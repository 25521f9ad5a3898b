#pragma once

#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <string>

namespace Vex {

/// Returns the time in UTC as RFC 3339 writes it, to the microsecond: `2026-11-22T12:31:05.123456Z`.
inline std::string utcText(std::chrono::system_clock::time_point time) {
    using namespace std::chrono;
    const auto micros = floor<microseconds>(time);
    const auto whole = floor<std::chrono::seconds>(micros);
    const std::time_t seconds = system_clock::to_time_t(whole);
    std::tm utc{};
    ::gmtime_r(&seconds, &utc);
    std::array<char, 40> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
    std::snprintf(text.data() + size, text.size() - size, ".%06dZ",
                  static_cast<int>((micros - whole).count()));
    return text.data();
}

}  // namespace Vex
