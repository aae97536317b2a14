#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What one would write instead of sendrivo-batch: split where the text in a rectangle changes.

usage: split_with_pymupdf.py X0,Y0,X1,Y1 OUT FILE...   (points from the top left corner)
"""
import os
import sys

import fitz

clip = fitz.Rect(*map(float, sys.argv[1].split(",")))
out = sys.argv[2]
for path in sys.argv[3:]:
    source = fitz.open(path)
    base = os.path.splitext(os.path.basename(path))[0]
    folder = os.path.join(out, base)
    os.makedirs(folder, exist_ok=True)
    texts = [page.get_text("text", clip=clip).strip() for page in source]
    starts = [0]
    for page in range(1, len(texts)):
        if texts[page] and texts[page] != texts[starts[-1]]:
            starts.append(page)
    ends = starts[1:] + [len(texts)]
    for number, (first, end) in enumerate(zip(starts, ends), 1):
        document = fitz.open()
        document.insert_pdf(source, from_page=first, to_page=end - 1)
        name = f"{number} {texts[first].replace('/', '-')} {base} {first + 1}-{end}.pdf"
        document.save(os.path.join(folder, name))
        document.close()
