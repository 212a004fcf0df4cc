# SPDX-License-Identifier: MIT
"""What can fail, and how it is made to: the n-th system call of its kind in the real program, by strace."""

import collections
import contextlib
import dataclasses
import itertools
import os
import pathlib
import re
import shutil
import signal
import subprocess

from bus import KINDS
from nimbo_desktop import Process, wait_until

# What the kernel may answer; "=0" is a call that is left out and returns 0, which is the end of a file, and what brk
# says of a failure. Not here is what never happens: a socket that does not block is not interrupted.
ERRORS = {
    "access": "EACCES",
    "bind": "ENOMEM",
    "brk": "=0",
    "clone": "EAGAIN ENOMEM",
    "clone3": "EAGAIN ENOMEM",
    "connect": "ECONNREFUSED EACCES",
    "epoll_create1": "EMFILE",
    "epoll_ctl": "ENOMEM ENOSPC",
    "epoll_wait": "EINTR",
    "eventfd2": "EMFILE",
    "fcntl": "EMFILE",
    "fsync": "EIO ENOSPC",
    "getdents64": "EIO ENOMEM",
    "inotify_add_watch": "ENOSPC",
    "inotify_init1": "EMFILE",
    "ioctl": "EIO",
    "mkdir": "EACCES ENOSPC",
    "mmap": "ENOMEM",
    "mprotect": "ENOMEM",
    "mremap": "ENOMEM",
    "newfstatat": "EACCES EIO",
    "openat": "ENOENT EACCES EMFILE EIO EINTR ENOMEM",
    "pidfd_open": "EMFILE",
    "pipe2": "EMFILE",
    "poll": "EINTR",
    "ppoll": "EINTR",
    "pread64": "EIO EINTR =0",
    "read": "EIO EINTR =0",
    "readlink": "EACCES EIO",
    "recvfrom": "EAGAIN ECONNRESET",
    "recvmsg": "EAGAIN ENOMEM ECONNRESET",
    "rename": "EACCES ENOSPC EIO",
    "sendmsg": "EAGAIN ENOBUFS EPIPE",
    "sendto": "EAGAIN ENOBUFS EPIPE",
    "signalfd4": "EMFILE",
    "socket": "EMFILE ENOMEM",
    "socketpair": "EMFILE",
    "timerfd_create": "EMFILE",
    "unlink": "EACCES",
    "vfork": "EAGAIN",
    "wait4": "EINTR",
    "waitid": "EINTR",
    "write": "ENOSPC EIO EINTR",
}
MEMORY = {"brk", "mmap", "mprotect", "mremap"}
# Where the library gives up a connection to a bus.
CONNECTION = {"connect", "epoll_ctl", "fcntl", "poll", "ppoll", "recvmsg", "sendmsg", "sendto", "socket"}


@dataclasses.dataclass(frozen=True)
class Fault:
    call: str
    error: str
    when: str  # the number of the call in its thread; "3+" is the third and all that follow

    def option(self):
        action = f"retval={self.error[1:]}" if self.error.startswith("=") else f"error={self.error}"
        if self.error == "delay":
            action = "delay_enter=1000000"  # a second
        return f"inject={self.call}:{action}:when={self.when}"

    def __str__(self):
        return f"{self.call}:{self.error}:{self.when}"

    @property
    def lacks_memory(self):
        return self.call in MEMORY or self.error == "ENOMEM"

    @property
    def may_lose_bus(self):
        return self.call in CONNECTION or self.error == "closed"


class Tracer:
    """strace, which makes the faults happen, in every thread and child; without any it counts."""

    @staticmethod
    def missing():
        """Why no process can be traced here; empty when they can."""
        if shutil.which("strace") is None:
            return "there is no strace"
        sleeper = Process(["sleep", "60"], os.environ)
        tracer = Process(["strace", "-p", str(sleeper.pid)], os.environ, stderr=subprocess.PIPE, text=True)
        answer = tracer.process.stderr.readline().strip()
        tracer.end()
        sleeper.end()
        return "" if answer.endswith("attached") else f"processes may not be traced: {answer}"

    def __init__(self, folder, faults=()):
        self.log = folder / "strace.log"
        self.log.unlink(missing_ok=True)
        calls = {fault.call for fault in faults} or {*ERRORS, "munmap"}
        options = ["-I1", "-o", str(self.log), "-y", "-e", "signal=none"]
        options += ["-e", "trace=" + ",".join(f"?{call}" for call in sorted(calls))]
        for fault in faults:
            options += ["-e", fault.option()]
        self.options = ["strace", "-f", *options]
        # To be put before a program, which stays the child of who starts it.
        self.command = [*self.options, "-D"]

    @contextlib.contextmanager
    def attached(self, pid):
        tracer = subprocess.Popen(
            [*self.options, "-p", str(pid)], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True
        )
        try:
            tracer.stderr.readline()  # it says so when it has begun
            yield self
        finally:
            if tracer.poll() is None:
                tracer.send_signal(signal.SIGINT)
            tracer.communicate()

    @property
    def injected(self):
        """The lines of the calls that failed."""
        text = self.log.read_text(errors="replace") if self.log.exists() else ""
        return [line for line in text.splitlines() if "(INJECTED)" in line]

    @property
    def happened(self):
        return bool(self.injected)

    @property
    def possible(self):
        """Whether it could have happened by itself: counters and timers do not fail, nor does a look at a socket."""
        impossible = r"\w+\(\d+<anon_inode:\[(eventfd|timerfd|signalfd)\]>|newfstatat\(\d+<socket:"
        return not any(re.search(impossible, line) for line in self.injected)

    def cases(self, started):
        return list(faults_of(*self.counts(started)))

    def counts(self, started):
        """How often each kind of call came, at most, in a thread; and how many of these are to be left alone, because
        they are those of the loader of a program that was `started`."""
        counted, loading = collections.defaultdict(collections.Counter), collections.Counter()
        for line in self.log.read_text(errors="replace").splitlines():
            found = re.match(r"(?:(\d+) +)?(\w+)\(", line)
            if not found:
                continue
            counted[found[1]][found[2]] += 1
            # The loader gives back its list of libraries last.
            if started and found[2] == "munmap" and not loading:
                loading = counted[found[1]].copy()
        most = collections.Counter()
        for calls in counted.values():
            most |= calls
        return most, loading


def let_go(pid):
    """Ends the tracer of a program that was started with one."""
    status = pathlib.Path(f"/proc/{pid}/status")

    def tracer():
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            return int(re.search(r"TracerPid:\t(\d+)", status.read_text())[1])
        return 0

    found = tracer()
    if found:
        with contextlib.suppress(ProcessLookupError):
            os.kill(found, signal.SIGTERM)
        wait_until(lambda: not tracer(), "the tracer's end")


class BusTracer:
    """The same of a bus."""

    command = ()
    possible = True

    def __init__(self, buses, faults=()):
        self.buses = buses
        buses.arm(faults)

    @contextlib.contextmanager
    def attached(self, _pid):
        yield self

    @property
    def happened(self):
        return bool(self.buses.injected)

    def cases(self, _started):
        return [Fault("call", kind, str(n)) for kind in KINDS for n in range(1, self.buses.calls + 1)]


def faults_of(counts, loading):
    """Every call with every error that fits, the first error of all calls first."""
    for column in itertools.zip_longest(*(ERRORS[call].split() for call in ERRORS)):
        for call, error in zip(ERRORS, column):
            if error:
                yield from (Fault(call, error, str(n)) for n in range(loading[call] + 1, counts[call] + 1))
