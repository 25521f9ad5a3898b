#pragma once

namespace QosAgent {

/// Opens a placeholder for each standard stream that the process was started without. Reads and
/// writes of it still fail. But no file that is opened later gets its number, and with it the text
/// for the stream.
void holdStandardStreams();

}  // namespace QosAgent
