"""The work of mutate.sh: mutate.py COPY SEED COUNT SOURCE..."""

import random
import re
import resource
import subprocess
import sys
import time

SWAPS = {
    "==": ("!=",), "!=": ("==",), "<": ("<=", ">"), "<=": ("<", ">="), ">": (">=", "<"),
    ">=": (">", "<="), "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",),
    "/": ("*",), "%": ("/",), "&": ("|",), "|": ("&",), "<<": (">>",), ">>": ("<<",),
    "+=": ("-=",), "-=": ("+=",), "++": ("--",), "--": ("++",), "true": ("false",),
    "false": ("true",), "min": ("max",), "max": ("min",), "front": ("back",), "back": ("front",),
}
# Operators of two operands stand between blanks, which tells them from signs and brackets.
TOKEN = re.compile(r"(?<= )(?:[=!<>]=|&&|\|\||<<|>>|[-+]=|[-+*/%&|<>])(?= )|\+\+|--"
                   r"|\b(?:true|false|min|max|front|back)\b(?=\(|[^(\w]*$|[,;)])")
NUMBER = re.compile(r"(?<![\w.'])(?:0x[0-9A-Fa-f]+|\d+)(?=[uUlL]*(?![\w.']))")
CONDITION = re.compile(r"\b(?:if|while) \((?=.*\)(?: \{| \w.*;)$)|(?<=return )(?=[^;]* [=!<>]=? [^;]*;$)")
STATEMENT = re.compile(r"^\s+(?:[\w.:*\[\]()]|->)+(?:\(.*\)| [-+|&]?= .*|\+\+|--)?;$|^\s+[-+]{2}.*;$")
NO_STATEMENT = re.compile(r"^\s+(?:return|using|friend|\w+ = default)\b")
SKIPPED = re.compile(r"^\s*(?:#|//|static_assert|using|namespace|template|$)")
LITERAL = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'|//.*$')


def closing(text, at):
    depth = 0
    for end in range(at, len(text)):
        depth += (text[end] == "(") - (text[end] == ")")
        if depth == 0:
            return end
    return -1


def mutants(line):
    """What may become of a line."""
    code = LITERAL.sub(lambda found: "_" * len(found[0]), line)
    if SKIPPED.match(code):
        return
    for found in TOKEN.finditer(code):
        for other in SWAPS[found[0]]:
            yield line[: found.start()] + other + line[found.end() :]
    for found in NUMBER.finditer(code):
        for other in {int(found[0], 0) + 1, max(int(found[0], 0) - 1, 0)} - {int(found[0], 0)}:
            yield line[: found.start()] + str(other) + line[found.end() :]
    for found in CONDITION.finditer(code):
        end = closing(code, found.end() - 1) if found[0] else code.index(";", found.end())
        if end > 0:
            inner = line[found.end() : end]
            yield line[: found.end()] + f"!({inner})" + line[end:]
    if STATEMENT.match(code) and not NO_STATEMENT.match(code):
        yield re.match(r"\s*", line)[0] + ";"


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))


class Tests:
    """The tests of the copy; those that are fast and find most come first."""

    def __init__(self, build):
        tests, memory = f"{build}/tests/vornscript_tests", f"{build}/tests/vornscript_memory_tests"
        self.ninja = ["ninja", "-C", build, "-j2", "vornscript_tests", "vornscript_memory_tests"]
        self.runs = [[tests, "--gtest_filter=scripts*"], [tests, "--gtest_filter=-scripts*"], [memory]]
        self.seconds = [900] * len(self.runs)
        if not self.compile():
            sys.exit("The copy does not compile.")
        for place, run in enumerate(self.runs):
            start = time.monotonic()
            if not self.passes(run, self.seconds[place]):
                sys.exit(f"Fails without any change: {' '.join(run)}")
            self.seconds[place] = 10 + 10 * (time.monotonic() - start)

    def compile(self):
        return subprocess.run(self.ninja, capture_output=True).returncode == 0

    def notice(self):
        return not all(map(self.passes, self.runs, self.seconds))

    def passes(self, run, seconds):
        try:
            return subprocess.run([*run, "--gtest_fail_fast"], timeout=seconds, capture_output=True,
                                  preexec_fn=limit_memory).returncode == 0
        except subprocess.TimeoutExpired:
            return False


def main(copy, seed, count, *sources):
    tests = Tests(f"{copy}/build")
    texts = {source: open(source).read().split("\n") for source in sources}
    places = [(source, number, mutant) for source, lines in texts.items()
              for number, line in enumerate(lines) for mutant in mutants(line)]
    random.Random(seed).shuffle(places)
    tried = survived = 0
    for source, number, mutant in places:
        if tried == int(count):
            break
        lines = texts[source].copy()
        lines[number] = mutant
        with open(f"{copy}/source/{source}", "w") as file:
            file.write("\n".join(lines))
        if tests.compile():
            tried += 1
            if not tests.notice():
                survived += 1
                print(f"{source}:{number + 1} ({tried})\n-{texts[source][number]}\n+{mutant}", flush=True)
        with open(f"{copy}/source/{source}", "w") as file:
            file.write("\n".join(texts[source]))
    print(f"{survived} of {tried} changes survive.")


main(*sys.argv[1:])
