"""A headless Chromium, driven over the pipe of its remote debugging."""

import base64
import itertools
import json
import os
import select
import shutil
import subprocess
import tempfile
import time

PATIENCE = 60  # seconds until something that should happen counts as not happening


def program():
    """Chromium's path; none if it is not installed."""
    return shutil.which("chromium") or shutil.which("chromium-browser")


class Browser:
    """The browser, with one page, until the end of a `with`."""

    def __init__(self, width=1400, height=900):
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        commands, self.to = os.pipe()
        self.answers, answers = os.pipe()
        self.process = subprocess.Popen(
            [program(), "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--disable-sync", "--disable-dev-shm-usage", f"--user-data-dir={self.folder.name}",
             "--remote-debugging-pipe", "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            preexec_fn=lambda: self.hand_over(commands, answers), pass_fds=(3, 4))
        os.close(commands)
        os.close(answers)
        self.numbers = itertools.count(1)
        self.received = b""
        self.events = []
        self.session = None
        target = next(each for each in self.call("Target.getTargets")["targetInfos"]
                      if each["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"],
                                 flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")
        self.resize(width, height)

    @staticmethod
    def hand_over(commands, answers):
        """In the child: the browser reads descriptor 3 and writes 4."""
        commands, answers = os.dup(commands), os.dup(answers)
        os.dup2(commands, 3)
        os.dup2(answers, 4)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.to)
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.answers)
        self.folder.cleanup()

    def call(self, method, **parameters):
        """The result of a command. Events that come before it are kept."""
        number = next(self.numbers)
        message = {"id": number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.to, json.dumps(message).encode() + b"\0")
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            answer = self.receive(deadline - time.monotonic())
            if answer is None or answer.get("id") != number:
                continue
            if "error" in answer:
                raise AssertionError(f"{method}: {answer['error']}")
            return answer["result"]
        raise AssertionError(f"{method}: no answer")

    def receive(self, patience):
        """The next message; none if there is none for so long."""
        while b"\0" not in self.received:
            if not select.select([self.answers], [], [], max(patience, 0))[0]:
                return None
            piece = os.read(self.answers, 1 << 20)
            if not piece:
                raise AssertionError("the browser has ended")
            self.received += piece
        message, self.received = self.received.split(b"\0", 1)
        message = json.loads(message)
        if "method" in message:
            self.events.append(message)
        return message

    def happened(self, method):
        """The parameters of all events of this kind so far."""
        while self.receive(0) is not None:
            pass
        return [event["params"] for event in self.events if event["method"] == method]

    def open(self, url):
        self.call("Page.navigate", url=url)

    def resize(self, width, height=900):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)

    def colour_scheme(self, scheme):
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": scheme}])

    def run(self, script):
        """The value of an expression in the page."""
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True,
                           awaitPromise=True)
        if "exceptionDetails" in result:
            raise AssertionError(f"{script}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def until(self, script):
        """Waits until an expression in the page is true, and returns its value."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            if value := self.run(script):
                return value
            time.sleep(0.02)
        raise AssertionError(f"never true: {script}")

    def press(self, key, text=""):
        codes = {"Home": 36, "End": 35, "ArrowUp": 38, "ArrowDown": 40, "ArrowLeft": 37,
                 "ArrowRight": 39, "Enter": 13, "Tab": 9, "PageDown": 34}
        common = {"key": key, "code": key, "windowsVirtualKeyCode": codes.get(key, 0)}
        self.call("Input.dispatchKeyEvent", type="keyDown", text=text, **common)
        self.call("Input.dispatchKeyEvent", type="keyUp", **common)

    def screenshot(self, file):
        picture = self.call("Page.captureScreenshot", format="png")["data"]
        with open(file, "wb") as out:
            out.write(base64.b64decode(picture))

    def complaints(self):
        """What the console shows as errors, and exceptions that nobody caught."""
        return ([entry["entry"] for entry in self.happened("Log.entryAdded")
                 if entry["entry"]["level"] == "error"] +
                [call for call in self.happened("Runtime.consoleAPICalled")
                 if call["type"] in ("error", "assert", "warning")] +
                self.happened("Runtime.exceptionThrown"))

    def requests(self):
        """The URLs that were asked for."""
        return [event["request"]["url"] for event in self.happened("Network.requestWillBeSent")]
