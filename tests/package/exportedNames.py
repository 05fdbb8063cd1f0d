"""Checks that a library exports the members of the classes and the functions that its headers mark with KR_BASE_API, and
nothing else.

usage: exportedNames.py INCLUDE_DIR LIBRARY COMPILER"""

import pathlib
import re
import subprocess
import sys

CLASS = re.compile(r"(?:class|struct) KR_BASE_API (?:\w+::)*(\w+)")
TEMPLATE = re.compile(r"^template <.*>\n(?:class|struct) (\w+)", re.MULTILINE)
GROUP = re.compile(r"^extern KR_BASE_API .*KR_XGLUE\((\w+), (\w+)\);", re.MULTILINE)
FUNCTION = re.compile(r"KR_BASE_API [^;(]*?(operator|\w+)[^\w;(]*\(")
COVERS = re.compile(r"^(?:vtable|VTT|typeinfo|typeinfo name|construction vtable|guard variable) for |"
                    r"^(?:non-virtual|virtual|covariant return) thunk to |^\[\w+ .*\] ")


def demangled(names):
    return subprocess.run(["c++filt"], input="\n".join(names), capture_output=True, check=True, text=True).stdout.splitlines()


def exported(library, compiler):
    prefix = compiler[:-len("g++-posix")] if compiler.endswith("g++-posix") else ""
    if library.endswith(".dll"):
        table = subprocess.run([prefix + "objdump", "-p", library], capture_output=True, check=True, text=True).stdout
        table = table[table.index("[Ordinal/Name Pointer] Table"):]
        # The compiler exports the type information of exported classes' bases, whose ever they are.
        names = [name for name in re.findall(r"^\t\[ *\d+\] (\S+)", table, re.MULTILINE) if not name.startswith("_ZTI")]
    else:
        table = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, check=True, text=True).stdout
        names = [line.split()[-1] for line in table.splitlines()]
    return demangled(names)


def is_declared(name, declared):
    """Whether an exported name is one of those declared or a member of one."""
    found = re.search(r"\b(?:Kr|LgGroups)::([\w:]+)", COVERS.sub("", name))
    return found is not None and any(part in declared for part in found.group(1).split("::"))


def main(include, library, compiler):
    classes, others = set(), set()
    for path in pathlib.Path(include).rglob("*.h"):
        text = path.read_text()
        classes.update(CLASS.findall(text))
        others.update(FUNCTION.findall(text), TEMPLATE.findall(text),
                      ("".join(parts) for parts in GROUP.findall(text)))
    names = exported(library, compiler)
    strangers = [name for name in names if not is_declared(name, classes | others)]
    words = set(re.findall(r"\w+", " ".join(names)))
    missing = sorted(classes - words)
    for example in sorted(strangers):
        print(f"exported, but no public header exports it: {example}")
    for name in missing:
        print(f"a public header exports it, but the library does not: {name}")
    if strangers or missing or not names:
        sys.exit(1)
    print(f"{len(names)} names")


main(*sys.argv[1:])
