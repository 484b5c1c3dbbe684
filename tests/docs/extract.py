"""Takes the C++ blocks out of the documents: whole programs as they are, all others into one source.

Usage: extract.py FRAGMENTS DOCUMENT PROGRAM [DOCUMENT PROGRAM]...
"""
import pathlib
import re
import sys

fragments = '#include "tests/docs/around_fragments.hpp"\n'
count = 0
for document, program in zip(sys.argv[2::2], sys.argv[3::2]):
    text = pathlib.Path(document).read_text()
    for block in re.findall(r"```cpp\n(.*?)```", text, re.DOTALL):
        if "int main()" in block:
            pathlib.Path(program).write_text(block)
        elif not block.startswith("#include"):
            count += 1
            at_namespace = re.match(r"class |\S+ \w+\([^;]*\) \{\n", block)
            scope = "namespace fragment_{} {{" if at_namespace else "FRAGMENT({}) {{ {{"
            fragments += scope.format(count) + f"\n{block}}}{'' if at_namespace else ' }'}\n"
pathlib.Path(sys.argv[1]).write_text(fragments)
