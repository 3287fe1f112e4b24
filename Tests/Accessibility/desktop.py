"""A virtual display with a window manager, a session bus and the bus of assistive programs, and the program on it."""
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parents[1] / "Support"))
from world import redirected

LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
DEBIAN_PYTHON = "/usr/bin/python3"  # which finds what Debian packages brought


def missing():
    """What the tests need and is not there."""
    names = [name for name in ("Xvfb", "openbox", "xdotool", "dbus-run-session") if not shutil.which(name)]
    if not any(Path(launcher).exists() for launcher in LAUNCHERS):
        names.append("at-spi2-core")
    probe = subprocess.run([DEBIAN_PYTHON, "-c", "import gi; gi.require_version('Atspi', '2.0'); from gi.repository import Atspi"],
                           capture_output=True)
    if probe.returncode != 0:
        names.append("python3-gi with gir1.2-atspi-2.0")
    return names


def enter():
    """Goes on in a session of its own, with an interpreter that knows the bus; ends as skipped where that cannot be."""
    if os.environ.get("ZELTO_TEST_SESSION"):
        return
    if names := missing():
        print("skipped: there is no " + ", ".join(names))
        sys.exit(77)
    # What runs without a bus address of its own would be heard by the person's screen reader.
    environment = {**os.environ, "ZELTO_TEST_SESSION": "1"}
    for name in ("DBUS_SESSION_BUS_ADDRESS", "AT_SPI_BUS_ADDRESS", "WAYLAND_DISPLAY", "DISPLAY"):
        environment.pop(name, None)
    os.execvpe("dbus-run-session", ["dbus-run-session", "--", DEBIAN_PYTHON, *sys.argv], environment)


class Desktop:
    def __init__(self, zelto, environment):
        self.scratch = tempfile.TemporaryDirectory(dir=Path.home())  # imports from a temporary area are moved
        self.sockets = tempfile.TemporaryDirectory()
        self.home = Path(self.scratch.name)
        self.zelto = str(Path(zelto).resolve())
        self.started = []
        ends = os.pipe()
        self.start(["Xvfb", "-displayfd", str(ends[1]), "-screen", "0", "1440x900x24", "-nolisten", "tcp", "-noreset"],
                   dict(os.environ), pass_fds=(ends[1],))
        os.close(ends[1])
        with os.fdopen(ends[0]) as told:
            number = told.readline().strip()
        if not number:
            raise AssertionError("the virtual display did not start")
        os.environ["DISPLAY"] = ":" + number
        os.environ["XDG_RUNTIME_DIR"] = self.sockets.name
        self.environment = {
            **os.environ, **redirected(self.home, self.sockets.name), "QT_QPA_PLATFORM": "xcb", "QT_ACCESSIBILITY": "1",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", **environment,
        }
        self.start(["openbox"], self.environment)
        launcher = next(path for path in LAUNCHERS if Path(path).exists())
        self.start([launcher, "--launch-immediately"], dict(os.environ))

    def start(self, command, environment, **more):
        process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **more)
        self.started.append(process)
        return process

    def command(self, *arguments):
        subprocess.run([self.zelto, *arguments], env={**self.environment, "QT_QPA_PLATFORM": "offscreen"}, check=True,
                       stdin=subprocess.DEVNULL, capture_output=True, timeout=120)

    def open_window(self):
        self.window = self.start([self.zelto], self.environment)

    def press(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], env=self.environment, check=True, timeout=30)

    def close(self):
        for process in reversed(self.started):
            process.terminate()
            try:
                process.wait(20)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self.scratch.cleanup()
        self.sockets.cleanup()


def wait_for(condition, what, seconds=60):
    """The first true answer of `condition`."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if found := condition():
            return found
        time.sleep(0.1)
    raise AssertionError(f"in vain waited for {what}")
