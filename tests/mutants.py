# SPDX-License-Identifier: MIT
"""Changes the logic in one small place after the other, and tells which of these mutants no test notices."""

import argparse
import pathlib
import random
import re
import subprocess
import sys
import threading

ROOT = pathlib.Path(__file__).resolve().parents[1]
# Which test programs have to notice, the quick ones first.
ROOMS = {
    "awake": ["awake_test"],
    "settings": ["settings_test"],
    "system": ["system_test"],
    "usage": ["usage_test", "usage_codex_test", "usage_claude_test"],
}
OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=",
}  # fmt: skip
SECONDS = 120  # for one test program, which takes at most a third


def mutants(file):
    """Every place that can be changed: line, from and to which column, and what stands there then."""
    for number, line in enumerate(file.read_text().splitlines()):
        code = re.sub(r'"(?:[^"\\]|\\.)*"', lambda text: "_" * len(text[0]), line.partition("//")[0])
        if re.match(r"\s*(#|using|namespace|struct|class|template|static_assert)", code):
            continue
        # The formatter puts spaces around operators, and around nothing else that looks like one.
        for found in re.finditer(r"(?<= )(<=|>=|==|!=|&&|\|\||\+=|-=|[<>+*/-])(?= )", code):
            yield number, *found.span(), OPERATORS[found[0]]
        for found in re.finditer(r"\b(true|false)\b", code):
            yield number, *found.span(), "false" if found[0] == "true" else "true"
        for found in re.finditer(r"(?<=[( ])!(?=[\w(*])", code):
            yield number, *found.span(), ""
        for found in re.finditer(r"(?<![\w.'])\d+(?![\w.'])", code):
            yield number, *found.span(), str(int(found[0]) + 1)
        if found := re.match(r"\s*(?:\} else )?if \((?=[\w(*])", code):
            yield number, found.end(), found.end(), "!"  # of the first operand
        if found := re.fullmatch(r"\s+([\w.\->:]+(\[.*\])? [+-]?= .*|[\w.\->:]+\(.*\)|\+\+.*|--.*);", code):
            yield number, *found.span(1), ""


class Tree:
    """Sources and a build of their own, in which one file at a time is another."""

    def __init__(self, name):
        self.folder = ROOT / "build" / name
        self.run("git", "worktree", "add", "--detach", str(self.folder), "HEAD", cwd=ROOT, check=True)
        options = ["-DCMAKE_UNITY_BUILD=OFF", "-DCMAKE_CXX_FLAGS=-w"]
        self.run("cmake", "--preset", "dev", *options, check=True)

    def close(self):
        self.run("git", "worktree", "remove", "--force", str(self.folder), cwd=ROOT)

    def run(self, *command, cwd=None, check=False):
        done = subprocess.run(command, cwd=cwd or self.folder, capture_output=True, text=True)
        if check and done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: {done.stdout}{done.stderr}")
        return done.returncode == 0

    def builds(self, test):
        return self.run("cmake", "--build", "--preset", "dev", "--target", test)

    def passes(self, test):
        try:
            program = self.folder / "build" / "dev" / "bin" / test
            command = [program, "--gtest_brief=1", "--gtest_fail_fast"]
            quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
            return subprocess.run(command, cwd=self.folder, timeout=SECONDS, **quiet).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def judge(self, file, mutant, tests):
        """Whether a test notices; nothing is known of what does not compile."""
        number, begin, end, text = mutant
        place = self.folder / file
        whole = place.read_text()
        lines = whole.splitlines(keepends=True)
        lines[number] = lines[number][:begin] + text + lines[number][end:]
        place.write_text("".join(lines))
        try:
            for test in tests:
                if not self.builds(test):
                    return None
                if not self.passes(test):
                    return True
            return False
        finally:
            place.write_text(whole)


def tests_of(room, file):
    """Of a room with folders, those of the file's folder, then all others."""
    own = "_".join(("", *file.parts[2:-1]))
    return sorted(ROOMS[room], key=lambda test: test != f"{room}{own}_test")


def main():
    parser = argparse.ArgumentParser(prog="scripts/mutants", description=__doc__)
    parser.add_argument("room", nargs="*", help=f"of {', '.join(ROOMS)}; all when none is named")
    parser.add_argument("--sample", type=int, metavar="N", help="tries only so many of each room")
    parser.add_argument("--seed", type=int, default=1, help="of the sample")
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    status = 0
    trees = [Tree(f"mutants-{job}") for job in range(arguments.jobs)]
    try:
        for room in arguments.room or ROOMS:
            files = sorted(path.relative_to(ROOT) for path in (ROOT / "src" / room).rglob("*.cpp"))
            work = [(file, mutant) for file in files for mutant in mutants(ROOT / file)]
            there = len(work)
            random.Random(arguments.seed).shuffle(work)
            work = work[: arguments.sample]
            noticed, survivors = [], []

            def labour(tree):
                while work:
                    file, mutant = work.pop()
                    killed = tree.judge(file, mutant, tests_of(room, file))
                    if killed is not None:
                        (noticed if killed else survivors).append((file, mutant))

            for tree in trees:
                for test in ROOMS[room]:
                    if not (tree.builds(test) and tree.passes(test)):
                        raise RuntimeError(f"{test} fails without a mutant")
            threads = [threading.Thread(target=labour, args=(tree,)) for tree in trees]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            for file, (number, begin, end, text) in sorted(survivors):
                line = (ROOT / file).read_text().splitlines()[number]
                print(f"{file}:{number + 1}: {line[:begin].lstrip()}[{line[begin:end]} -> {text}]{line[end:]}")
            tried = len(noticed) + len(survivors)
            share = 100 * len(noticed) / tried if tried else 0
            print(f"{room}: {len(noticed)} of {tried} mutants noticed, {share:.0f} %; {there} are possible", flush=True)
            status |= share < 85
    finally:
        for tree in trees:
            tree.close()
    return status


sys.exit(main())
