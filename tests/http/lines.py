"""Lines of change streams that the tests in this folder send."""

import json

STATE = "qos/openconfig/state/classifiers/classifier/"


def class_map(name):
    escaped = name.replace("~", "~0").replace("/", "~1")
    return json.dumps({"update": f"qos/status/cmapTypeStatus/mapQos/cmapStatus/{escaped}"
                                 "/match/matchIpAccessGroup", "value": ""}, ensure_ascii=False)


def no_class_map(name):
    escaped = name.replace("~", "~0").replace("/", "~1")
    return json.dumps({"delete": f"qos/status/cmapTypeStatus/mapQos/cmapStatus/{escaped}"},
                      ensure_ascii=False)


def access_list(classifier, term, *values):
    rules = {str(at): {"filter": {"dscpValue": value, "dscpEnabled": True}}
             for at, value in enumerate(values, 1)}
    return json.dumps({
        "update": f"acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:{classifier}:{term}"
                  "/aclSubConfig",
        "value": {"ipRuleById": rules, "ruleIdBySequence": {at: int(at) for at in rules}}})
