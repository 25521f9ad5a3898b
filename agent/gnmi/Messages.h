#pragma once

#include <optional>
#include <string>

#include "agent/gnmi/Notice.h"
#include "agent/gnmi/Path.h"
#include "agent/gnmi/Refusal.h"

namespace gnmi {
class Notification;
class Path;
class TypedValue;
}  // namespace gnmi

/// Between the protocol's messages and plain values. The messages' own headers, which are large,
/// are included by few files.
namespace QosAgent::Gnmi {

inline constexpr const char* kOrigin = "openconfig";

/// The path that a request means: its prefix, if any, and then `path`. Refused where the two break
/// the rules for `origin` and `target`.
OrRefusal<RequestPath> joined(const gnmi::Path* prefix, const gnmi::Path& path);

void write(const DataPath& path, gnmi::Path& message);
/// Writes a leaf's or container's JSON in the given encoding.
void write(const NodeUpdate& update, Encoding encoding, gnmi::TypedValue& message);
/// `target` is that of the request's prefix.
void write(const Notice& notice, Encoding encoding, const std::string& target,
           gnmi::Notification& message);

/// A notice as the bytes of a message of a Subscribe stream.
std::string serialised(const Notice& notice, Encoding encoding, const std::string& target);
/// The message which says that all values have been sent once.
std::string serialisedSync();

/// The RFC 7951 JSON, on one line, of a value that a client wants to set at `node`.
OrRefusal<std::string> jsonOf(const gnmi::TypedValue& value, const SchemaNode& node);

}  // namespace QosAgent::Gnmi
