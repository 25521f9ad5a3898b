#include <array>

#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

namespace {

constexpr std::string_view kConditions4 =
    "source-address source-address-prefix-set destination-address destination-address-prefix-set "
    "fragment-offsets*:union dscp:uint8 dscp-set*:uint8 length:uint16 protocol:union "
    "hop-limit:uint8";
constexpr std::string_view kConditions6 =
    "source-address source-address-prefix-set source-flow-label:uint32 destination-address "
    "destination-address-prefix-set destination-flow-label:uint32 dscp:uint8 dscp-set*:uint8 "
    "length:uint16 protocol:union hop-limit:uint8";
constexpr std::string_view kBuffers =
    "buffer-allocation-profile multicast-buffer-allocation-profile "
    "unicast-buffer-allocation-profile";
constexpr std::string_view kRemark = "set-dscp:uint8 set-dot1p:uint8 set-mpls-tc:uint8";
constexpr std::string_view kRemarkOrDrop =
    "set-dscp:uint8 set-dot1p:uint8 set-mpls-tc:uint8 drop:boolean";
constexpr std::string_view kEarlyDetection =
    "min-threshold:uint64 max-threshold:uint64 min-threshold-percent:uint64 "
    "max-threshold-percent:uint64 enable-ecn:boolean drop:boolean";
constexpr std::string_view kRandomEarlyDetection =
    "min-threshold:uint64 max-threshold:uint64 min-threshold-percent:uint64 "
    "max-threshold-percent:uint64 enable-ecn:boolean drop:boolean weight:uint32 "
    "max-drop-probability-percent:uint8";

constexpr std::array kRows{
    SchemaRow{"/qos/interfaces/interface[interface-id]", "interface-id", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/interface-ref",
              "interface subinterface:uint32", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/input", kBuffers, ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/input/classifiers/classifier[type]",
              "name type", "name type"},
    SchemaRow{"/qos/interfaces/interface[interface-id]/input/queues/queue[name]",
              "name queue-management-profile", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/input/scheduler-policy", "name", ""},
    SchemaRow{
        "/qos/interfaces/interface[interface-id]/input/virtual-output-queues/voq-interface[name]",
        "name", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/input/virtual-output-queues/"
              "voq-interface[name]/queues/queue[name]",
              "name", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/output", kBuffers, ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/output/classifiers/classifier[type]",
              "name type", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/output/queues/queue[name]",
              "name queue-management-profile", ""},
    SchemaRow{"/qos/interfaces/interface[interface-id]/output/scheduler-policy", "name", ""},
    SchemaRow{"/qos/classifiers/classifier[name]", "name type", "name type"},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]", "id", "id"},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/l2",
              "source-mac source-mac-mask destination-mac destination-mac-mask ethertype:union",
              ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/ipv4", kConditions4,
              "dscp dscp-set"},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/ipv4/icmpv4",
              "type code", ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/ipv6", kConditions6,
              "dscp dscp-set"},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/ipv6/icmpv6",
              "type code", ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/transport",
              "source-port:union source-port-set destination-port:union destination-port-set "
              "detail-mode explicit-detail-match-mode explicit-tcp-flags* builtin-detail",
              ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/mpls",
              "traffic-class:uint8 start-label-value:union end-label-value:union ttl-value:uint8",
              ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/conditions/fabric",
              "fabric-priority:uint8", ""},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/actions", "target-group",
              "target-group"},
    SchemaRow{"/qos/classifiers/classifier[name]/terms/term[id]/actions/remark", kRemark, ""},
    SchemaRow{"/qos/forwarding-groups/forwarding-group[name]",
              "name fabric-priority:uint8 output-queue unicast-output-queue multicast-output-queue",
              ""},
    SchemaRow{"/qos/queues/queue[name]", "name queue-id:uint8", ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]", "name", ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]",
              "sequence:uint32 type priority", ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "inputs/input[id]",
              "id input-type queue weight:uint64", ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "output",
              "output-type child-scheduler output-fwd-group", ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "one-rate-two-color",
              "cir:uint64 cir-pct:uint8 cir-pct-remaining:uint8 bc:uint32 queuing-behavior "
              "max-queue-depth-bytes:uint32 max-queue-depth-packets:uint32 "
              "max-queue-depth-percent:uint8",
              ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "one-rate-two-color/conform-action",
              kRemark, ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "one-rate-two-color/exceed-action",
              kRemarkOrDrop, ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "two-rate-three-color",
              "cir:uint64 cir-pct:uint8 cir-pct-remaining:uint8 pir:uint64 pir-pct:uint8 "
              "pir-pct-remaining:uint8 bc:uint32 be:uint32",
              ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "two-rate-three-color/conform-action",
              kRemark, ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "two-rate-three-color/exceed-action",
              kRemarkOrDrop, ""},
    SchemaRow{"/qos/scheduler-policies/scheduler-policy[name]/schedulers/scheduler[sequence]/"
              "two-rate-three-color/violate-action",
              kRemarkOrDrop, ""},
    SchemaRow{"/qos/buffer-allocation-profiles/buffer-allocation-profile[name]", "name", ""},
    SchemaRow{
        "/qos/buffer-allocation-profiles/buffer-allocation-profile[name]/queues/queue[name]",
        "name dedicated-buffer:uint64 dedicated-buffer-temporal:uint64 "
        "use-shared-buffer:boolean shared-buffer-limit-type static-shared-buffer-limit:uint32 "
        "static-shared-buffer-limit-temporal:uint32 dynamic-limit-scaling-factor:int32 "
        "trim-enable:boolean",
        ""},
    SchemaRow{"/qos/queue-management-profiles/queue-management-profile[name]", "name", ""},
    SchemaRow{"/qos/queue-management-profiles/queue-management-profile[name]/wred/uniform",
              kRandomEarlyDetection, ""},
    SchemaRow{"/qos/queue-management-profiles/queue-management-profile[name]/red/uniform",
              kEarlyDetection, ""},
    SchemaRow{"/qos/packet-trim", "symmetric-dscp:uint8 fabric-priority:uint8", ""},
};

}  // namespace

std::span<const SchemaRow> schemaRows() {
    return kRows;
}

}  // namespace QosAgent::Gnmi
