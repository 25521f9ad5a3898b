"""Change-stream lines that make and change the published state, as a device's inputs would."""

import json

MAP = "qos/status/cmapTypeStatus/mapQos/cmapStatus"
ACL = "acl/config/cli/aclTypeConfig/ipv4/aclConfig"


def line(operation, where, *value):
    return json.dumps({operation: where, **({"value": value[0]} if value else {})})


def name(classifier, term):
    return f"openconfig:{classifier}:{term}"


def make_term(classifier, term, *values):
    """A term with these DSCP values."""
    both = name(classifier, term)
    rules = {str(at): {"filter": {"dscpValue": value, "dscpEnabled": True}}
             for at, value in enumerate(values, 1)}
    return [line("update", f"{MAP}/{both}/match/matchIpAccessGroup", both),
            line("replace", f"{ACL}/{both}/aclSubConfig",
                 {"ipRuleById": rules,
                  "ruleIdBySequence": {str(10 * at): at
                                       for at in range(1, len(values) + 1)}})]


def remove_term(classifier, term):
    both = name(classifier, term)
    return [line("delete", f"{ACL}/{both}"), line("delete", f"{MAP}/{both}")]


def configuration(classifiers, groups=()):
    """The OpenConfig document of {classifier: {term: (dscp, target group or None)}}."""
    def term(identifier, dscp, group):
        entry = {"id": identifier, "config": {"id": identifier},
                 "conditions": {"ipv4": {"config": {"dscp": dscp}}}}
        if group:
            entry["actions"] = {"config": {"target-group": group}}
        return entry
    qos = {"classifiers": {"classifier": [
        {"name": classifier, "config": {"name": classifier, "type": "IPV4"},
         "terms": {"term": [term(identifier, *what) for identifier, what in terms.items()]}}
        for classifier, terms in classifiers.items()]}}
    if groups:
        qos["forwarding-groups"] = {"forwarding-group": [
            {"name": group, "config": {"name": group}} for group in groups]}
    return {"openconfig-qos:qos": qos}
