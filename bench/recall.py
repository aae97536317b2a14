#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures which share of the words that two other readers agree on quillrend finds, too.

usage: bench/recall.py QUILLREND [FOLDER] [--worst N]

For each page of each PDF file below FOLDER (of $SENDRIVO_CORPUS when none is given) the words that
both `mutool draw -F text` and `pdftotext` give, counted as often as both give them, are looked for
among the words of quillrend's fragments. Prints the share and the files that lose most.

Left out, with a note of how many: damaged files, which are those that `qpdf --check` has an error
or a warning about (every reader repairs them in its own way), and files that need a password. The
share with the damaged ones is printed as well.
"""

import argparse
import html
import os
import re
import subprocess
import sys
import tempfile
import unicodedata
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

GOAL = 0.995
TIME_LIMIT = 60
LINE = re.compile(r"<span [^>]*>(.*)</span>$")


def run(*command):
    """Exit code and output; a code of None stands for a program that did not end in time."""
    try:
        done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=TIME_LIMIT)
    except subprocess.TimeoutExpired:
        return None, ""
    return done.returncode, done.stdout.decode("utf-8", "replace")


def words(text):
    """Words on equal terms: ligatures as letters, blanks of all kinds as blanks, hyphens as one."""
    text = unicodedata.normalize("NFKC", text)
    text = re.sub("[\u00ad\u2010\u2011]", "-", text)
    text = re.sub("[\u200b-\u200f\u202a-\u202e\u2060-\u206f\ufeff]", "", text)
    return Counter(word for word in text.split() if "\ufffd" not in word)


def pages_of(code, text):
    """The pages of a reader that ends each with a form feed; None when it failed."""
    return None if code is None or "\f" not in text else text.split("\f")[:-1]


def layouts(quillrend, file):
    with tempfile.TemporaryDirectory() as folder:
        run(quillrend, "-htmlformat", file, folder + "/out.xml")
        pages = {}
        for layout in Path(folder).glob("out_pg_*.htm"):
            lines = (LINE.search(line) for line in layout.read_text("utf-8").splitlines())
            texts = [html.unescape(match[1]) for match in lines if match]
            pages[int(layout.stem[len("out_pg_"):])] = words("\n".join(texts))
        return pages


class Result:
    """What came of one file: the number of common words, those lost by page, or why it is left
    out."""

    def __init__(self, quillrend, file):
        self.file = file
        self.common = 0
        self.lost = Counter()
        self.left_out = None
        self.is_damaged = run("qpdf", "--check", file)[0] != 0
        ours = layouts(quillrend, file)
        mutool = pages_of(*run("mutool", "draw", "-q", "-F", "text", file))
        poppler = pages_of(*run("pdftotext", "-enc", "UTF-8", file, "-"))
        if mutool is None or poppler is None:
            self.left_out = "not read by both others"
        elif len(mutool) != len(poppler):
            self.left_out = "others disagree about the number of pages"
        else:
            for number, (one, other) in enumerate(zip(mutool, poppler), 1):
                self.count_page(number, words(one) & words(other), ours.get(number, Counter()))

    def count_page(self, number, common, ours):
        self.common += common.total()
        for word, count in (common - ours).items():
            self.lost[number, word] += count

    def example(self):
        shown = [f"p{number}:{word}" for number, word in list(self.lost)[:6]]
        return " ".join(shown)[:150]


def print_share(title, results):
    common = sum(result.common for result in results)
    lost = sum(result.lost.total() for result in results)
    share = 1 - lost / common if common else 0
    print(f"{title}: {share:.3%} of {common} words in {len(results)} files ({lost} lost)")
    return share


def main():
    parser = argparse.ArgumentParser(description="Share of common words that quillrend finds")
    parser.add_argument("quillrend")
    parser.add_argument("folder", nargs="?", default=os.environ.get("SENDRIVO_CORPUS"))
    parser.add_argument("--worst", type=int, default=10, help="files to name (10)")
    call = parser.parse_args()
    if not call.folder:
        parser.error("name a FOLDER or set SENDRIVO_CORPUS")
    files = sorted(str(path) for path in Path(call.folder).rglob("*.pdf"))
    with ThreadPoolExecutor(2 * os.cpu_count()) as pool:
        results = list(pool.map(lambda file: Result(call.quillrend, file), files))

    read = [result for result in results if not result.left_out]
    sound = [result for result in read if not result.is_damaged]
    for reason, count in Counter(result.left_out for result in results).items():
        if reason:
            print(f"left out, {reason}: {count}")
    print_share("with damaged files", read)
    share = print_share("sound files", sound)
    for result in sorted(read, key=lambda result: -result.lost.total())[:call.worst]:
        if result.lost:
            mark = " (damaged)" if result.is_damaged else ""
            name = os.path.relpath(result.file, call.folder)
            print(f"{result.lost.total():6} of {result.common:6} {name}{mark}: {result.example()}")
    return 0 if share >= GOAL else 1


if __name__ == "__main__":
    sys.exit(main())
