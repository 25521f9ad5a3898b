#pragma once

#include <string_view>

namespace QosAgent {

/// Severities as the journal of the system reads them at the beginning of a line.
inline constexpr std::string_view kJournalError = "<3>";
inline constexpr std::string_view kJournalWarning = "<4>";

/// Returns whether a stream of the process goes to the journal, as the environment variable
/// `JOURNAL_STREAM` (`DEVICE:INODE`) says. A service manager sets it; a stream that was sent
/// elsewhere since has another inode.
bool isJournal(int fd);

}  // namespace QosAgent
