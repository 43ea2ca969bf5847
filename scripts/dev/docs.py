"""Checks what doxygen does not: docs.py BUILD_FOLDER, which scripts/dev/docs runs in the root of the repository.

Values of enumerations and members of unnamed unions must be documented too. Sources that documents link to are copied
to the pages. Every link of a page must lead to a file.
"""

import html
import pathlib
import re
import shutil
import sys
import xml.etree.ElementTree as xml

FEWEST_MEMBERS = 2000  # fewer mean that the headers were not read
DOCUMENTS = ("*.md", "docs/*.md")


def has_text(element):
    parts = (element.find("briefdescription"), element.find("detaileddescription"))
    return any("".join(part.itertext()).strip() for part in parts)


def needs_no_text(member):
    """Deleted operations, and unions without a name."""
    arguments, declared_type = member.findtext("argsstring") or "", member.find("type")
    is_union = declared_type is not None and "".join(declared_type.itertext()).startswith("union ")
    return arguments.endswith("=delete") or is_union


def is_public(element):
    return element.get("prot", "public") == "public"  # files and namespaces have none


def members(folder):
    """(name, element) of every public member and every value of an enumeration."""
    for path in sorted(folder.glob("*.xml")):
        for compound in filter(is_public, xml.parse(path).iter("compounddef")):
            for member in filter(is_public, compound.iter("memberdef")):
                if needs_no_text(member):
                    continue
                name = "%s: %s" % (compound.findtext("compoundname"), member.findtext("name"))
                yield name, member
                for value in member.iter("enumvalue"):
                    yield "%s: %s" % (name, value.findtext("name")), value


def undocumented(found):
    if len(found) < FEWEST_MEMBERS:
        return ["only %d members found" % len(found)]
    return ["not documented: " + name for name, element in found if not has_text(element)]


def copy_sources(pages):
    """Copies the sources that documents link to to where the pages look for them."""
    for document in (path for pattern in DOCUMENTS for path in pathlib.Path().glob(pattern)):
        for link in re.findall(r"\]\(([\w./-]+)\)", document.read_text()):
            source, target = document.parent / link, pages / link
            if source.suffix not in (".md", ".svg") and source.is_file():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, target)


def dead_links(pages):
    for page in sorted(pages.glob("*.html")):
        for link in re.findall(r'(?:href|src)="([^"#:]+)(?:#[^"]*)?"', page.read_text()):
            if not (pages / html.unescape(link)).exists():
                yield "%s: dead link: %s" % (page.name, link)


def main(folder):
    copy_sources(folder / "html")
    found, pages = list(members(folder / "xml")), list((folder / "html").glob("*.html"))
    wrong = undocumented(found) + sorted(set(dead_links(folder / "html")))
    print("".join(line + "\n" for line in wrong), end="", file=sys.stderr)
    print("%d symbols on %d pages" % (len(found), len(pages)))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
