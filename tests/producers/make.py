#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Sendrivo authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the same mail merge with programs that write PDF files: a page for each line of fields.txt,
with the number and the customer, some of them bold, in the same places. A line's columns: number,
style, customer, and the customer for LaTeX where its font lacks the letters.

usage: tests/producers/make.py [OUT]

OUT is the folder tests/fixtures/producers when none is given. A program that is not installed is
skipped (Debian: chromium, ghostscript, libreoffice-writer, qpdf, texlive-latex-base, gcc with
libpango1.0-dev). Fonts: DejaVu, Droid Sans Fallback, Computer Modern.

Ghostscript works on LaTeX's file and not on a browser's: version 10.00 writes wrong letters for
ligatures and for Polish into the table that tells what glyphs mean.
"""

import html
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
FIELDS = HERE / "fields.txt"


def fields():
    return [line.split("\t") for line in FIELDS.read_text("utf-8").splitlines()]


def run(*command, folder):
    subprocess.run([str(part) for part in command], cwd=folder, check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


def chromium(work, out):
    pages = "".join(
        f'<section><p style="left:60pt;top:80pt">Invoice</p>'
        f'<p style="left:400pt;top:80pt">{html.escape(number)}</p>'
        f'<p class="{style}" style="left:60pt;top:140pt">{html.escape(customer)}</p></section>'
        for number, style, customer, *_ in fields())
    (work / "in.html").write_text(
        '<!DOCTYPE html><meta charset="utf-8"><style>@page { size: A4; margin: 0 } '
        'body { margin: 0; font: 11pt/16pt "DejaVu Sans" } .bold { font-weight: bold } '
        "section { position: relative; height: 290mm; break-after: page } "
        "p { position: absolute; margin: 0; white-space: pre }</style>" + pages, "utf-8")
    run("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
        "--no-first-run", "--disable-background-networking", "--disable-component-update",
        "--disable-sync", f"--user-data-dir={work}/profile", "--no-pdf-header-footer",
        "--print-to-pdf-no-header", f"--print-to-pdf={out}", work / "in.html", folder=work)


def libreoffice(work, out):
    def frame(page, x, y, style, text):
        return (f'<draw:frame text:anchor-type="page" text:anchor-page-number="{page}" '
                f'draw:style-name="fr" svg:x="{x}cm" svg:y="{y}cm" svg:width="9cm" '
                f'svg:height="1cm"><draw:text-box><text:p text:style-name="{style}">'
                f"{html.escape(text)}</text:p></draw:text-box></draw:frame>")

    def style(name, more):
        return (f'<style:style style:name="{name}" style:family="paragraph">'
                f'<style:paragraph-properties fo:line-height="0.7cm" {more}/>'
                '<style:text-properties style:font-name="DejaVu Sans" fo:font-size="11pt" '
                'style:font-size-asian="11pt" '
                f'fo:font-weight="{"bold" if name == "bold" else "normal"}"/></style:style>')

    frames = "".join(
        frame(page, 2, 3, "plain", "Invoice") + frame(page, 12, 3, "plain", number)
        + frame(page, 2, 5, weight, customer)
        for page, (number, weight, customer, *_) in enumerate(fields(), 1))
    spaces = " ".join(
        f'xmlns:{name}="urn:oasis:names:tc:opendocument:xmlns:{full}:1.0"' for name, full in {
            "office": "office", "style": "style", "text": "text", "draw": "drawing",
            "svg": "svg-compatible", "fo": "xsl-fo-compatible"}.items())
    (work / "in.fodt").write_text(
        f'<?xml version="1.0" encoding="UTF-8"?><office:document {spaces} office:version="1.3" '
        'office:mimetype="application/vnd.oasis.opendocument.text"><office:font-face-decls>'
        '<style:font-face style:name="DejaVu Sans" svg:font-family="\'DejaVu Sans\'"/>'
        "</office:font-face-decls><office:automatic-styles>" + style("plain", "")
        + style("bold", "") + style("next", 'fo:break-before="page"')
        + '<style:style style:name="fr" style:family="graphic"><style:graphic-properties '
        'fo:border="none" fo:padding="0cm" style:wrap="run-through" '
        'style:vertical-pos="from-top" style:vertical-rel="page" style:horizontal-pos="from-left" '
        'style:horizontal-rel="page"/></style:style></office:automatic-styles><office:body>'
        f"<office:text>{frames}<text:p/>"
        + '<text:p text:style-name="next"/>' * (len(fields()) - 1)
        + "</office:text></office:body></office:document>", "utf-8")
    run("soffice", f"-env:UserInstallation=file://{work}/profile", "--headless", "--convert-to",
        "pdf", "in.fodt", folder=work)
    shutil.move(work / "in.pdf", out)


def latex(work, out):
    """Computer Modern in its old encoding, where an accent is a glyph of its own."""
    def escaped(text):
        return text.replace("&", r"\&").replace("Ω", r"$\Omega$")

    pages = "".join(
        r"\begin{picture}(0,0)\put(0,0){Invoice}\put(340,0){" + escaped(number) + r"}\put(0,-60){"
        + (r"\bfseries " if style == "bold" else "") + escaped(customers[-1])
        + "}\\end{picture}\n\\newpage\n"
        for number, style, *customers in fields())
    (work / "in.tex").write_text(
        r"\documentclass[11pt,a4paper]{article}\pagestyle{empty}\setlength\unitlength{1pt}"
        r"\setlength\parindent{0pt}\begin{document}" + pages + r"\end{document}", "utf-8")
    run("pdflatex", "-interaction=batchmode", "in.tex", folder=work)
    shutil.move(work / "in.pdf", out)


def pango(work, out):
    flags = subprocess.run(["pkg-config", "--cflags", "--libs", "pangocairo"], check=True,
                           capture_output=True, text=True).stdout.split()
    run("gcc", "-o", "pango", HERE / "pango.c", *flags, folder=work)
    run("./pango", FIELDS, out, folder=work)


def latex_ghostscript(work, out):
    run("gs", "-q", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", f"-sOutputFile={out}",
        out.with_name("latex.pdf"), folder=work)


def libreoffice_qpdf(work, out):
    run("qpdf", "--linearize", "--object-streams=generate", out.with_name("libreoffice.pdf"), out,
        folder=work)


def main():
    target = Path(sys.argv[1] if len(sys.argv) > 1 else HERE.parent / "fixtures/producers")
    target.mkdir(parents=True, exist_ok=True)
    tools = {chromium: "chromium", libreoffice: "soffice", latex: "pdflatex", pango: "gcc",
             latex_ghostscript: "gs", libreoffice_qpdf: "qpdf"}
    for make, program in tools.items():
        if not shutil.which(program):
            print(f"{program} is missing, {make.__name__}.pdf not made", file=sys.stderr)
            continue
        with tempfile.TemporaryDirectory() as work:
            make(Path(work), target.resolve() / f"{make.__name__}.pdf")


if __name__ == "__main__":
    main()
