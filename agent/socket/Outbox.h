#pragma once

#include <cstddef>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <string>

#include "agent/feed/Change.h"

namespace QosAgent {

/// The answers and followed changes that wait for a client, in the order of their creation. While
/// the client does not keep up, changes are merged by path: the last value of a path is kept, in
/// its place, and a delete replaces waiting changes below it. Answers are never dropped and keep
/// their places.
class Outbox {
public:
    /// The most bytes of answers that may wait. The answer that is being sent does not count, so
    /// that one answer may have any size.
    static constexpr std::size_t kMostAnswerBytes = std::size_t{16} << 20;

    /// Writes to the descriptor, which must be non-blocking. The caller owns it.
    explicit Outbox(int fd) : fd_(fd) {}

    /// Adds text, with its line end. Returns false if too much waits already.
    bool addAnswer(std::string text);
    /// Adds a change. `isCreation`: the path was absent before.
    void addChange(const ChangeLinePtr& change, bool isCreation);
    /// Writes as much as the client takes now. Returns false if writing failed for good.
    bool flush();
    bool isEmpty() const { return entries_.empty(); }

private:
    using Text = std::shared_ptr<const std::string>;
    struct Entry {
        Text text;
        ChangeLinePtr change;  ///< null: an answer
        bool isCreation = false;
    };
    using Entries = std::list<Entry>;
    using Index = std::map<std::string, Entries::iterator, std::less<>>;

    void merge(const ChangeLinePtr& change, bool isCreation);
    bool supersede(Index& index, const std::string& path, bool alsoBelow);
    void drop(Index& index, Index::iterator at);
    void beginMerging();
    void taken(std::size_t bytes);
    void popFront();
    void unindexFirst();

    int fd_;
    Entries entries_;
    std::size_t sentOfFirst_ = 0;
    std::deque<std::size_t> answerSizes_;  ///< of the answers that wait
    std::size_t answerBytes_ = 0;          ///< their sum
    std::size_t unflushedBytes_ = 0;
    /// The client does not keep up: merge changes until it has received everything.
    bool isMerging_ = false;
    Index updates_;  ///< while merging: those that wait, by path
    Index deletes_;
};

}  // namespace QosAgent
