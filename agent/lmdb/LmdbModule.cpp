#include <string>

#include "agent/lmdb/LmdbStore.h"

namespace QosAgent::Lmdb {
namespace {

OpenedStore openUrl(const std::string& url) {
    constexpr std::string_view kScheme = "lmdb:";
    return LmdbStore::open(url.substr(kScheme.size()));
}

}  // namespace
}  // namespace QosAgent::Lmdb

QOS_AGENT_STORE(QosAgent::Lmdb::openUrl)
