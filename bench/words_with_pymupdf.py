# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the words of all pages and their places, as one would in Python.

usage: words_with_pymupdf.py IN
"""

import sys

import fitz

for page in fitz.open(sys.argv[1]):
    page.get_text("words")
