# SPDX-License-Identifier: MIT
import argparse
import random
import signal
import sys
import time

from runs import Runs, parsed
from world import SCENARIOS


def main():
    parser = argparse.ArgumentParser(prog="scripts/soak", description="Makes every system call fail, one after the other.")
    parser.add_argument("--hours", type=float, help="goes on with pairs of faults until then; stops then in any case")
    parser.add_argument("--scenario", action="append", choices=list(SCENARIOS), help="one or more; all when none is named")
    parser.add_argument("--every", type=int, default=1, metavar="N", help="tries one fault in N")
    parser.add_argument("--first", type=int, default=0, metavar="N", help="begins with that one")
    parser.add_argument("--only", action="append", metavar="CASE", help="as a finding names it")
    parser.add_argument("--parts", action="store_true", help="reads and writes do only a part of what is asked")
    parser.add_argument("--rounds", type=int, metavar="N", help="parts of the world vanish and come back, so often")
    parser.add_argument("--seed", type=int, default=random.randrange(10**6), help="of the rounds; a finding names it")
    arguments = parser.parse_args()
    names = arguments.scenario or list(SCENARIOS)
    deadline = time.monotonic() + arguments.hours * 3600 if arguments.hours else None
    over = lambda: deadline is not None and time.monotonic() >= deadline  # noqa: E731

    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, signal.default_int_handler)
    runs = Runs(lambda text: print(text, flush=True))
    try:
        if arguments.only:
            for words in arguments.only:
                name, faults = parsed(words)
                runs.case(name, *faults)
        elif arguments.parts:
            runs.in_parts(names)
        elif arguments.rounds:
            runs.tell(f"seed {arguments.seed}")
            runs.vanish(arguments.rounds, arguments.seed, over)
        else:
            runs.sweep(names, arguments.every, arguments.first, over)
            while deadline is not None and not over():
                runs.pair(names)
    except KeyboardInterrupt:
        pass
    finally:
        runs.close()
        for name, number in runs.injected.items():
            print(f"{name}: {number} faults, of {len(runs.cases.get(name, ()))} single ones")
        print(f"{runs.rounds} rounds, {len(runs.injected)} scenarios, {sum(runs.injected.values())} faults, {len(runs.findings)} findings")
    return 1 if runs.findings else 0


sys.exit(main())
