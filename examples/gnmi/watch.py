#!/usr/bin/python3
"""Configures a classifier by gNMI, watches its state, and prints both.

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


def document(dscp):
    return json.dumps({
        "name": "edge", "config": {"name": "edge", "type": "IPV4"},
        "terms": {"term": [{"id": "voice", "config": {"id": "voice"},
                            "conditions": {"ipv4": {"config": {"dscp": dscp}}}}]}})


def configure(stub, dscp):
    print("set", dscp)
    value = gnmi.TypedValue(json_ietf_val=document(dscp).encode())
    stub.Set(gnmi.SetRequest(replace=[gnmi.Update(path=path("qos", "classifiers", EDGE), val=value)]))


def watch(stub):
    """Yields None for the end of the first values, and lines about what changed."""
    state = gnmi.Subscription(path=path("qos", "classifiers", EDGE, "terms", "term", "..."))
    request = gnmi.SubscribeRequest(subscribe=gnmi.SubscriptionList(
        subscription=[state], encoding="PROTO"))
    for response in stub.Subscribe(iter([request])):
        if response.sync_response:
            yield None
        for gone in response.update.delete:
            yield f"delete {text(gone)}"
        for update in response.update.update:
            if any(element.name == "state" for element in update.path.elem):
                value = getattr(update.val, update.val.WhichOneof("value"))
                yield f"update {text(update.path)} {value}"


def main(address):
    stub = gnmi_pb2_grpc.gNMIStub(grpc.insecure_channel(address))
    changes = watch(stub)
    while next(changes) is not None:
        pass
    for dscp in (46, 40):
        configure(stub, dscp)
        for change in changes:
            print(change)
            if change.endswith(f"dscp {dscp}"):
                break
    print("set nothing")
    stub.Set(gnmi.SetRequest(delete=[path("qos", "classifiers", EDGE)]))
    print(next(changes))


main(sys.argv[1])
