"""A running agent with a gNMI door, and clients of it, for the tests in this folder."""

import functools
import json
import os
import queue
import signal
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import grpc

ROOT = Path(__file__).resolve().parents[2]
PROTO = ROOT / "agent/gnmi/proto"
PATIENCE = 30  # seconds until something that should happen counts as not happening


@functools.cache
def stubs():
    """The messages and the client, made from the project's definitions."""
    folder = tempfile.TemporaryDirectory()
    subprocess.run(
        ["protoc", f"--proto_path={PROTO}", f"--python_out={folder.name}",
         f"--grpc_out={folder.name}", "--plugin=protoc-gen-grpc=/usr/bin/grpc_python_plugin",
         "gnmi.proto", "gnmi_ext.proto"], check=True)
    sys.path.insert(0, folder.name)
    import gnmi_pb2
    import gnmi_pb2_grpc
    folder.cleanup()
    return gnmi_pb2, gnmi_pb2_grpc


class Agent:
    """The program, until the end of a `with`."""

    def __init__(self, program, *options, address="127.0.0.1:0", environment=None,
                 security=("--gnmi-insecure",)):
        self.folder = tempfile.TemporaryDirectory()
        self.socket_path = self.path("agent.sock")
        self.errors = open(self.path("stderr"), "w+", encoding="utf-8")
        self.process = subprocess.Popen(
            [program, "--gnmi", address, *security, "--listen", self.socket_path,
             *map(str, options)],
            env={**os.environ, **(environment or {})},
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=self.errors)
        self.address = self.wait_for_line("qos-agent: gnmi on ")
        self.wait_for_line("qos-agent: listening on ")
        self.lines = Lines(self.socket_path)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.lines.close()
        if self.process.poll() is None:
            self.stop()
        self.errors.close()
        self.folder.cleanup()

    def wait_for_line(self, beginning):
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            for line in self.errors_text().splitlines():
                if line.startswith(beginning):
                    return line[len(beginning):]
            if self.process.poll() is not None:
                break
            time.sleep(0.02)
        raise AssertionError(f"no line {beginning!r}: {self.errors_text()}")

    def path(self, name):
        """The path of a file in a folder that lives as long as the agent."""
        return os.path.join(self.folder.name, name)

    def errors_text(self):
        """What the agent wrote on standard error."""
        return Path(self.errors.name).read_text()

    def stop(self):
        """Ends the program as a service manager does; returns its status and the seconds it took."""
        begin = time.monotonic()
        self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(PATIENCE)
        return status, time.monotonic() - begin


class Lines:
    """A change stream to the agent's socket."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.file = self.socket.makefile("rw", encoding="utf-8", newline="\n")
        self.echoes = 0

    def close(self):
        self.file.close()
        self.socket.close()

    def do(self, *lines):
        """Sends lines, waits until they are applied, and returns what the agent wrote."""
        self.echoes += 1
        end = f"done {self.echoes}"
        self.file.write("".join(line + "\n" for line in lines) + '{"echo": "%s"}\n' % end)
        self.file.flush()
        answers = []
        for answer in self.file:
            if answer.rstrip("\n") == f"# {end}":
                return answers
            answers.append(answer.rstrip("\n"))
        raise AssertionError("the agent closed the stream")


def path(text, **fields):
    """A path message from a string such as `/qos/queues/queue[name=q]`, without escapes."""
    pb, _ = stubs()
    message = pb.Path(**fields)
    while text.strip("/"):
        end = len(text)
        bracket, slash = text.find("[", 1), text.find("/", 1)
        if bracket != -1 and (slash == -1 or bracket < slash):
            element = message.elem.add(name=text[1:bracket])
            while text[bracket:bracket + 1] == "[":
                equals, close = text.index("=", bracket), text.index("]", bracket)
                element.key[text[bracket + 1:equals]] = text[equals + 1:close]
                bracket = close + 1
            end = bracket
        else:
            end = slash if slash != -1 else len(text)
            message.elem.add(name=text[1:end])
        text = text[end:]
    return message


def text_of(message, prefix=None):
    text = ""
    for part in ([prefix] if prefix is not None else []) + [message]:
        for element in part.elem:
            text += "/" + element.name
            for key in sorted(element.key):
                text += f"[{key}={element.key[key]}]"
    return text or "/"


def value_of(value):
    field = value.WhichOneof("value")
    if field in ("json_val", "json_ietf_val"):
        return json.loads(getattr(value, field))
    if field == "leaflist_val":
        return [value_of(element) for element in value.leaflist_val.element]
    return getattr(value, field)


class Client:
    """A client with a connection of its own."""

    def __init__(self, address, credentials=None, options=()):
        options = [("grpc.use_local_subchannel_pool", 1),
                   ("grpc.max_receive_message_length", -1), *options]
        self.channel = (grpc.secure_channel(address, credentials, options) if credentials
                        else grpc.insecure_channel(address, options))
        self.pb, rpc = stubs()
        self.stub = rpc.gNMIStub(self.channel)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.channel.close()

    def get(self, *paths, **fields):
        """The notifications as lists of (path, value)."""
        request = self.pb.GetRequest(path=[path(text) for text in paths], **fields)
        return [[(text_of(update.path, notification.prefix), value_of(update.val))
                 for update in notification.update]
                for notification in self.stub.Get(request, timeout=PATIENCE).notification]

    def set(self, delete=(), replace=(), update=(), union=(), **fields):
        """`replace`, `update` and `union` are pairs of a path and RFC 7951 JSON."""
        def updates(pairs):
            return [self.pb.Update(path=path(text),
                                   val=self.pb.TypedValue(json_ietf_val=value.encode()))
                    for text, value in pairs]
        return self.stub.Set(self.pb.SetRequest(
            delete=[path(text) for text in delete], replace=updates(replace),
            update=updates(update), union_replace=updates(union), **fields), timeout=PATIENCE)

    def subscribe(self, *paths, **fields):
        return Stream(self, *paths, **fields)


class Stream:
    """A Subscribe stream and the tree that a collector makes of it."""

    def __init__(self, client, *paths, mode="STREAM", subscription=None, extension=(),
                 patience=PATIENCE, **fields):
        pb = client.pb
        self.pb = pb
        request = pb.SubscribeRequest(extension=extension, subscribe=pb.SubscriptionList(
            subscription=[pb.Subscription(path=path(text), **(subscription or {}))
                          for text in paths],
            mode=pb.SubscriptionList.Mode.Value(mode), **fields))
        self.requests = queue.Queue()
        self.requests.put(request)
        self.call = client.stub.Subscribe(iter(self.requests.get, None), timeout=patience)
        self.tree = {}
        self.faults = []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.cancel()

    def cancel(self):
        self.requests.put(None)
        self.call.cancel()

    def send(self, request):
        self.requests.put(request)

    def half_close(self):
        self.requests.put(None)

    def poll(self):
        self.send(self.pb.SubscribeRequest(poll=self.pb.Poll()))

    def next(self):
        """The next notification, folded into the tree; "sync" for a sync_response."""
        response = next(self.call)
        if response.WhichOneof("response") == "sync_response":
            return "sync"
        self.fold(response.update)
        return response.update

    def fold(self, notification):
        deletes = [text_of(gone, notification.prefix) for gone in notification.delete]
        updates = [(text_of(update.path, notification.prefix), value_of(update.val))
                   for update in notification.update]
        paths = deletes + [text for text, _ in updates]
        if len(set(paths)) < len(paths):
            self.faults.append(f"a path twice in {notification}")
        for gone in deletes:
            self.tree = {text: value for text, value in self.tree.items()
                         if text != gone and not text.startswith(gone + "/")}
        for text, value in updates:
            if any(text.startswith(gone + "/") for gone in deletes):
                self.faults.append(f"an update below a delete in {notification}")
            self.tree[text] = value

    def until_sync(self):
        """Takes everything up to the next sync_response; returns the notifications."""
        taken = []
        while (notification := self.next()) != "sync":
            taken.append(notification)
        return taken

    def until(self, condition):
        while not condition(self.tree):
            self.next()
