"""Runs test programs with one fault switched on, each in a folder of its own that is all it can write to."""
import os
import shutil
import signal
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

MAP_SIZE = 1 << 14


@dataclass
class Baseline:
    """What a program's tests do without a fault: how long each takes, and the faults' places it comes by."""
    seconds: dict = field(default_factory=dict)
    reached: dict = field(default_factory=dict)
    failing: list = field(default_factory=list)
    somewhere: set = field(default_factory=set)  # reached at all, by tests or outside of them
    trouble: str = ""

    def tests_reaching(self, number):
        return sorted((t for t, numbers in self.reached.items() if number in numbers), key=self.seconds.get)


class Rooms:
    def __init__(self, build):
        self.build = build  # some tests write beside their program
        self.top = Path(tempfile.mkdtemp(prefix="r.", dir=build.parent))  # not in the temporary area: imports move what lies there
        self.running = set()
        self.is_stopped = False

    def stop(self):
        """Ends what runs, from any thread; nothing is started any more."""
        self.is_stopped = True
        for child in list(self.running):
            os.killpg(child.pid, signal.SIGKILL)

    def close(self):
        shutil.rmtree(self.top, ignore_errors=True)

    def start(self, program, fault, filter_, limit, log=None):
        """(exit status or None when it hung, output, the map of reached places)"""
        if self.is_stopped:
            return None, "", b""
        command, variables = program
        room = Path(tempfile.mkdtemp(prefix="r", dir=self.top))
        for name in ("h", "d", "c", "k", "t", "tmp"):
            (room / name).mkdir()
        (room / "x").mkdir(mode=0o700)
        (room / "map").write_bytes(bytes(MAP_SIZE))
        environment = {**os.environ, **variables, "HOME": str(room / "h"), "XDG_DATA_HOME": str(room / "d"), "XDG_CONFIG_HOME": str(room / "c"),
                       "XDG_CACHE_HOME": str(room / "k"), "XDG_RUNTIME_DIR": str(room / "x"), "TMPDIR": str(room / "t"), "SQLITE_TMPDIR": str(room / "t"),
                       "ZELTO_MUTANT": str(fault), "ZELTO_MUTANT_TMP": str(room / "tmp"), "ZELTO_MUTANT_MAP": str(room / "map"), "ZELTO_MUTANT_ROOMS": f"{self.top}:{self.build}"}
        if log:
            environment["ZELTO_MUTANT_LOG"] = str(log)
        arguments = ["--gtest_brief=1", f"--gtest_filter={filter_}"] + ([] if log else ["--gtest_fail_fast"])
        with open(room / "output", "wb+") as output:
            child = subprocess.Popen([*command, *arguments], env=environment, cwd=room / "t", stdin=subprocess.DEVNULL, stdout=output,
                                     stderr=subprocess.STDOUT, start_new_session=True)
            self.running.add(child)
            try:
                status = child.wait(limit)
            except subprocess.TimeoutExpired:
                status = None
            finally:
                self.running.discard(child)
                end(child)
            output.seek(0)
            text = output.read().decode(errors="replace")
        reached = (room / "map").read_bytes()
        shutil.rmtree(room, ignore_errors=True)
        return status, text, reached

    def baseline(self, program, limit=1800):
        result = Baseline()
        handle, log = tempfile.mkstemp(dir=self.top)
        os.close(handle)
        status, text, last = self.start(program, 0, "*", limit, log)
        for line in Path(log).read_text().splitlines():
            name, verdict, milliseconds, numbers = line.split("\t")
            reached = {int(number) for number in numbers.split()}
            result.somewhere |= reached
            if verdict == "passed":
                result.seconds[name], result.reached[name] = int(milliseconds) / 1000, reached
            else:
                result.failing.append(name)
        result.somewhere |= {number for number, byte in enumerate(last) if byte}
        if status is None or status < 0 or (status != 0 and not result.failing):
            result.trouble = f"ended with {'a hang' if status is None else status} without a fault:\n{text[-2000:]}"
        return result


def end(child):
    """Ends the program's whole session: a fault may have left something behind that runs on."""
    try:
        os.killpg(child.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    child.wait()


def judge(rooms, program, baseline, number, tests):
    """The word for how the fault was noticed by these tests, or None. Quick tests go first: most faults end there."""
    quick, total = [], 0.0
    for test in tests:
        total += baseline.seconds[test]
        if total > 3 and quick:
            break
        quick.append(test)
    for part in (quick, tests[len(quick):]):
        if not part:
            continue
        limit = 20 + 6 * sum(baseline.seconds[test] for test in part)
        if word := verdict(rooms, program, number, ":".join(part), limit):
            return word
    return None


def verdict(rooms, program, number, filter_, limit):
    """What hangs is run once more without the fault: a machine that is busy with something else gets more time."""
    for _ in range(4):
        status, _, _ = rooms.start(program, number, filter_, limit)
        if status is not None:
            return None if status == 0 else "crash" if status < 0 else "test"
        if rooms.is_stopped or rooms.start(program, 0, filter_, limit)[0] is not None:
            return "hang"
        limit *= 3
    return None
