#pragma once

#include <type_traits>

#include "platform/Orin/Ptr.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/HashMap2018.h"
#include "platform/Vex/OrderedMap.h"
#include "platform/Vex/PublishingNode.h"
#include "platform/Vex/Table.h"

namespace Vex {

/// The base class of all entities of a schema. The rows of `T::fields()` describe the entity; the
/// slab allocates it under the class's own tracker.
template <class T>
class PLATFORM_API Entity : public PublishingNode, public OvSlab::Slabbed<T> {
public:
    const TypeRecord& typeData() const final { return T::kTypeRecord; }
    template <class... A>
    static Orin::Ptr<T> create(const A&... keys) {
        static_assert(givenRowsLead<T>(), "fields() lists keys first");
        static_assert(tableIsComplete<T>(sizeof(Entity)),
                      "fields() leaves out a data member, or lists them out of declaration order");
        return Orin::Ptr<T>::adopt(new T(keys...));
    }
};

/// Returns the node as a `T`; null if it is null or of another type.
template <class T>
Orin::Ptr<T> entityCast(const Orin::Ptr<TypedNode>& node) {
    if (!node || &node->typeData() != &std::remove_const_t<T>::kTypeRecord) return nullptr;
    return Orin::Ptr<T>::sharing(static_cast<T*>(node.get()));
}

}  // namespace Vex
