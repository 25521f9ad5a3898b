#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "tests/agent/lmdb/LmdbStoreFixture.h"

namespace QosAgent::Lmdb {
namespace {

using ::testing::HasSubstr;

TEST_F(LmdbStoreTest, holdsNothingAtFirst) {
    open();
    EXPECT_EQ(store_->lastNumber(), 0u);
    EXPECT_EQ(read(), Records{});
}

TEST_F(LmdbStoreTest, findsRecordsAndTheirNumberAgain) {
    open();
    EXPECT_EQ(commit({put("a", "1"), put("a/b", "2")}), "");
    EXPECT_EQ(commit({put("c", "3"), erase("a")}), "");
    open();
    EXPECT_EQ(store_->lastNumber(), 2u);
    EXPECT_EQ(read(), (Records{{"a/b", "2"}, {"c", "3"}}));
}

TEST_F(LmdbStoreTest, erasesWhatIsBelowAPathAndNotItsNeighbours) {
    open();
    commit({put("a", "1"), put("a/b", "2"), put("a/b/c", "3"), put("a b", "4"), put("a0", "5")});
    commit({eraseBelow("a")});
    EXPECT_EQ(read(), (Records{{"a b", "4"}, {"a0", "5"}}));
}

TEST_F(LmdbStoreTest, erasesAWholeArea) {
    open();
    commit({put("", "0"), put("a", "1"), put("a", "2", RecordArea::state)});
    commit({eraseBelow("")});
    EXPECT_EQ(read(), Records{});
    EXPECT_EQ(read("", RecordArea::state), (Records{{"a", "2"}}));
}

TEST_F(LmdbStoreTest, readsWhatIsAtAPathAndBelow) {
    open();
    commit({put("a", "1"), put("a/b", "2"), put("a/b/c", "3"), put("a b", "4")});
    EXPECT_EQ(read("a/b"), (Records{{"a/b", "2"}, {"a/b/c", "3"}}));
    EXPECT_EQ(read("x"), Records{});
}

TEST_F(LmdbStoreTest, keepsNamesOfAnyLength) {
    const std::string name(60'000, 'n');
    const std::string other = name.substr(1) + 'm';
    open();
    commit({put(name, "1"), put(name + '/' + other, "2"), put(other, "3"), put(name + "/b", "4")});
    open();
    EXPECT_EQ(read(),
              (Records{{name, "1"}, {name + '/' + other, "2"}, {other, "3"}, {name + "/b", "4"}}));
    commit({eraseBelow(name)});
    EXPECT_EQ(read(), (Records{{other, "3"}}));
}

TEST_F(LmdbStoreTest, keepsRecordsThatAreLargerThanAPage) {
    const std::string large(300'000, 'x');
    open();
    commit({put("a", large), put("b", "1")});
    open();
    EXPECT_EQ(read(), (Records{{"a", large}, {"b", "1"}}));
}

TEST_F(LmdbStoreTest, growsAsNeeded) {
    open();
    std::vector<RecordEdit> edits;
    const std::string value(100'000, 'x');
    for (int i = 0; i < 1000; ++i)
        edits.push_back(put(std::to_string(i), value));
    EXPECT_EQ(commit(std::move(edits)), "");
    EXPECT_EQ(read().size(), 1000u);
}

TEST_F(LmdbStoreTest, isForItsUserAlone) {
    open();
    struct stat status {};
    EXPECT_EQ(::stat(folder().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    EXPECT_EQ(::stat(dataFile().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(LmdbStoreTest, refusesASecondProgram) {
    open();
    const OpenedStore second = LmdbStore::open(folder());
    EXPECT_EQ(std::get<StoreFault>(second), folder() + " is in use by another program");
}

TEST_F(LmdbStoreTest, refusesAFileOfNoBytes) {
    open();
    store_.reset();
    fileTextIs("");
    EXPECT_EQ(openFault(), dataFile() + " is damaged: it is empty");
    EXPECT_EQ(fileText(), "");
}

TEST_F(LmdbStoreTest, refusesForeignFiles) {
    open();
    store_.reset();
    const std::string kinds[] = {"x", std::string(100'000, '\0'), std::string(9'000, 'x')};
    for (const std::string& text : kinds) {
        fileTextIs(text);
        EXPECT_EQ(openFault(), dataFile() + " is no store of this program, or is damaged");
        EXPECT_EQ(fileText(), text);
    }
}

TEST_F(LmdbStoreTest, refusesAFileThatIsCutShort) {
    open();
    commit({put("a", std::string(50'000, 'x'))});
    store_.reset();
    const std::string text = fileText();
    for (std::size_t size = 1; size < text.size(); size += 4096) {
        fileTextIs(text.substr(0, size));
        const std::string fault = openFault();
        EXPECT_THAT(fault, HasSubstr(" damaged")) << size;
    }
}

TEST_F(LmdbStoreTest, takesTheFolderAfterANewStoreWasNotFinished) {
    open();
    store_.reset();
    ::rename(dataFile().c_str(), (folder() + "/new.mdb").c_str());
    open();
    EXPECT_EQ(store_->lastNumber(), 0u);
    EXPECT_NE(::access((folder() + "/new.mdb").c_str(), F_OK), 0);
}

}  // namespace
}  // namespace QosAgent::Lmdb
