#!/usr/bin/env python3
"""Runs the tests with small faults in the core: a random sample, compiled into one build and enabled one at a time.

Ends with 1 where at least one in twenty of those that count goes unseen by every test.
"""
import argparse
import contextlib
import json
import os
import pickle
import sys
import time
from collections import Counter
from concurrent.futures import ProcessPoolExecutor, ThreadPoolExecutor
from pathlib import Path

import equivalents
import tree
import trials
from mutants import drawn_order

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "build/mutate"
LIMIT = 5  # percent, of which less may survive
LONGEST = 2 * 3600  # seconds
FINDERS = ("candidates.py", "finder.py", "mutants.py", "source.py")  # what finds mutants
UNSEEN = ("survived", "not covered")


def say(*words):
    print("mutate:", *words, flush=True)


# -- the sample

def compiler_arguments(root):
    resources = sorted(Path("/usr/lib").glob("llvm-*/lib/clang/*/include/stddef.h"))
    if not resources:
        raise ValueError("clang's own headers are missing: the package libclang-common-14-dev has them")
    return ["-std=c++20", "-x", "c++", f"-I{root}", f"-I{root / 'include'}", "-DNDEBUG", "-w", "-resource-dir",
            str(resources[-1].parents[1]), "-DZEL_VERSION_NUMBER=0.0", '-DZEL_VERSION_STRING=""']


def mutants_of(unit):
    import candidates  # libclang is loaded in the processes that use it alone
    return candidates.find(candidates.parse(unit, compiler_arguments(ROOT)), ROOT, tree.wanted(ROOT))


def all_mutants(jobs, fingerprint):
    """Cached next to the build, since parsing all sources takes a minute or two."""
    kept, state = FOLDER / "all.pickle", (fingerprint, *((tree.TOOL / name).read_text() for name in FINDERS))
    with contextlib.suppress(OSError, EOFError, pickle.UnpicklingError):
        known, mutants = pickle.loads(kept.read_bytes())
        if known == state:
            return mutants
    mutants = read_mutants(jobs)
    kept.write_bytes(pickle.dumps((state, mutants)))
    return mutants


def read_mutants(jobs):
    files = {}
    with ProcessPoolExecutor(jobs) as pool:
        for found in pool.map(mutants_of, tree.units(ROOT)):
            for name, mutants in found.items():
                files.setdefault(name, mutants)
    return [one for name in sorted(files) for one in files[name]]


class Sample:
    """The first COUNT that compile, in the drawn order. A mutant's number is its position in that order."""

    def __init__(self, mutants, count, seed):
        self.waiting = list(enumerate(drawn_order(mutants, seed), 1))
        self.of = len(mutants)
        self.taken = []
        self.refill(count)

    def refill(self, count):
        more = count - len(self.taken)
        self.taken += self.waiting[:more]
        self.waiting = self.waiting[more:]

    def leave_out(self, refused):
        count = len(self.taken)
        self.taken = [one for one in self.taken if one not in refused]
        self.refill(count)

    def highest(self):
        return max((number for number, _ in self.taken), default=0)


# -- the build

def build(sample, fingerprint, jobs):
    copy, folder, programs = FOLDER / "src", FOLDER / "build", tree.test_programs(ROOT)
    uncompilable = FOLDER / "uncompilable.json"
    known = set(json.loads(uncompilable.read_text())) if uncompilable.exists() else set()
    sample.leave_out([one for one in sample.waiting + sample.taken if one[1].identity() in known])
    tree.write_copy(ROOT, copy, sample.taken)
    if tree.fingerprint(ROOT) != fingerprint:
        raise ValueError("the project was changed while it was read; the same command begins again")
    tree.configure(copy, folder, ROOT / "build/cache")
    while (said := tree.compile_programs(folder, programs, jobs)) is not None:
        refused = tree.refused(said, sample.taken)
        if not refused:
            raise ValueError(f"the mutated project does not build\n{said[-8000:]}")
        say(f"{len(refused)} do not compile; others take their places")
        known |= {one.identity() for _, one in refused}
        uncompilable.write_text(json.dumps(sorted(known)))
        sample.leave_out(refused)
        tree.write_copy(ROOT, copy, sample.taken)
    return [trials.Program(folder / "bin" / name, of) for name, of in programs.items()]


# -- the trials

class Results:
    """The result of each mutant, written to disk at once. Results of another state of the project are dropped."""

    def __init__(self, path, fingerprint):
        self.path, self.known = path, {}
        lines = path.read_text().split("\n") if path.exists() else []
        # An incomplete last line is dropped.
        whole = lines[1:-1] if lines and lines[0] == fingerprint else []
        for line in whole:
            entry = json.loads(line)
            self.known[entry["mutant"]] = entry
        path.write_text("".join(f"{line}\n" for line in [fingerprint, *whole]))

    def add(self, mutant, verdict, program):
        entry = {"mutant": mutant.identity(), "verdict": verdict, "program": program}
        self.known[mutant.identity()] = entry
        with self.path.open("a") as file:
            file.write(json.dumps(entry) + "\n")

    def verdict(self, mutant):
        return self.known[mutant.identity()]["verdict"] if mutant.identity() in self.known else None


def environment():
    media = os.environ.get("ZEL_TEST_MEDIA", str(ROOT.parent / "shared/data"))
    return {"XDG_CACHE_HOME": str(ROOT / "build/cache"), "ZEL_TEST_MEDIA": media}


def learn(programs, sample):
    for program in programs:
        said = trials.learn(program, sample.highest(), environment())
        if said is not None:
            raise ValueError(f"{program.name} fails without any mutant\n{said}")
        say(f"{program.name}: {program.seconds:.1f} s, reaches {len(program.reached)}")


def try_all(sample, equal, programs, results, jobs):
    """Returns False when the time was over."""
    started, done = time.monotonic(), Counter()
    todo = [(number, one) for number, one in sample.taken if one not in equal and results.verdict(one) is None]

    def try_one(entry):
        number, mutant = entry
        if time.monotonic() - started > LONGEST:
            return False
        verdict, program = trials.verdict(programs, number, mutant.file.split("/")[0], environment())
        results.add(mutant, verdict, program)
        done["all"] += 1
        say(f"{done['all']} of {len(todo)}: {verdict}{' by ' + program if program else ''}: {number}: {mutant.told()}")
        return True

    with ThreadPoolExecutor(jobs) as pool:
        return all(list(pool.map(try_one, todo)))


def report(sample, equal, stale, results, seed):
    """Prints the undetected mutants, and the summary. Returns the exit status."""
    counted = [one for _, one in sample.taken if one not in equal]
    count = Counter(results.verdict(one) for one in counted)
    unseen = sorted((one for one in counted if results.verdict(one) in UNSEEN), key=lambda one: (one.file, one.line))
    numbers = {one: number for number, one in sample.taken}
    for one in unseen:
        print(f"{results.verdict(one)}: {numbers[one]}: {one.told()}")
    (FOLDER / "unseen.txt").write_text("\n".join(map(equivalents.entry_of, unseen)))
    for entry in stale:
        print(f"{tree.KEPT_LIST}: nothing is like this any more: {entry.file}: {entry.text}: {entry.operator}: {entry.change}")
    share = 100 * len(unseen) / len(counted) if counted else 0
    say(f"seed {seed}: {len(sample.taken)} of {sample.of} mutants, of which {len(equal)} are listed as equivalent; of the other "
        f"{len(counted)} {count['killed']} were killed, {count['timed out']} timed out, {count['survived']} survived, and "
        f"{count['not covered']} were reached by no test: {share:.1f} % unseen, less than {LIMIT} % may be")
    return 1 if share >= LIMIT else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("count", type=int, nargs="?", default=300)
    parser.add_argument("seed", type=int, nargs="?", default=1)
    arguments = parser.parse_args()
    FOLDER.mkdir(parents=True, exist_ok=True)
    fingerprint = tree.fingerprint(ROOT)
    sample = Sample(all_mutants(arguments.jobs, fingerprint), arguments.count, arguments.seed)
    entries = equivalents.parse((ROOT / tree.KEPT_LIST).read_text())
    if arguments.list:
        for number, one in sample.taken:
            print(f"{number}: {one.told()}")
        return 0
    programs = build(sample, fingerprint, arguments.jobs)
    _, stale = equivalents.matching(entries, [one for _, one in sample.taken + sample.waiting])
    equal, _ = equivalents.matching(entries, [one for _, one in sample.taken])
    learn(programs, sample)
    results = Results(FOLDER / "results.jsonl", fingerprint)
    if not try_all(sample, equal, programs, results, arguments.jobs):
        say("the time is over; the same command goes on from here")
        return 1
    return report(sample, equal, stale, results, arguments.seed)


if __name__ == "__main__":
    try:
        sys.exit(main())
    except ValueError as fault:
        sys.exit(f"mutate: {fault}")
