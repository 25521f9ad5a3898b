#pragma once

namespace QosAgent {

/// Puts something in the place of each standard stream that the process was started without. Every
/// read and write of it fails as before, but no file that is opened later takes its number and so
/// gets what was meant for the stream.
void holdStandardStreams();

}  // namespace QosAgent
