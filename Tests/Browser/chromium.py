"""A headless Chromium driven over a pipe by the DevTools protocol."""
import fcntl
import json
import os
import select
import shutil
import subprocess
import tempfile
import time

PROGRAMS = ("chromium", "chromium-browser", "google-chrome")


def program():
    return next((found for found in map(shutil.which, PROGRAMS) if found), None)


class Chromium:
    """Ends, with its profile, as a context does."""

    def __init__(self, patience=60):
        self.patience = patience
        self.profile = tempfile.mkdtemp(prefix="zelto-browser-")
        commands, self.write = os.pipe()
        self.read, answers = os.pipe()
        arguments = [program(), "--headless=new", "--remote-debugging-pipe", "--enable-unsafe-extension-debugging",
                     f"--user-data-dir={self.profile}", "--no-first-run", "--disable-gpu", "--disable-background-networking",
                     "--window-size=1280,900", "about:blank"]
        if os.geteuid() == 0:
            arguments.insert(1, "--no-sandbox")

        # Out of the way of the numbers they are to have.
        far = [fcntl.fcntl(end, fcntl.F_DUPFD_CLOEXEC, 100) for end in (commands, answers)]

        def take_pipes():
            os.dup2(far[0], 3)
            os.dup2(far[1], 4)

        self.log = open(os.path.join(self.profile, "log"), "w+b")
        self.process = subprocess.Popen(arguments, preexec_fn=take_pipes, close_fds=False, stdout=self.log, stderr=self.log)
        for end in (commands, answers, *far):
            os.close(end)
        self.received = b""
        self.last = 0
        self.events = []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.write)
        os.close(self.read)
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.log.close()
        shutil.rmtree(self.profile, ignore_errors=True)

    def message(self, deadline):
        while b"\0" not in self.received:
            left = deadline - time.monotonic()
            if left <= 0 or not select.select([self.read], [], [], left)[0]:
                return None
            more = os.read(self.read, 1 << 20)
            if not more:
                self.log.seek(0)
                raise AssertionError("Chromium ended: " + self.log.read()[-2000:].decode(errors="replace"))
            self.received += more
        line, self.received = self.received.split(b"\0", 1)
        return json.loads(line)

    def send(self, method, session=None, **parameters):
        self.last += 1
        number = self.last
        command = {"id": number, "method": method, "params": parameters}
        if session:
            command["sessionId"] = session
        os.write(self.write, json.dumps(command).encode() + b"\0")
        deadline = time.monotonic() + self.patience
        while (message := self.message(deadline)) is not None:
            if message.get("id") == number:
                if "error" in message:
                    raise AssertionError(f"{method}: {message['error']['message']}")
                return message["result"]
            self.events.append(message)
        raise AssertionError(f"{method} was not answered")

    def event(self, is_wanted):
        """The first that came or comes for which `is_wanted(method, parameters)`."""
        deadline = time.monotonic() + self.patience
        while True:
            for message in self.events:
                if "method" in message and is_wanted(message["method"], message["params"]):
                    self.events.remove(message)
                    return message["params"]
            message = self.message(deadline)
            assert message is not None, "what was waited for did not happen in the browser"
            self.events.append(message)

    def open(self, url):
        """A tab with that page; its session."""
        target = self.send("Target.createTarget", url="about:blank")["targetId"]
        session = self.send("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.send("Page.enable", session)
        self.send("Runtime.enable", session)
        self.go(session, url)
        return session

    def go(self, session, url):
        self.send("Page.navigate", session, url=url)
        self.until(session, f"document.readyState === 'complete' && location.href.startsWith({json.dumps(url)})")

    def evaluate(self, session, expression):
        answer = self.send("Runtime.evaluate", session, expression=expression, awaitPromise=True, returnByValue=True,
                           userGesture=True)
        assert "exceptionDetails" not in answer, answer["exceptionDetails"]
        return answer["result"].get("value")

    def until(self, session, expression):
        deadline = time.monotonic() + self.patience
        while time.monotonic() < deadline:
            try:
                if self.evaluate(session, expression):
                    return
            except AssertionError as error:
                if "context" not in str(error):
                    raise
            time.sleep(0.05)
        raise AssertionError("not true in the browser: " + expression)
