"""Writes a program that needs every public member of every public class: it takes the address of each function, binds each
constant to a reference, and constructs and destroys what can be. Built without optimisation and linked, it shows that what
the headers declare is what the library exports.

usage: publicApi.py INCLUDE_DIR OUTPUT COMPILER"""

import pathlib
import re
import subprocess
import sys

from clang.cindex import AccessSpecifier, CursorKind, Index, TranslationUnit

CLASSES = (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL)
FUNCTIONS = (CursorKind.CXX_METHOD, CursorKind.CONVERSION_FUNCTION)
INSTANCE = re.compile(r"extern template class KR_BASE_API ((?:\w+::)*\w+)<([\w: ]+)>;")


def is_public(cursor):
    return cursor.access_specifier in (AccessSpecifier.PUBLIC, AccessSpecifier.INVALID)


def qualified(cursor):
    parent = cursor.semantic_parent
    outer = "" if parent is None or parent.kind == CursorKind.TRANSLATION_UNIT else qualified(parent)
    return f"{outer}::{cursor.spelling}" if outer else cursor.spelling


def is_deleted(cursor):
    return cursor.availability.name == "NOT_AVAILABLE"


def is_exported(cursor):
    return any(token.spelling == "KR_BASE_API" for token in cursor.get_tokens())


class Program:
    def __init__(self):
        self.statements = []

    def add(self, statement):
        self.statements.append(statement)

    def function(self, cursor, owner):
        """The address of a function; its type picks it among those of its name."""
        kind = cursor.type.get_canonical()
        result = kind.get_result().spelling
        parameters = ", ".join(parameter.spelling for parameter in kind.argument_types())
        qualifiers = (" const" if cursor.is_const_method() else "") + (" noexcept" if kind.spelling.endswith("noexcept") else "")
        pointer = "*" if owner is None or cursor.is_static_method() else f"{owner}::*"
        name = f"operator {result}" if cursor.kind == CursorKind.CONVERSION_FUNCTION else cursor.spelling
        scope = owner or qualified(cursor.semantic_parent)
        self.add(f"keep(static_cast<Same<{result}> ({pointer})({parameters}){qualifiers}>(&{scope}::{name}));")

    def constructor(self, cursor, owner):
        arguments = ", ".join(f"some<{a.type.get_canonical().spelling}>()" for a in cursor.get_arguments())
        self.add(f"delete new {owner}({arguments});" if arguments else f"delete new {owner};")

    def klass(self, cursor):
        name = cursor.type.get_canonical().spelling
        members = [m for m in cursor.get_children() if is_public(m) and not is_deleted(m)]
        destructible = not any(m.kind == CursorKind.DESTRUCTOR and (not is_public(m) or is_deleted(m))
                               for m in cursor.get_children())
        for member in members:
            if member.kind in FUNCTIONS:
                self.function(member, name)
            elif member.kind == CursorKind.CONSTRUCTOR and destructible and not cursor.is_abstract_record():
                self.constructor(member, name)
            elif member.kind == CursorKind.VAR_DECL:
                self.add(f"keep({name}::{member.spelling});")
            elif member.kind in CLASSES and member.is_definition():
                self.klass(member)
        if cursor.is_abstract_record() and any(m.kind == CursorKind.DESTRUCTOR for m in members):
            self.add(f"delete some<{name}*>();")

    def namespace(self, cursor, inside):
        for child in cursor.get_children():
            if child.kind == CursorKind.NAMESPACE:
                self.namespace(child, inside)
            elif child.semantic_parent != cursor or pathlib.Path(child.location.file.name).parent != inside:
                continue
            elif child.kind in CLASSES and child.is_definition():
                self.klass(child)
            elif child.kind == CursorKind.FUNCTION_DECL and is_exported(child) and not is_deleted(child):
                self.function(child, None)
            elif child.kind == CursorKind.VAR_DECL:
                self.add(f"keep({qualified(child)});")
            elif child.kind == CursorKind.CLASS_TEMPLATE:
                self.template(child)

    def template(self, cursor):
        """The members of what the library instantiates of a template, where a name has one function."""
        functions = [m for m in cursor.get_children() if m.kind in FUNCTIONS]
        names = [m.spelling for m in functions]
        for argument in self.instances.get(cursor.spelling, ()):
            for name in (m.spelling for m in functions if is_public(m)):
                if names.count(name) == 1 and not name.startswith("operator"):
                    self.add(f"keep(&{qualified(cursor)}<{argument}>::{name});")


def target_of(compiler):
    """What libclang must be told to read headers as the compiler does."""
    def say(*arguments):
        return subprocess.run([compiler, *arguments], stdin=subprocess.DEVNULL, capture_output=True, check=True, text=True)

    machine = say("-dumpmachine").stdout.strip()
    folders = re.search(r"> search starts here:\n(.*?)End of search", say("-E", "-v", "-x", "c++", "-").stderr, re.DOTALL)
    return ["-target", machine, *("-isystem" + folder.strip() for folder in folders.group(1).splitlines())]


def main(include, output, compiler):
    headers = sorted(path.name for path in pathlib.Path(include, "base").glob("*.h"))
    includes = "".join(f"#include <base/{header}>\n" for header in headers)
    unit = Index.create().parse("all.cpp", ["-std=c++17", "-I" + include, *target_of(compiler)],
                                unsaved_files=[("all.cpp", includes)], options=TranslationUnit.PARSE_SKIP_FUNCTION_BODIES)
    errors = [str(d) for d in unit.diagnostics if d.severity >= 3]
    if errors:
        sys.exit("\n".join(errors))

    program = Program()
    program.instances = {}
    for path in pathlib.Path(include).rglob("*.h"):
        for name, argument in INSTANCE.findall(path.read_text()):
            program.instances.setdefault(name.split("::")[-1], []).append(argument)
    for child in unit.cursor.get_children():
        if child.kind == CursorKind.NAMESPACE and child.spelling == "Kr":
            program.namespace(child, pathlib.Path(include, "base"))

    with open(output, "w", encoding="utf-8") as file:
        file.write(includes)
        file.write("#include <type_traits>\n\nusing namespace Kr;\n"
                   "template <class T> using Same = T;\n"
                   "template <class T> void keep(const T& value) { static const volatile void* kept; kept = &value; }\n"
                   "template <class T> T&& some()\n"
                   "{ return static_cast<T&&>(*static_cast<std::remove_reference_t<T>*>(nullptr)); }\n\n")
        for number, statement in enumerate(program.statements):
            file.write(f"void member{number}() {{ {statement} }}\n")
        file.write("\nint main() {}\n")
    print(f"{len(program.statements)} members")


main(*sys.argv[1:])
