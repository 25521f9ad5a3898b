#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/agent/lmdb/LmdbStoreFixture.h"

namespace QosAgent::Lmdb {
namespace {

using ::testing::HasSubstr;

/// Fills a small store with several pages of each kind.
class DamagedStoreTest : public LmdbStoreTest {
protected:
    DamagedStoreTest() {
        open();
        for (int round = 0; round < 6; ++round) {
            std::vector<RecordEdit> edits;
            for (int i = 0; i < 300; ++i)
                edits.push_back(put("name/" + std::to_string(i * 7 % 300) + "/x",
                                    std::string(20, static_cast<char>('a' + round))));
            edits.push_back(put("large", std::string(20'000, static_cast<char>('a' + round))));
            commit(std::move(edits));
        }
        records_ = read();
        store_.reset();
        text_ = fileText();
    }
    /// The store is refused, or holds what it held.
    void check(const std::string& text) {
        fileTextIs(text);
        const std::string fault = openFault();
        if (!fault.empty()) {
            EXPECT_THAT(fault, HasSubstr(" damaged"));
            ++refused_;
        } else {
            EXPECT_EQ(read(), records_);
            EXPECT_EQ(store_->lastNumber(), 6u);
        }
        store_.reset();
    }

    static constexpr std::size_t kPage = 4096;
    Records records_;
    std::string text_;
    unsigned refused_ = 0;
};

TEST_F(DamagedStoreTest, isNoticedWhicheverPageIsOverwritten) {
    for (const char fill : {'\0', '\xFF', 'x'})
        for (std::size_t at = 0; at + kPage <= text_.size(); at += kPage) {
            std::string text = text_;
            text.replace(at, kPage, kPage, fill);
            check(text);
        }
    EXPECT_GT(refused_, 30u);
}

TEST_F(DamagedStoreTest, isNoticedWherePagesAreExchanged) {
    for (std::size_t at = 0; at + 2 * kPage <= text_.size(); at += kPage) {
        std::string text = text_;
        std::swap_ranges(text.begin() + static_cast<std::ptrdiff_t>(at),
                         text.begin() + static_cast<std::ptrdiff_t>(at + kPage),
                         text.begin() + static_cast<std::ptrdiff_t>(at + kPage));
        check(text);
    }
    EXPECT_GT(refused_, 10u);
}

TEST_F(DamagedStoreTest, isNoticedWhereBytesAreFlipped) {
    for (std::size_t at = 3; at < text_.size(); at += 509) {
        std::string text = text_;
        text[at] = static_cast<char>(text[at] ^ 0x41);
        check(text);
    }
    EXPECT_GT(refused_, 30u);
}

}  // namespace
}  // namespace QosAgent::Lmdb
