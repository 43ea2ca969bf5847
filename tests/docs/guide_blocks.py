"""The fenced blocks of docs/guide.md. guide_blocks.py GUIDE OUTPUT writes the C++ blocks to OUTPUT."""

import pathlib
import re
import sys

FENCE = re.compile(r"^```(\w*)\n(.*?)^```\n", re.M | re.S)


def blocks(guide, language):
    return "".join(text for found, text in FENCE.findall(guide) if found == language)


def prose(guide):
    return FENCE.sub("", guide)


if __name__ == "__main__":
    pathlib.Path(sys.argv[2]).write_text(blocks(pathlib.Path(sys.argv[1]).read_text(), "cpp"))
