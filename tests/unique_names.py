#!/usr/bin/env python3
"""Checks that file and type names are unique: unique_names.py PROJECT-DIRECTORY

No two headers, no two sources and no two types share a name, and each exported name is defined in
a source that is named after the header that declares it: STEM.cpp or STEM_PART.cpp.
"""
import collections
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
LIBRARY = ("db", "ifm", "l2", "fib", "acl", "qos", "event", "bal")
TYPE = re.compile(
    r"\b(?:class|struct|union|enum(?: class| struct)?)\s+(?:alignas\([^)]*\)\s*)?(\w+)\s*"
    r"(?:final\s*)?(?::(?!:)[^;{()]*)?\{")


def without_comments(path):
    return re.sub(r"/\*.*?\*/|//[^\n]*", "", path.read_text(), flags=re.S)


files = {path: without_comments(path) for suffix in ("h", "c", "cpp")
         for path in root.rglob(f"*.{suffix}")
         if not path.relative_to(root).parts[0].startswith((".", "build"))}
places = collections.defaultdict(set)
for path, text in files.items():
    places["header" if path.suffix == ".h" else "source", path.stem].add(path)
    for name in TYPE.findall(text):
        places["type", name].add(path)

complaints = [f"{kind} {name}: {' '.join(sorted(str(p.relative_to(root)) for p in paths))}"
              for (kind, name), paths in sorted(places.items()) if len(paths) > 1]


def stem_of(paths, pattern):
    return next((path.stem for path in paths if re.search(pattern, files[path], re.M)), None)


headers = [path for path in files if path.parent == root / "include/tarnd_qrb"]
sources = [path for path in files
           if path.suffix == ".cpp" and path.relative_to(root).parts[0] in LIBRARY]
exported = re.findall(r"^\s+(\w+);$", (root / "cmake/tarnd_qrb.map").read_text(), re.M)
for name in exported:
    header = stem_of(headers, rf"\b{name}\b\s*[(;\[]")
    source = stem_of(sources, rf"^(?!extern)[A-Za-z_][\w\s:*&<>\[\]]*\b{name}\b\s*"
                              rf"(\([^;{{]*\)\s*\{{|(\[[^\]]*\])*\s*[=;{{])")
    if header is None or source is None or not f"{source}_".startswith(f"{header}_"):
        complaints.append(f"exported {name}: declared in {header}.h, defined in {source}.cpp")

print("\n".join(complaints) or f"{len(exported)} exported names are where their header says")
sys.exit(1 if complaints or not exported else 0)
