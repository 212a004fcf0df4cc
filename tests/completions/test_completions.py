# SPDX-License-Identifier: MIT
"""What the shells offer, asked of the shells themselves with the files where a package puts them."""

import contextlib
import os
import pathlib
import pty
import select
import signal
import subprocess
import tempfile
import threading
import unittest

FILES = pathlib.Path(__file__).resolve().parents[2] / "data" / "completions"
LENGTHS = {"30m", "1h", "2h", "4h", "8h"}
REPORTS = {"--json", "--short", "--watch"}
OFFERED = {
    "nimbo ": {"awake", "usage", "memory", "processes", "open", "quit"},
    "nimbo --": {"--help", "--version", "--diagnostics", "--profile", "--claude-desktop-check"},
    "nimbo awake ": {"on", "off", "extend", "status", "run", "while"},
    "nimbo awake on --": {"--for", "--until", "--display"},
    "nimbo awake on --for ": LENGTHS,
    "nimbo awake on --until ": set(),
    "nimbo awake on --for 1h --": {"--display"},
    "nimbo awake on --display --": {"--for", "--until"},
    "nimbo awake on --until 18:30 --display --": set(),
    "nimbo awake off ": set(),
    "nimbo awake extend ": LENGTHS,
    "nimbo awake extend 1h ": set(),
    "nimbo awake status --": REPORTS,
    "nimbo awake status --json --": {"--short", "--watch"},
    "nimbo awake run --": {"--display"},
    "nimbo awake while --display --": set(),
    "nimbo usage --": REPORTS,
    "nimbo memory --sh": {"--short"},
    "nimbo processes -": {"-n", *REPORTS},
    "nimbo processes -n ": set(),
    "nimbo processes -n 3 --watch -": {"--json", "--short"},
    "nimbo open ": {"usage", "resources", "awake", "settings"},
    "nimbo open usage ": set(),
    "nimbo quit ": set(),
}
# Of the system there is more: these are among it, and these are not.
AMONG = {
    "nimbo awake run mkdi": ({"mkdir"}, {"--display"}),
    "nimbo awake run -- mkdi": ({"mkdir"}, set()),
    "nimbo awake run --display mkdi": ({"mkdir"}, set()),
    "nimbo awake run mkdir --": ({"--parents"}, {"--display"}),
    "nimbo awake run --display -- mkdir --": ({"--parents"}, {"--display"}),
    "nimbo awake while PID": ({"PID"}, {"mkdir"}),  # of a process
    "nimbo awake while --display 1 PID": ({"PID"}, {"--display"}),
}

BASH = """
. /usr/share/bash-completion/bash_completion
compopt() { :; }  # is for shells that complete on a terminal
_completion_loader nimbo
function=$(complete -p nimbo) function=${function#*-F } function=${function%% *}
COMP_LINE=$1
read -ra COMP_WORDS <<<"$COMP_LINE"
[[ $COMP_LINE != *" " ]] || COMP_WORDS+=("")
COMP_POINT=${#COMP_LINE} COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
"$function" nimbo "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
echo "${COMPREPLY[@]}"
"""
FISH = r"complete -C $argv[1] | string replace -r '\t.*' ''"
# All that is added counts, but for calls that only sort.
ZSH = """
autoload -Uz compinit && compinit -u -D
compadd() {
  if [[ ${@[1,(i)(-|--)]} != *-[DOA]* ]]; then
    local -a added
    builtin compadd -O added "$@"
    offered+=($added)
  fi
  builtin compadd "$@"
}
capture() { local -a offered; _main_complete; print -r -- "$offered" >&$answers }
zle -C capture list-choices capture
bindkey '^I' capture
bindkey '^U' kill-whole-line
zle-line-init() { print >&$answers }
zle -N zle-line-init
"""


class CompletionTest(unittest.TestCase):
    """Each shell finds the file by itself."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="nimbo-completions-")
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.env = {
            "HOME": folder.name,
            "XDG_DATA_HOME": folder.name,
            "PATH": f"{folder.name}/bin:/usr/bin:/bin",
            "LC_ALL": "C.UTF-8",
            "TERM": "vt100",
        }
        self.put("/bin/true", "bin/nimbo")  # fish completes no command that is not there

    def put(self, file, place):
        path = self.home / place
        path.parent.mkdir(parents=True)
        path.symlink_to(FILES / file)

    def check(self, ask, pid):
        """`ask` gives all that is offered for a line."""

        def offered(line):
            return {word.replace(str(pid), "PID") for word in ask(line.replace("PID", str(pid))).split()}

        for line, words in OFFERED.items():
            with self.subTest(line):
                self.assertEqual(offered(line), words)
        for line, (included, others) in AMONG.items():
            with self.subTest(line):
                words = offered(line)
                self.assertLessEqual(included, words)
                self.assertEqual(words & others, set())

    def run_shell(self, *words):
        return subprocess.run(words, env=self.env, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60).stdout

    def test_bash(self):
        self.put("nimbo.bash", "bash-completion/completions/nimbo")
        self.check(lambda line: self.run_shell("bash", "--norc", "-c", BASH, "bash", line), os.getpid())

    def test_fish(self):
        self.put("nimbo.fish", "fish/vendor_completions.d/nimbo.fish")
        self.check(lambda line: self.run_shell("fish", "-c", FISH, line), os.getpid())

    def test_zsh(self):
        self.put("_nimbo", "zsh/vendor-completions/_nimbo")
        (self.home / ".zshrc").write_text(f"fpath=({self.home}/zsh/vendor-completions $fpath)\n{ZSH}")
        read, write = os.pipe()
        os.set_inheritable(write, True)
        pid, terminal = pty.fork()
        if pid == 0:
            os.execvpe("zsh", ["zsh", "-d", "-i"], {**self.env, "answers": str(write)})
        os.close(write)
        threading.Thread(target=self.drain, args=[terminal], daemon=True).start()
        self.addCleanup(os.waitpid, pid, 0)
        self.addCleanup(os.kill, pid, signal.SIGHUP)
        answers = os.fdopen(read, "rb", buffering=0)
        self.addCleanup(answers.close)

        def ask(line):
            os.write(terminal, b"\x15" + line.encode() + b"\t" if line else b"")
            self.assertTrue(select.select([answers], [], [], 60)[0], f"no answer to “{line}”")
            return answers.readline().decode()

        ask("")  # what is typed before the first prompt would be lost
        self.check(ask, pid)  # only processes of its terminal are offered

    @staticmethod
    def drain(terminal):
        with contextlib.suppress(OSError):  # when the other end is gone
            while os.read(terminal, 4096):
                pass


if __name__ == "__main__":
    unittest.main()
