#pragma once

#include <ostream>
#include <string>
#include <type_traits>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Vector.h"
#include "platform/Strata/MountStatus.h"
#include "platform/Vex/NodeTraits.h"
#include "platform/Vex/Value.h"
#include "platform/Vex/ValueTraits.h"

/// How GoogleTest shows the values of the runtime and of the schemas. Include it in every test that
/// compares such values; a type of a namespace that is not listed here prints by a line
/// `using TestSupport::PrintTo;` in that namespace.
namespace TestSupport {

/// A value as people read it: `-` when absent, `"text"`, `(a, b)` a record, `[a, b]` a list,
/// `{k: v}` a map, the type's name and address of an entity.
std::string textOf(const Vex::Value& value);

template <class T>
concept Printable = Vex::NamedEnum<T> || Vex::ValueRecord<T>;

template <Printable T>
void PrintTo(const T& value, std::ostream* out) {
    if constexpr (Vex::NamedEnum<T>)
        *out << Vex::enumText(value);
    else
        *out << textOf(Vex::ValueTraits<T>::to(value));
}

}  // namespace TestSupport

namespace Orin {

/// A null pointer, or the address.
template <class T>
void PrintTo(const Ptr<T>& node, std::ostream* out) {
    *out << static_cast<const void*>(node.get());
}
template <class T>
void PrintTo(const Vector<T>& list, std::ostream* out) {
    *out << TestSupport::textOf(Vex::ValueTraits<Vector<T>>::to(list));
}

}  // namespace Orin

namespace Vex {

void PrintTo(const Value& value, std::ostream* out);
void PrintTo(FwkType type, std::ostream* out);
template <class K, class V>
void PrintTo(const FlatMap<K, V>& map, std::ostream* out) {
    *out << TestSupport::textOf(ValueTraits<FlatMap<K, V>>::to(map));
}
std::ostream& operator<<(std::ostream& out, Shape shape);
std::ostream& operator<<(std::ostream& out, Role role);

}  // namespace Vex

namespace Strata {

std::ostream& operator<<(std::ostream& out, MountStatus status);

}  // namespace Strata

namespace Harbour {
using TestSupport::PrintTo;
}
namespace Qos {
using TestSupport::PrintTo;
}
namespace Acl {
using TestSupport::PrintTo;
}
namespace QosOc {
using TestSupport::PrintTo;
namespace Classifier {
using TestSupport::PrintTo;
}
namespace Config {
using TestSupport::PrintTo;
}
namespace State {
using TestSupport::PrintTo;
}
}  // namespace QosOc
