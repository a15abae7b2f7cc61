#!/usr/bin/python3
"""one_definition.py: fails when two files define a type of the same qualified name.

Two such types in one program are undefined behaviour that no compiler has to report: one file's
members are read with the other's layout. Programs are not told apart here, since most files are
linked into several: a name stands for one thing in the whole project. Types in functions, in
other types and in namespaces without a name are left out, for they cannot clash.
"""
import collections
import re
import sys

from sources import source_files

TOKEN = re.compile(r"""
    //[^\n]* | /\*.*?\*/                          # comments
  | R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"          # raw strings
  | "(?:\\.|[^"\\\n])*" | '(?:\\.|[^'\\\n])*'     # strings and characters
  | ^[ \t]*\#(?:\\\n|[^\n])*                      # what the preprocessor reads
  | \[\[.*?\]\]                                   # attributes
  | (?P<word>[A-Za-z_]\w*) | (?P<number>\d[\w.']*) | (?P<sign>::|[{}();:<>=,])
  """, re.VERBOSE | re.DOTALL | re.MULTILINE)
KEYS = {"struct", "class", "union", "enum"}
# Each a program of its own, which shares nothing but the module or the library.
PROGRAMS = ("examples/", "tests/install/")


def tokens_of(text):
    """Words and signs, each with where it stands."""
    for match in TOKEN.finditer(text):
        token = match.group("word") or match.group("sign")
        if token:
            yield token, match.start()


def opened_scope(tokens, brace):
    """What a brace opens: a namespace's name, "" for one without, or None for anything else."""
    words = []
    at = brace - 1
    while at >= 0 and (tokens[at][0] == "::" or tokens[at][0].isidentifier()):
        words.insert(0, tokens[at][0])
        if tokens[at][0] == "namespace":
            return "".join(words[1:])
        at -= 1
    return "extern" if words == ["extern"] else None


def defined_type(tokens, key):
    """The name that the type whose key stands there is defined by, or None. What is defined
    outside of the type that declares it, as `struct Outer::Inner {`, is that type's."""
    name = None
    for word, _ in tokens[key + 1 :]:
        if word in ("{", ":"):
            return name
        if not word.isidentifier():
            return None
        if word not in KEYS and word != "final":
            name = word
    return None


def definitions(text):
    """Qualified name and position of each type defined in a namespace that has a name."""
    tokens = list(tokens_of(text))
    scopes = []
    for at, (token, position) in enumerate(tokens):
        if token == "{":
            scopes.append(opened_scope(tokens, at))
        elif token == "}":
            scopes.pop()
        elif token in KEYS and all(scopes) and not (at and tokens[at - 1][0] in KEYS):
            name = defined_type(tokens, at)
            if name:
                yield "::".join([scope for scope in scopes if scope != "extern"] + [name]), position


def clashes(files):
    """A line for each name that is defined in two places."""
    places = collections.defaultdict(list)
    for path, text in files:
        for name, position in definitions(text):
            line = 1 + text.count("\n", 0, position)
            places[name].append(f"{path}:{line}")
    return [f"{name} is defined in {' and '.join(where)}"
            for name, where in sorted(places.items()) if len(where) > 1]


def test_itself():
    """Planted clashes are found, and nothing else is."""
    one = """
        namespace a::b { // struct Commented {};
        class EXPORTED Clash final : public Base { struct Inner { int i; }; };
        template <class T> struct Held { const char *s = "struct Quoted {"; };
        struct Declared { struct Later; }; struct Declared::Later {}; enum class Code : int { one };
        struct Declared *pointer(struct Declared &);
        namespace { struct Hidden {}; }
        void f() { struct Local {}; }
        }
        extern "C" { typedef struct Global { int i; } Global; }
        """
    two = """
        namespace a { namespace b {
        struct Clash {}; struct Local {}; struct Inner {}; enum Code { two };
        namespace { struct Hidden {}; }
        } struct Held {}; struct Declared {}; struct Later {}; }
        struct Global { long l; };
        """
    found = [line.split()[0] for line in clashes([("one.h", one), ("two.h", two)])]
    assert found == ["Global", "a::b::Clash", "a::b::Code"], found


def main():
    test_itself()
    files = [(path, text) for path, text in source_files() if not path.startswith(PROGRAMS)]
    found = clashes(files)
    print(*found, sep="\n")
    count = sum(1 for _, text in files for _ in definitions(text))
    print(f"{count} types in {len(files)} files, {len(found)} defined twice")
    sys.exit(1 if found or not count else 0)


main()
