#pragma once

#include <string>

namespace QosAgent::Lmdb {

/// Checks the whole of a data file: that its pages make the trees that they should, and that the
/// records' checksums are right. LMDB itself trusts its file, and would read anywhere for one that
/// is damaged. Returns what is wrong with the file, to be put behind its name; empty if nothing is.
std::string checkFile(const std::string& name);

}  // namespace QosAgent::Lmdb
