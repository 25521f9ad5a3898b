#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace TestSupport {

/// The objects that are alive now, by the full name of their type; types without any are left out.
std::map<std::string, std::size_t> liveCounts();
/// The objects of one type that are alive now.
std::size_t liveCount(std::string_view typeName);
/// The same for a type that names itself with `kTypeName`.
template <class T>
std::size_t live() {
    return liveCount(T::kTypeName);
}

/// The fixture of every test that makes machines or entities: at the end of each test, after the
/// members of the derived fixture have gone, no more and no fewer objects are alive than before.
class LiveCounts : public ::testing::Test {
protected:
    LiveCounts();
    ~LiveCounts() override;

private:
    std::map<std::string, std::size_t> before_;
};

}  // namespace TestSupport
