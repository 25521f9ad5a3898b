#pragma once

#include <string_view>

namespace QosAgent {

/// The severity prefixes that the system's journal recognises at the beginning of a line.
inline constexpr std::string_view kJournalError = "<3>";
inline constexpr std::string_view kJournalWarning = "<4>";

/// Returns true if a stream of the process goes to the journal. The service manager sets the
/// environment variable `JOURNAL_STREAM` to `DEVICE:INODE`; a stream that was redirected since has
/// another inode.
bool isJournal(int fd);

}  // namespace QosAgent
