#pragma once

#include <lmdb.h>

#include <memory>
#include <string>

namespace QosAgent::Lmdb {

struct CloseEnvironment {
    void operator()(MDB_env* env) const { ::mdb_env_close(env); }
};
using Environment = std::unique_ptr<MDB_env, CloseEnvironment>;

struct AbortTransaction {
    void operator()(MDB_txn* transaction) const { ::mdb_txn_abort(transaction); }
};
/// Aborted unless it is released to be committed.
using OpenTransaction = std::unique_ptr<MDB_txn, AbortTransaction>;

struct CloseCursor {
    void operator()(MDB_cursor* cursor) const { ::mdb_cursor_close(cursor); }
};
using Cursor = std::unique_ptr<MDB_cursor, CloseCursor>;

}  // namespace QosAgent::Lmdb
