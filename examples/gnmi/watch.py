#!/usr/bin/python3
"""Configures a classifier by gNMI Set, watches its state by Subscribe, and prints both.

    watch.py ADDRESS
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

import grpc

PROTO = Path(__file__).resolve().parents[2] / "agent/gnmi/proto"

with tempfile.TemporaryDirectory() as folder:
    subprocess.run(["protoc", f"--proto_path={PROTO}", f"--python_out={folder}",
                    f"--grpc_out={folder}", "--plugin=protoc-gen-grpc=/usr/bin/grpc_python_plugin",
                    "gnmi.proto", "gnmi_ext.proto"], check=True)
    sys.path.insert(0, folder)
    import gnmi_pb2 as gnmi
    import gnmi_pb2_grpc


def path(*elements):
    """A path; an element with a key is a tuple of its name and the key's name and value."""
    made = gnmi.Path()
    for element in elements:
        if isinstance(element, str):
            made.elem.add(name=element)
        else:
            name, key, value = element
            made.elem.add(name=name).key[key] = value
    return made


def text(message):
    return "".join("/" + element.name + "".join(f"[{key}={value}]" for key, value in element.key.items())
                   for element in message.elem)


EDGE = ("classifier", "name", "edge")
GROUP = ("forwarding-group", "name", "EF")


def classifier(dscp):
    """A classifier with one term, which sends packets of this DSCP to the forwarding group."""
    return {"name": "edge", "config": {"name": "edge", "type": "IPV4"},
            "terms": {"term": [{"id": "voice", "config": {"id": "voice"},
                                "conditions": {"ipv4": {"config": {"dscp": dscp}}},
                                "actions": {"config": {"target-group": "EF"}}}]}}


def update(node, *elements):
    value = gnmi.TypedValue(json_ietf_val=json.dumps(node).encode())
    return gnmi.Update(path=path("qos", *elements), val=value)


def configure(stub, dscp):
    print(f"Set: classifier edge, term voice, dscp {dscp}, target group EF")
    stub.Set(gnmi.SetRequest(
        update=[update({"name": "EF", "config": {"name": "EF"}}, "forwarding-groups", GROUP)],
        replace=[update(classifier(dscp), "classifiers", EDGE)]))


def remove(stub):
    print("Set: no classifier edge")
    stub.Set(gnmi.SetRequest(delete=[path("qos", "classifiers", EDGE)]))


def watch(stub):
    """Yields the lines to print for each notification; None where the first values end."""
    state = gnmi.Subscription(path=path("qos", "classifiers", EDGE, "terms", "term", "...", "state"))
    request = gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(
        subscription=[state], encoding="PROTO"))
    for response in stub.Subscribe(iter([request])):
        if response.sync_response:
            yield None
            continue
        lines = [f"  delete {text(gone)}" for gone in response.update.delete]
        for changed in response.update.update:
            value = getattr(changed.val, changed.val.WhichOneof("value"))
            lines.append(f"  update {text(changed.path)} = {value}")
        yield lines


def main(address):
    stub = gnmi_pb2_grpc.gNMIStub(grpc.insecure_channel(address))
    notifications = watch(stub)
    while next(notifications) is not None:
        pass
    configure(stub, 46)
    print(*next(notifications), sep="\n")
    configure(stub, 40)
    print(*next(notifications), sep="\n")
    remove(stub)
    print(*next(notifications), sep="\n")


main(sys.argv[1])
