#include "agent/lmdb/LmdbStore.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <optional>
#include <utility>
#include <variant>

#include "agent/lmdb/FileCheck.h"
#include "agent/lmdb/RecordCodec.h"

namespace QosAgent::Lmdb {
namespace {

using Kind = RecordEdit::Kind;

/// The key of the record about the store; no area has this letter.
constexpr std::string_view kHead = "!qos-agent";
constexpr std::string_view kFormat = "qos-agent store 1, transaction ";
constexpr std::size_t kLeastMap = std::size_t{64} << 20;
/// Room above what a file has, in parts of its size.
constexpr std::size_t kGrowth = 2;

MDB_val viewOf(std::string_view text) {
    return {text.size(), const_cast<char*>(text.data())};
}

std::string_view textOf(const MDB_val& value) {
    return {static_cast<const char*>(value.mv_data), value.mv_size};
}

std::string headRecord(std::uint64_t number) {
    return std::string(kFormat) + std::to_string(number);
}

/// The program alone has the file, by a lock of its own, and one thread at a time.
constexpr unsigned kFlags = MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOTLS;

/// Opens an environment over a file, with room to grow.
int openEnvironment(const std::string& file, Environment& env) {
    MDB_env* made = nullptr;
    if (const int error = ::mdb_env_create(&made)) return error;
    env.reset(made);
    struct stat status {};
    const bool isThere = ::stat(file.c_str(), &status) == 0;
    const std::size_t size = isThere ? static_cast<std::size_t>(status.st_size) : 0;
    const std::size_t page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t map = std::max(kLeastMap, size * kGrowth) / page * page;
    if (const int error = ::mdb_env_set_mapsize(made, map)) return error;
    return ::mdb_env_open(made, file.c_str(), kFlags, 0600);
}

int begin(MDB_env* env, unsigned flags, OpenTransaction& transaction) {
    MDB_txn* begun = nullptr;
    const int error = ::mdb_txn_begin(env, nullptr, flags, &begun);
    transaction.reset(begun);
    return error;
}

int putRecord(MDB_txn* transaction, MDB_dbi records, std::string_view key, std::string_view path,
              std::string_view record) {
    const std::string value = valueOf(key, path, record);
    MDB_val keyView = viewOf(key);
    MDB_val valueView = viewOf(value);
    return ::mdb_put(transaction, records, &keyView, &valueView, 0);
}

int eraseRecord(MDB_txn* transaction, MDB_dbi records, std::string_view key) {
    MDB_val view = viewOf(key);
    const int error = ::mdb_del(transaction, records, &view, nullptr);
    return error == MDB_NOTFOUND ? 0 : error;
}

int openCursor(MDB_txn* transaction, MDB_dbi records, Cursor& cursor) {
    MDB_cursor* opened = nullptr;
    const int error = ::mdb_cursor_open(transaction, records, &opened);
    cursor.reset(opened);
    return error;
}

/// Calls `visit` with each key that begins so, and its value, until it returns an error.
template <class Visit>
int eachWithPrefix(MDB_txn* transaction, MDB_dbi records, const std::string& prefix, Visit visit) {
    Cursor cursor;
    if (const int error = openCursor(transaction, records, cursor)) return error;
    MDB_val key = viewOf(prefix);
    MDB_val value{};
    int error = ::mdb_cursor_get(cursor.get(), &key, &value, MDB_SET_RANGE);
    while (error == 0 && textOf(key).starts_with(prefix)) {
        if (const int failed = visit(cursor.get(), textOf(key), textOf(value))) return failed;
        error = ::mdb_cursor_get(cursor.get(), &key, &value, MDB_NEXT);
    }
    return error == MDB_NOTFOUND ? 0 : error;
}

int eraseBelow(MDB_txn* transaction, MDB_dbi records, const std::string& key) {
    return eachWithPrefix(
        transaction, records, key,
        [](MDB_cursor* at, std::string_view, std::string_view) { return ::mdb_cursor_del(at, 0); });
}

int applyEdit(MDB_txn* transaction, MDB_dbi records, const RecordEdit& edit) {
    const auto& [kind, key, value] = edit;
    const std::string encoded = keyOf(key.area, key.path);
    if (kind == Kind::eraseBelow) return eraseBelow(transaction, records, encoded);
    if (kind == Kind::erase) return eraseRecord(transaction, records, encoded);
    return putRecord(transaction, records, encoded, key.path, value);
}

StoreFault why(int error) {
    return error == 0 ? "" : ::mdb_strerror(error);
}

}  // namespace

OpenedStore LmdbStore::open(const std::string& folder, Step step) {
    auto taken = StoreFolder::take(folder);
    if (const auto* fault = std::get_if<std::string>(&taken)) return *fault;
    std::unique_ptr<LmdbStore> store(
        new LmdbStore(std::get<StoreFolder>(std::move(taken)), std::move(step)));
    const std::string file = store->folder_.dataFile();
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        if (errno != ENOENT) return file + ": " + std::strerror(errno);
        if (StoreFault fault = store->makeNew(); !fault.empty())
            return folder + " cannot hold a store: " + fault;
    }
    if (StoreFault fault = store->use(); !fault.empty()) return file + ' ' + fault;
    return store;
}

/// Made under another name first: a file of the data's name is complete, or damaged.
StoreFault LmdbStore::makeNew() {
    const std::string file = folder_.newFile();
    if (::unlink(file.c_str()) != 0 && errno != ENOENT) return std::strerror(errno);
    reached("make");
    if (const int error = openEnvironment(file, env_)) return why(error);
    OpenTransaction transaction;
    if (const int error = begin(env_.get(), 0, transaction)) return why(error);
    if (const int error = ::mdb_dbi_open(transaction.get(), nullptr, 0, &records_))
        return why(error);
    if (const int error =
            putRecord(transaction.get(), records_, kHead, kHead.substr(1), headRecord(0)))
        return why(error);
    if (const int error = ::mdb_txn_commit(transaction.release())) return why(error);
    reached("sync");
    if (const int error = ::mdb_env_sync(env_.get(), 1)) return why(error);
    env_.reset();
    reached("rename");
    const int error = folder_.putNewFileInPlace();
    reached("renamed");
    return error == 0 ? "" : std::strerror(error);
}

StoreFault LmdbStore::use() {
    if (StoreFault fault = checkFile(folder_.dataFile()); !fault.empty()) return fault;
    if (const int error = openEnvironment(folder_.dataFile(), env_))
        return "cannot be opened: " + why(error);
    OpenTransaction transaction;
    if (const int error = begin(env_.get(), MDB_RDONLY, transaction)) return why(error);
    if (const int error = ::mdb_dbi_open(transaction.get(), nullptr, 0, &records_))
        return why(error);
    if (const int error = ::mdb_txn_commit(transaction.release())) return why(error);
    return readHead();
}

StoreFault LmdbStore::readHead() {
    OpenTransaction transaction;
    if (const int error = begin(env_.get(), MDB_RDONLY, transaction)) return why(error);
    MDB_val key = viewOf(kHead);
    MDB_val value{};
    const int error = ::mdb_get(transaction.get(), records_, &key, &value);
    if (error == MDB_NOTFOUND) return "is no store of this program";
    if (error != 0) return why(error);
    const auto head = decoded(kHead, textOf(value));
    if (!head) return "is damaged";
    const std::string_view record = head->record;
    if (!record.starts_with(kFormat)) return "has another format than this program's";
    const char* const begin = record.data() + kFormat.size();
    const auto [end, bad] = std::from_chars(begin, record.data() + record.size(), lastNumber_);
    return bad == std::errc() && end == record.data() + record.size() ? "" : "is damaged";
}

StoreFault LmdbStore::read(RecordArea area, const std::string& path, const Visit& visit) {
    OpenTransaction transaction;
    if (const int error = begin(env_.get(), MDB_RDONLY, transaction)) return why(error);
    bool isDamaged = false;
    const auto show = [&](MDB_cursor*, std::string_view key, std::string_view value) {
        const auto record = decoded(key, value);
        if (record)
            visit(record->path, record->record);
        else
            isDamaged = true;
        return isDamaged ? EIO : 0;
    };
    const int error = eachWithPrefix(transaction.get(), records_, keyOf(area, path), show);
    return isDamaged ? "is damaged" : why(error);
}

StoreFault LmdbStore::commit(std::span<const TransactionPtr> transactions) {
    int error = tryCommit(transactions);
    while (error == MDB_MAP_FULL && (error = grow()) == 0)
        error = tryCommit(transactions);
    if (error == 0) lastNumber_ = transactions.back()->number;
    // LMDB says of a write that ended early only that it did.
    if (error == EIO && folder_.isFull()) error = ENOSPC;
    return why(error);
}

int LmdbStore::tryCommit(std::span<const TransactionPtr> transactions) {
    reached("begin");
    OpenTransaction transaction;
    if (const int error = begin(env_.get(), 0, transaction)) return error;
    for (const TransactionPtr& each : transactions)
        for (const RecordEdit& edit : each->edits)
            if (const int error = applyEdit(transaction.get(), records_, edit)) return error;
    const std::string head = headRecord(transactions.back()->number);
    if (const int error = putRecord(transaction.get(), records_, kHead, kHead.substr(1), head))
        return error;
    reached("commit");
    const int error = ::mdb_txn_commit(transaction.release());
    reached("committed");
    return error;
}

int LmdbStore::grow() {
    MDB_envinfo info{};
    if (const int error = ::mdb_env_info(env_.get(), &info)) return error;
    return ::mdb_env_set_mapsize(env_.get(), info.me_mapsize * kGrowth);
}

}  // namespace QosAgent::Lmdb
