#!/usr/bin/env python3
"""Changes one operator, comparison or constant of the engine at a time and tells which changes no test notices.

    mutate.py [OPTION...] list    prints every mutant
    mutate.py [OPTION...] run     builds and tests mutants; exit status 1: an unlisted one survived

The project is copied into the build folder and changed there alone. A mutant is killed by the first stage that fails
or uses more than ten times the processor time that it takes without the change. One whose library is the same to the
byte is no change and is not counted; one that does not compile is not counted either.

The mutants of must_run.txt come first, then the others in an order that the seed decides. Those of equivalent.txt,
each with the reason why no test can notice it, are not run. Both files hold blocks of lines, with a blank line in
between, in the form in which survivors are printed:

    qzoci/limbs/wide.h, shifted
    - return high_ << (64 - bits);
    + return high_ >> (64 - bits);
    Why.

In must_run.txt only the first two of these lines stand: every mutant of the line is meant.
"""

import argparse
import dataclasses
import itertools
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent

# What is never code, and the tokens of code. Binary operators have spaces around them, as the formatter leaves
# them: thus angle brackets, references, pointers and signs are told apart.
SKIPPED = r'//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n]*\\\n)*[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\''
TOKEN = re.compile(
    rf"(?P<skipped>{SKIPPED})"
    r"|(?<= )(?P<binary>[=!<>]=|<<|>>|&&|\|\||[-+*/%&|^]=|[-+*/%&|^<>])(?=\s)"
    r"|(?P<step>\+\+|--)"
    r"|(?P<sign>(?<=[(\[{,=?:<>+\-*/&|!] )-(?=\w)|(?<=[(\[{])-(?=\w)|(?<=return )-(?=\w))"
    r"|(?P<negation>!(?=[\w(]))"
    r"|(?P<integer>\b(?:0x[0-9a-fA-F']+|[0-9][0-9']*)(?=[uUlL]*\b)(?![.eE]))"
    r"|(?P<word>[A-Za-z_]\w*)",
    re.MULTILINE | re.DOTALL,
)
REPLACEMENTS = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"], "<<": [">>"], ">>": ["<<"],
    "&": ["|"], "|": ["&"], "^": ["|"], "&&": ["||"], "||": ["&&"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["/="], "|=": ["&="], "&=": ["|="], "^=": ["|="],
    "++": ["--"], "--": ["++"], "true": ["false"], "false": ["true"], "min": ["max"], "max": ["min"],
}  # fmt: skip
# The interfaces hold declarations; to change their constants would build every test anew.
INTERFACES = re.compile(r"^qzoci/(oci_types|oci_log|oci_calc_number|limbs/limbs)\.h$")
# Lines that say what is declared, not what is done.
DECLARATIVE = re.compile(r"\s*(template\b|using\b|static_assert\b|extern\b|\[\[|enum\b|namespace\b|asm\b)")
DEFINITION = re.compile(r"(?!namespace|using|extern \"C\" \{|public|private)[A-Za-z_\[].*")
MEMBER_FUNCTION = re.compile(r"    (?! |(?:if|for|while|switch|else|do|return)\b)[\w:<>&*~ ]+\(.*\)[\w ]*\{$")
KILLED, SURVIVED, SAME, INVALID = "killed", "survived", "same code", "does not compile"


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    function: str
    line: int
    offset: int
    old: str
    new: str
    original: str
    mutated: str

    def key(self):
        return (self.file, self.function, self.original, self.mutated)

    def __str__(self):
        return f"{self.file}, {self.function}\n- {self.original}\n+ {self.mutated}"


def replacements(match):
    kind, token = match.lastgroup, match.group()
    if kind == "integer":
        value = int(token.replace("'", ""), 0)
        return [str(value + 1)] + ([str(value - 1)] if value > 0 else [])
    if kind in ("sign", "negation"):
        return [""]
    return REPLACEMENTS.get(token, [])


def name_of_definition(line):
    """Of the line that begins it: the function, or the type or constant."""
    function = re.search(r"([~\w]+|operator\S+)\(", re.sub(r"\[\[.*?\]\]|__attribute__\(\(.*?\)\)", "", line))
    if function:
        return function.group(1)
    name = re.search(r"(?:struct|class|union)\s+(\w+)|(\w+)(?:\[\w*\])*\s*(?:=|\{|;)", line)
    return next(filter(None, name.groups())) if name else None


def mutants_of(file, text):
    lines = text.split("\n")
    starts = list(itertools.accumulate((len(line) + 1 for line in lines), initial=0))
    functions, function = [], "-"
    for line in lines:
        if DEFINITION.match(line) or MEMBER_FUNCTION.match(line):
            function = name_of_definition(line) or function
        functions.append(function)
    number = 0
    for match in TOKEN.finditer(text):
        if match.lastgroup == "skipped":
            continue
        offset = match.start()
        while starts[number + 1] <= offset:
            number += 1
        line = lines[number]
        if DECLARATIVE.match(line):
            continue
        at = offset - starts[number]
        for new in replacements(match):
            mutated = line[:at] + new + line[at + len(match.group()) :]
            yield Mutant(
                file, functions[number], number + 1, offset, match.group(), new, line.strip(), mutated.strip()
            )


def read_blocks(path):
    if not path.exists():
        return []
    blocks = [block.splitlines() for block in re.split(r"\n\s*\n", path.read_text()) if block.strip()]
    return [[line for line in block if not line.startswith("#")] for block in blocks]


def listed(path, mutants, length):
    """The keys, of this length, that a file names; each must be that of a mutant, and have a reason if it is whole."""
    keys = set()
    known = {mutant.key()[:length] for mutant in mutants}
    for block in filter(None, read_blocks(path)):
        file, _, function = block[0].partition(", ")
        key = (file, function, *(line[2:].strip() for line in block[1 : length - 1]))
        if key not in known:
            sys.exit(f"{path}: no such mutant:\n" + "\n".join(block))
        if length == 4 and len(block) < 4:
            sys.exit(f"{path}: no reason for\n" + "\n".join(block))
        keys.add(key)
    return keys


class Project:
    """A copy of the sources that is built and tested."""

    def __init__(self, options):
        self.root = options.root
        self.source = options.build / "source"
        self.build = options.build / "build"
        self.library = options.library
        self.stages = [shlex.split(line) for line in (options.lists / "stages.txt").read_text().splitlines()]
        self.stages = [stage for stage in self.stages if stage and not stage[0].startswith("#")]
        self.limits = {}
        self.environment = dict(os.environ)

    def files(self):
        paths = (path.relative_to(self.root).as_posix() for path in self.root.glob("qzoci/**/*.*"))
        return sorted(path for path in paths if path.endswith((".cpp", ".h")) and not INTERFACES.match(path))

    def prepare(self):
        """Copies what has changed, configures, and takes the library and the time of each stage without a change."""
        for path in sorted(self.root.rglob("*")):
            relative = path.relative_to(self.root)
            if relative.parts[0] in (".git", "build") or path.is_dir():
                continue
            target = self.source / relative
            if not target.exists() or target.read_bytes() != path.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(path, target)
        configure = ["cmake", "-S", self.source, "-B", self.build, "-G", "Ninja", "-DQZOCI_DEVELOPER_MODE=ON"]
        # Tests are not optimised in this configuration. Debug information would tell changes of no consequence apart.
        configure += ["-DCMAKE_BUILD_TYPE=RelWithDebInfo", "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1"]
        # No warning stops a mutant: an unused variable or a comparison that is always true is no test's success.
        configure += ["-DCMAKE_CXX_FLAGS=-w"]
        configure += ["-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
        if shutil.which("ccache"):
            configure += ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"]
        subprocess.run(configure, check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["ninja", "-C", self.build, "-j1", self.library[0]], check=True, stdout=subprocess.DEVNULL)
        self.original_library = self.library_bytes()
        for stage in self.stages:
            before = resource.getrusage(resource.RUSAGE_CHILDREN)
            if not self.make(stage[0]) or not self.passes(stage, None):
                sys.exit(f"mutate: fails without a change: {shlex.join(stage)}")
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            self.limits[tuple(stage)] = 2 + int(10 * (after.ru_utime - before.ru_utime))
        # Mutants would only fill the cache; the sources as they are come back out of it.
        self.environment["CCACHE_READONLY"] = "1"

    def library_bytes(self):
        return (self.build / self.library[1]).read_bytes()

    def make(self, target):
        command = ["ninja", "-C", self.build, "-j1", target]
        return subprocess.run(command, env=self.environment, capture_output=True).returncode == 0

    def passes(self, stage, seconds):
        """Processor time, as the wall clock tells how busy the machine is."""

        def limit():
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            if seconds is not None:
                resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))

        program = [str(self.build / stage[1])] + [argument.replace("@", str(self.source)) for argument in stage[2:]]
        run = subprocess.run(program, preexec_fn=limit, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return run.returncode == 0

    def outcome(self, mutant):
        path = self.source / mutant.file
        text = path.read_text()
        path.write_text(text[: mutant.offset] + mutant.new + text[mutant.offset + len(mutant.old) :])
        try:
            if not self.make(self.library[0]):
                return INVALID, ""
            if self.library_bytes() == self.original_library:
                return SAME, ""
            for stage in self.stages:
                if not self.make(stage[0]):
                    return INVALID, ""
                if not self.passes(stage, self.limits[tuple(stage)]):
                    return KILLED, stage[1]
            return SURVIVED, ""
        finally:
            path.write_text(text)


def run(project, chosen, minutes):
    project.prepare()
    end = time.monotonic() + 60 * minutes
    counts, killers, survivors = {}, {}, []
    for mutant in chosen:
        if time.monotonic() > end:
            break
        outcome, killer = project.outcome(mutant)
        counts[outcome] = counts.get(outcome, 0) + 1
        if killer:
            killers[killer] = killers.get(killer, 0) + 1
        print(f"{outcome} {killer}: {mutant.file}:{mutant.line}: {mutant.mutated}", file=sys.stderr, flush=True)
        if outcome == SURVIVED:
            survivors.append(mutant)
            print(f"{mutant}\n", flush=True)
    print(", ".join(f"{counts.get(outcome, 0)} {outcome}" for outcome in (KILLED, SURVIVED, SAME, INVALID)))
    for killer, kills in sorted(killers.items(), key=lambda item: -item[1]):
        print(f"{kills:5d} by {killer}")
    return 1 if survivors else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("mode", choices=["list", "run"])
    parser.add_argument("--root", type=pathlib.Path, default=HERE.parent.parent, help="the project")
    parser.add_argument("--build", type=pathlib.Path, default=HERE.parent.parent / "build/mutate")
    parser.add_argument("--lists", type=pathlib.Path, default=HERE, help="folder of stages.txt and the lists")
    parser.add_argument("--library", nargs=2, default=["qzoci_calc_number", "qzoci/libqzoci_calc_number.a"])
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--files", default=".", help="only files whose path has a match of this expression")
    parser.add_argument("--only", type=pathlib.Path, help="only the mutants in this file, in the form of survivors")
    options = parser.parse_args()

    project = Project(options)
    everything = [
        mutant for file in project.files() for mutant in mutants_of(file, (options.root / file).read_text())
    ]
    equivalent = listed(options.lists / "equivalent.txt", everything, 4)
    must_run = listed(options.lists / "must_run.txt", everything, 3)
    candidates = [mutant for mutant in everything if re.search(options.files, mutant.file)]
    candidates = [mutant for mutant in candidates if mutant.key() not in equivalent]
    if options.only:
        only = {tuple(block[:3]) for block in read_blocks(options.only)}
        candidates = [mutant for mutant in candidates if tuple(str(mutant).split("\n")) in only]
    random.Random(options.seed).shuffle(candidates)
    candidates.sort(key=lambda mutant: mutant.key()[:3] not in must_run)
    if options.mode == "list":
        for mutant in candidates:
            print(f"{mutant}\n")
        print(f"{len(candidates)} mutants, {len(equivalent)} more listed as equivalent")
        return 0
    return run(project, candidates, options.minutes)


if __name__ == "__main__":
    sys.exit(main())
