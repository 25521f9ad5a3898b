#pragma once

#include <type_traits>
#include <typeinfo>

#include "platform/Orin/Ptr.h"
#include "platform/Vex/Fields.h"
#include "platform/Vex/Table.h"
#include "platform/Vex/ValueTraits.h"

/// Converts nodes, the fields that hold them, and value records to and from `Value`.
namespace Vex {

template <class T>
concept HasTable = requires {
    T::fields();
};
template <class T>
concept ValueRecord = HasTable<T> && !std::is_base_of_v<TypedNode, T>;

template <class T>
struct ValueTraits<Orin::Ptr<T>> {
    static constexpr Type type{
        .shape = Shape::entity, .isOptional = true, .record = &std::remove_const_t<T>::kTypeRecord};
    static Value to(const Orin::Ptr<T>& node) { return NodeRef(node); }
    static Orin::Ptr<T> from(const Value& value) {
        const auto* node = value.as<NodeRef>().get();
        if (node == nullptr) return nullptr;
        if (&node->typeData() != type.record) throw std::bad_cast();
        return Orin::Ptr<T>::sharing(static_cast<T*>(const_cast<TypedNode*>(node)));
    }
};

template <class T>
struct ValueTraits<Watched<T>> : ValueTraits<Orin::Ptr<const T>> {
    static Value to(const Watched<T>& watched) { return NodeRef(watched.notifier()); }
};

template <class R>
struct ValueTraits<Nested<R>> : ValueTraits<typename R::Notifier> {
    static Value to(const Nested<R>& nested) { return NodeRef(nested.notifier()); }
};

template <class Sm>
struct ValueTraits<Child<Sm>> : ValueTraits<Orin::Ptr<Sm>> {
    static Value to(const Child<Sm>& child) { return NodeRef::sharing(child.get()); }
};

template <ValueRecord T>
struct ValueTraits<T> {
    static constexpr Type type{.shape = Shape::record, .record = &T::kTypeRecord};
    static Value to(const T& record) {
        RecordValue fields;
        fields.fields.reserve(fieldCount<T>);
        eachRow<T>([&]<std::size_t I>() {
            fields.fields.push_back(ValueTraits<MemberAt<T, I>>::to(record.*row<T, I>.member));
        });
        return fields;
    }
    static T from(const Value& value) {
        const auto& fields = value.as<RecordValue>().fields;
        if (fields.size() != fieldCount<T>) throw std::out_of_range("fields too few or too many");
        T record;
        eachRow<T>([&]<std::size_t I>() {
            record.*row<T, I>.member = ValueTraits<MemberAt<T, I>>::from(fields[I]);
        });
        return record;
    }
};

}  // namespace Vex
