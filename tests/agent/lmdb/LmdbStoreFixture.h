#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "agent/lmdb/LmdbStore.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent::Lmdb {

using Records = std::map<std::string, std::string>;

inline RecordEdit put(const std::string& path, const std::string& value,
                      RecordArea area = RecordArea::input) {
    return {RecordEdit::Kind::put, {area, path}, value};
}
inline RecordEdit erase(const std::string& path) {
    return {RecordEdit::Kind::erase, {RecordArea::input, path}};
}
inline RecordEdit eraseBelow(const std::string& path) {
    return {RecordEdit::Kind::eraseBelow, {RecordArea::input, path}};
}

/// A store in a folder of its own.
class LmdbStoreTest : public ::testing::Test {
protected:
    using Step = LmdbStore::Step;

    std::string folder() const { return folder_ / "store"; }
    std::string dataFile() const { return folder() + "/data.mdb"; }
    void open(Step step = {}) { EXPECT_EQ(openFault(std::move(step)), ""); }
    std::string openFault(Step step = {}) {
        store_.reset();
        OpenedStore opened = LmdbStore::open(folder(), std::move(step));
        if (auto* fault = std::get_if<StoreFault>(&opened)) return *fault;
        store_ = std::get<std::unique_ptr<Store>>(std::move(opened));
        return "";
    }
    StoreFault commit(std::vector<RecordEdit> edits) {
        Transaction transaction;
        transaction.number = store_->lastNumber() + 1;
        transaction.edits = std::move(edits);
        const TransactionPtr shared = std::make_shared<const Transaction>(std::move(transaction));
        return store_->commit(std::span(&shared, 1));
    }
    Records read(const std::string& path = "", RecordArea area = RecordArea::input) {
        Records records;
        EXPECT_EQ(store_->read(area, path,
                               [&](std::string_view place, std::string_view record) {
                                   records.emplace(place, record);
                               }),
                  "");
        return records;
    }
    std::string fileText() const {
        std::ostringstream text;
        text << std::ifstream(dataFile(), std::ios::binary).rdbuf();
        return text.str();
    }
    void fileTextIs(const std::string& text) const {
        std::ofstream(dataFile(), std::ios::binary) << text;
    }

    TemporaryFolder folder_;
    std::unique_ptr<Store> store_;
};

}  // namespace QosAgent::Lmdb
