#!/usr/bin/python3
"""Runs the commands of docs/gnmi.md: openssl and the agent as they stand there, gnmic and grpcurl where
they are installed; where they are not, asks the same with this folder's client.

    page_test.py PROGRAM
"""

import argparse
import os
import re
import shlex
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import unittest
import warnings
from pathlib import Path

import grpc
from google.protobuf import json_format

from agent import ROOT, Agent, Client, stubs

PROGRAM = sys.argv.pop(1)
CONFIGURATION = ROOT / "examples/openconfig/configuration.json"
NAME = "switch1.example"


def commands(first):
    """The page's commands of a program, as lists of words."""
    page = (ROOT / "docs/gnmi.md").read_text(encoding="utf-8")
    blocks = "".join(re.findall(r"```sh\n(.*?)```", page, re.S)).replace("\\\n", "")
    lines = [shlex.split(line) for line in blocks.splitlines() if not line.startswith("#")]
    return [line for line in lines if line[0] == first]


class Gnmic:
    """What a command line of gnmic asks for, asked by another client."""

    def __init__(self, words):
        parser = argparse.ArgumentParser()
        for option in ("-a", "-e", "--tls-ca", "--tls-cert", "--tls-key"):
            parser.add_argument(option)
        parser.add_argument("--insecure", action="store_true")
        calls = parser.add_subparsers(dest="call", required=True)
        calls.add_parser("capabilities")
        get, subscribe, set_ = (calls.add_parser(name) for name in ("get", "subscribe", "set"))
        for call in (get, subscribe):
            call.add_argument("--path")
        get.add_argument("--type", default="all")
        for option in ("--stream-mode", "--sample-interval"):
            subscribe.add_argument(option)
        for option in ("--delete", "--update-path", "--update-value"):
            set_.add_argument(option)
        self.asked = parser.parse_args(words[1:])

    def credentials(self):
        if self.asked.insecure:
            return None
        files = (self.asked.tls_ca, self.asked.tls_key, self.asked.tls_cert)
        return grpc.ssl_channel_credentials(*(Path(file).read_bytes() for file in files))

    def run(self, address):
        options = [] if self.asked.insecure else [("grpc.ssl_target_name_override", NAME)]
        with Client(address, self.credentials(), options) as client:
            getattr(self, self.asked.call)(client)

    def capabilities(self, client):
        pb, _ = stubs()
        client.stub.Capabilities(pb.CapabilityRequest())

    def get(self, client):
        (updates,) = client.get(self.asked.path, type=self.asked.type.upper(),
                                encoding=(self.asked.e or "json").upper())
        assert updates, self.asked

    def subscribe(self, client):
        subscription = {"mode": self.asked.stream_mode.upper().replace("-", "_")}
        if self.asked.sample_interval:
            seconds = int(self.asked.sample_interval.removesuffix("s"))
            subscription["sample_interval"] = seconds * 1_000_000_000
        with client.subscribe(self.asked.path, encoding=self.asked.e.upper(),
                              subscription=subscription) as stream:
            assert stream.until_sync(), self.asked

    def set(self, client):
        if self.asked.delete:
            client.set(delete=[self.asked.delete])
        else:
            client.set(update=[(self.asked.update_path, f'"{self.asked.update_value}"')])


def grpcurl(words, address):
    """The same for a command line of grpcurl."""
    parser = argparse.ArgumentParser()
    parser.add_argument("-plaintext", action="store_true")
    parser.add_argument("-d", default="{}")
    parser.add_argument("address")
    parser.add_argument("method")
    asked = parser.parse_args(words[1:])
    pb, _ = stubs()
    with Client(address) as client:
        if asked.method == "gnmi.gNMI/Get":
            assert client.stub.Get(json_format.Parse(asked.d, pb.GetRequest())).notification
        elif asked.method == "list":
            reflect = client.channel.stream_stream(
                "/grpc.reflection.v1alpha.ServerReflection/ServerReflectionInfo")
            assert b"gnmi.gNMI" in next(reflect(iter([b"\x3a\x01*"]), timeout=20))
        else:
            assert client.channel.unary_unary("/" + asked.method)(b"", timeout=20) == b"\x08\x01"


def tls_version(address, most):
    """The version that a handshake with a writer's certificate agrees on."""
    context = ssl.create_default_context(cafile="ca.pem")
    context.load_cert_chain("controller.pem", "controller.key")
    context.set_alpn_protocols(["h2"])
    context.set_ciphers("ALL:@SECLEVEL=0")
    with warnings.catch_warnings(action="ignore"):
        context.minimum_version = ssl.TLSVersion.TLSv1
        context.maximum_version = most
    host, port = address.rsplit(":", 1)
    with socket.create_connection((host, int(port)), timeout=20) as plain, \
            context.wrap_socket(plain, server_hostname=NAME) as secured:
        return secured.version()


def run_at(words, address, asked_otherwise):
    if not shutil.which(words[0]):
        return asked_otherwise()
    here = [re.sub(r"^[\w.]+:9339$", address, word) for word in words]
    return subprocess.run(here, check=True, timeout=30, stdout=subprocess.DEVNULL)


class Page(unittest.TestCase):
    def setUp(self):
        folder = self.enterContext(tempfile.TemporaryDirectory())
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder)
        shutil.copy(CONFIGURATION, "configuration.json")

    def agent(self, words):
        """The agent with the options of a command line, at a free port of this machine."""
        self.assertEqual([words[0], words[1], words[-1]],
                         ["qos-agent", "--gnmi", "configuration.json"])
        return Agent(PROGRAM, *words[3:], security=())

    def test_the_agent_and_clients_without_certificates(self):
        plain, _ = commands("qos-agent")
        with self.agent(plain) as agent:
            for words in commands("gnmic"):
                if "--insecure" in words:
                    run_at(words, agent.address, lambda words=words: Gnmic(words).run(agent.address))
            for words in commands("grpcurl"):
                run_at(words, agent.address, lambda words=words: grpcurl(words, agent.address))

    def test_the_agent_and_clients_with_certificates(self):
        for words in commands("openssl"):
            subprocess.run(words, check=True, stderr=subprocess.DEVNULL)
        _, secure = commands("qos-agent")
        with self.agent(secure) as agent:
            seen = {}
            for words in commands("gnmic"):
                if "--insecure" in words:
                    continue
                client = Gnmic(words)
                client.run(agent.address)
                client.asked.call = "set"
                client.asked.delete = "/qos/queues/queue[name=gold]"
                try:
                    client.run(agent.address)
                    seen[client.asked.tls_cert] = grpc.StatusCode.OK
                except grpc.RpcError as error:
                    seen[client.asked.tls_cert] = error.code()
            self.assertEqual(seen, {"controller.pem": grpc.StatusCode.OK,
                                    "collector.pem": grpc.StatusCode.PERMISSION_DENIED})
            self.assertEqual([tls_version(agent.address, most) for most in (
                ssl.TLSVersion.TLSv1_3, ssl.TLSVersion.TLSv1_2)], ["TLSv1.3", "TLSv1.2"])
            with self.assertRaises(ssl.SSLError):
                tls_version(agent.address, ssl.TLSVersion.TLSv1_1)
            unsigned = grpc.ssl_channel_credentials(Path("ca.pem").read_bytes())
            options = [("grpc.ssl_target_name_override", NAME)]
            with self.assertRaises(grpc.RpcError) as refused, \
                    Client(agent.address, unsigned, options) as client:
                client.get("/qos")
            self.assertEqual(refused.exception.code(), grpc.StatusCode.UNAVAILABLE)

    def test_every_command_is_one_that_is_run(self):
        run = {name: len(commands(name)) for name in ("qos-agent", "gnmic", "grpcurl", "openssl")}
        self.assertEqual(run, {"qos-agent": 2, "gnmic": 9, "grpcurl": 3, "openssl": 4})


if __name__ == "__main__":
    for name in ("gnmic", "grpcurl"):
        if not shutil.which(name):
            print(f"SKIPPED: {name} is not installed; its requests are sent by another client")
    unittest.main()
