#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace TestSupport {

/// Objects by the full name of their type; types without any are left out.
using Counts = std::map<std::string, std::size_t>;

/// The objects that are alive now.
Counts liveCounts();
/// The objects of one type that are alive now.
std::size_t liveCount(std::string_view typeName);
/// The same for a type that names itself with `kTypeName`.
template <class T>
std::size_t live() {
    return liveCount(T::kTypeName);
}

/// Fails each test, whatever its fixture, that ends with more or fewer objects alive than it began
/// with. Every test program listens to it: see `main.cpp`.
class LiveCountsListener : public ::testing::EmptyTestEventListener {
public:
    void OnTestStart(const ::testing::TestInfo& test) override;
    void OnTestEnd(const ::testing::TestInfo& test) override;

private:
    Counts before_;
};

}  // namespace TestSupport
