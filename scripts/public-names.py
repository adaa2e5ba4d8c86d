#!/usr/bin/env python3
"""Holds docs/public-names.txt and the public headers against each other: a public name that comes or goes, and a header
that includes more of ours than the list allows, is told and makes the status 1.

  public-names.py            compares
  public-names.py --write    writes the names of the listed headers anew; limits stay, but where a header has none yet

A header becomes public by a line with its path in the list, and ceases to be when the line goes."""

import pathlib
import re
import sys
import textwrap

ROOT = pathlib.Path(__file__).resolve().parent.parent
LIST = ROOT / "docs" / "public-names.txt"
HEADER = re.compile(r"(lumora/\S+\.h)(?:, including at most (\d+) of ours)?$")
TOKEN = re.compile(r"[A-Za-z_]\w*|::|->|<<|[^\s\w]|\d\w*")
SECTIONS = ("public", "protected", "private", "signals", "Q_SIGNALS")
CLOSING = {"(": ")", "[": "]", "{": "}", "<": ">"}


def tokens_of(text):
    text = re.sub(r"//[^\n]*|/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r'"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])*\'', " 0 ", text)
    return TOKEN.findall(re.sub(r"^[ \t]*#(?:\\\n|[^\n])*", "", text, flags=re.M))


class Reader:
    """Reads the declarations of a header; not the whole language, but what headers of ours are written in."""

    def __init__(self, text):
        self.tokens = tokens_of(text) + [""] * 4
        self.at = 0
        self.names = []

    def peek(self, ahead=0):
        return self.tokens[self.at + ahead]

    def accept(self, text):
        found = self.peek() == text
        self.at += found
        return found

    def skip_pair(self):
        """Past what the bracket here opens; of "<" to its ">"."""
        opening = [self.peek()]
        self.at += 1
        while opening and self.at < len(self.tokens) - 4:
            token = self.peek()
            if token in "([{" and token or (token == "<" and opening[-1] == "<"):
                opening.append(token)
            elif token == CLOSING[opening[-1]]:
                opening.pop()
            self.at += 1

    def skip_declaration(self):
        while self.peek() not in (";", "}", ""):
            if self.peek() == "{":
                self.skip_pair()
                if self.peek() != ";":
                    return
            elif self.peek() in ("(", "["):
                self.skip_pair()
            else:
                self.at += 1
        self.accept(";")

    def declarations(self, scope, public=True):
        """Those up to the closing brace; `scope`: the class, empty in the namespace."""
        while self.peek() not in ("}", ""):
            if self.peek() in SECTIONS and ":" in (self.peek(1), self.peek(2)):
                public = self.peek() in ("public", "signals", "Q_SIGNALS")
                self.at += 2 + (self.peek(1) != ":")  # of Qt "public slots:"
            elif self.peek().startswith("Q_"):
                self.at += 1
                if self.peek() == "(":
                    self.skip_pair()
            else:
                self.declaration(scope, public)
        self.accept("}")

    def declaration(self, scope, public):
        if self.accept("namespace") or (self.peek() == "inline" and self.peek(1) == "namespace"):
            hidden = self.peek() in ("{", "detail")
            while not self.accept("{"):
                self.at += 1
            return self.declarations(scope, not hidden)
        while self.accept("template"):
            self.skip_pair()
        first = self.peek()
        if first in ("friend", "static_assert", "typedef"):
            return self.skip_declaration()
        if first == "using":
            self.at += 1
            if self.peek(1) == "=" and public:
                self.found(scope, self.peek())
            return self.skip_declaration()
        if first == "enum":
            return self.enumeration(scope, public)
        if first in ("class", "struct", "union") and self.is_type():
            return self.type(scope, public)
        self.object_or_function(scope, public)

    def is_type(self):
        return self.peek(2) in ("{", ":", ";", "final", "<", "")

    def type(self, scope, public):
        default = self.peek() != "class"
        name = self.peek(1)
        self.at += 2
        special = self.peek() == "<"  # of a template for one argument: no new name
        while self.peek() not in ("{", ";"):
            if self.peek() == "<":
                self.skip_pair()
            else:
                self.at += 1
        if self.accept(";"):
            return None  # named only
        self.at += 1
        before = len(self.names)
        inner = f"{scope}{name}::"
        self.declarations(inner, default)
        if not public or special:
            del self.names[before:]
        else:
            self.names.insert(before, scope + name)
        return self.skip_declaration()

    def enumeration(self, scope, public):
        self.at += 1
        scoped = self.accept("class") or self.accept("struct")
        name = self.peek() if self.peek() not in ("{", ":") else ""
        while self.peek() not in ("{", ";"):
            self.at += 1
        if self.peek() == "{":
            if public and name:
                self.found(scope, name)
            self.at += 1
            while not self.accept("}"):
                if public:
                    self.found(scope + (name + "::" if scoped else ""), self.peek())
                while self.peek() not in (",", "}"):
                    self.skip_pair() if self.peek() in ("(", "{") else self.step()
                self.accept(",")
        self.skip_declaration()

    def step(self):
        self.at += 1

    def object_or_function(self, scope, public):
        name = ""
        while self.peek() not in (";", "}", ""):
            token = self.peek()
            if token == "operator":
                self.at += 1
                name = "operator"
                while self.peek() != "(" or name == "operator":
                    name += self.peek() if not (name[-1].isalnum() and self.peek()[0].isalpha()) else " " + self.peek()
                    self.at += 1
            elif token == "~":
                name, self.at = "", self.at + 2
            elif token in ("alignas", "decltype", "noexcept") or (token == "[" and self.peek(1) == "["):
                self.at += token != "["
                if self.peek() in ("(", "["):
                    self.skip_pair()
            elif token == "<":
                self.skip_pair()
            elif token in ("(", "=", "{", "[", ",", ":"):
                break
            else:
                name = token if re.match(r"[A-Za-z_]", token) else name
                self.at += 1
        constructs = self.peek() == "(" and scope.endswith(f"{name}::")
        self.skip_declaration()
        if public and name and not constructs and self.tokens[self.at - 3:self.at - 1] != ["=", "delete"]:
            self.found(scope, name)

    def found(self, scope, name):
        self.names.append(scope + name)


def names_of(header):
    reader = Reader((ROOT / header).read_text("utf-8"))
    reader.declarations("")
    return sorted(set(reader.names), key=lambda name: (name.lower(), name))


def own_includes(header, seen):
    """The headers of ours that one includes, itself left out."""
    for name in re.findall(r'^\s*#\s*include\s+"(lumora/[^"]+)"', (ROOT / header).read_text("utf-8"), re.M):
        if name not in seen:
            seen.add(name)
            own_includes(name, seen)
    return seen


def read_list():
    """What stands before the headers, and for each header its limit and names."""
    head, headers, current, scope = [], {}, None, ""
    for line in LIST.read_text("utf-8").splitlines():
        if match := HEADER.match(line):
            current, scope = headers.setdefault(match[1], [int(match[2]) if match[2] else None, []]), ""
        elif current is None:
            head.append(line)
        elif line.endswith(":"):
            scope = line.strip(" :") + "::"
        else:
            current[1] += [scope + name for name in line.split("  ") if name]
    return head, headers


def laid_out(names):
    """Lines of names; those of a type follow a line with its name."""
    scopes = {}
    for name in names:
        scope, _, member = name.rpartition("::")
        scopes.setdefault(scope, []).append(member)
    lines = []
    for scope, members in sorted(scopes.items(), key=lambda item: item[0].lower()):
        lines += [f"    {scope}:"] if scope else []
        indent = " " * (8 if scope else 4)
        text = "  ".join(member.replace(" ", "\0") for member in members)
        wrapped = textwrap.wrap(text, 110, initial_indent=indent, subsequent_indent=indent, break_long_words=False,
                                break_on_hyphens=False)
        lines += [line.replace("\0", " ") for line in wrapped]
    return lines


def write(head, headers):
    lines = head
    for header in sorted(headers):
        limit = headers[header][0]
        if limit is None:  # with a little room
            limit = (len(own_includes(header, {header})) - 1) // 5 * 5 + 5
        lines += [f"{header}, including at most {limit} of ours", *laid_out(names_of(header)), ""]
    LIST.write_text("\n".join(lines).rstrip("\n") + "\n", "utf-8")


def compare(headers):
    wrong = []
    for header, (limit, listed) in sorted(headers.items()):
        if not (ROOT / header).exists():
            wrong.append(f"{header} is listed as public and is not there")
            continue
        now = set(names_of(header))
        wrong += [f"{header}: {name} is public and not in docs/public-names.txt" for name in sorted(now - set(listed))]
        wrong += [f"{header}: {name} of docs/public-names.txt is gone" for name in sorted(set(listed) - now)]
        count = len(own_includes(header, {header})) - 1
        if limit is None or count > limit:
            wrong.append(f"{header} includes {count} headers of ours; docs/public-names.txt allows {limit}")
    return wrong


def main():
    head, headers = read_list()
    if "--write" in sys.argv[1:]:
        write(head, headers)
        return
    wrong = compare(headers)
    if wrong:
        sys.exit("\n".join(wrong) + "\nscripts/public-names.py --write writes the names anew.")
    names = sum(len(names) for _, names in headers.values())
    print(f"{names} names in {len(headers)} headers")
    if names < 500:
        sys.exit("That cannot be all.")


if __name__ == "__main__":
    main()
