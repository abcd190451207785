#!/usr/bin/env python3
"""chromium_test.py: the page that the launcher composes, laid out by a browser and by the stand-in that
shows it under Wine. The browser says whether the page is what it is meant to be; the stand-in has to have
the same boxes in the same places relative to each other. Pictures of both: build/page-in-*.png."""
import html
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "endtoend"))
from session import BUILD, DEVELOPMENT, LINKS, PATIENCE, ROOT, Session

# Root may not use the sandbox; nothing of it goes to the network.
CHROMIUM = ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
            "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--force-device-scale-factor=1", "--hide-scrollbars"]

# MSHTML's margins, which the stand-in has, too.
MARGINS = "<style>body{margin:15px 10px}</style>"

# Adds the boxes to the document that --dump-dom prints, in the form of the stand-in's trace.
MEASURE = """<script>
window.addEventListener("load", function () {
    const boxes = [...document.querySelectorAll("img, h2, td, span, div[id]")].map(function (element) {
        const area = element.getBoundingClientRect();
        return { tag: element.localName, id: element.id, class: element.className, text: element.textContent,
                 x: area.x, y: area.y, width: area.width, height: area.height,
                 loaded: element.localName == "img" && element.naturalWidth > 0,
                 color: getComputedStyle(element).color,
                 underlined: getComputedStyle(element).textDecorationLine };
    });
    const result = document.createElement("pre");
    result.id = "boxes";
    result.textContent = JSON.stringify(boxes);
    document.documentElement.appendChild(result);
});
</script>
"""


def composed_page(inner_html):
    """The page of the program's resources as it stands once the launcher has filled it."""
    page = (ROOT / "res/korcontrolcenter.htm").read_text(encoding="ascii")
    page, banners = re.subn(re.escape("res:/IMAGE/CONTROLCENTER.JPG"), "controlcenter.jpg", page)
    empty = '<div id="Sections"></div>'
    assert banners == 1 and page.count(empty) == 1, "the page template is another one"
    return page.replace(empty, f'<div id="Sections">{inner_html}</div>')


def links(boxes):
    return [box for box in boxes if box["tag"] == "span" and box["class"] == "item"]


def columns(boxes):
    return [box for box in boxes if box["tag"] == "td" and box["class"] == "column"]


def headings(boxes):
    return [box for box in boxes if box["tag"] == "h2"]


def in_sight_order(boxes):
    """Row by row from the left: what lies on the same height (two lines of text apart at least) is a row."""
    rows = []
    for box in sorted(boxes, key=lambda box: box["y"]):
        if not rows or box["y"] - rows[-1][0]["y"] > 8:
            rows.append([])
        rows[-1].append(box)
    return [sorted(row, key=lambda box: box["x"]) for row in rows]


class Page(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        session = Session("Chromium", 96, "development")
        try:
            session.start()
            page = session.wait_for_layout()
            session.save_picture(BUILD / "page-in-launcher.png")
            session.end()
        finally:
            session.close()
        cls.shown = page["boxes"]
        cls.window = page["window"]
        with tempfile.TemporaryDirectory() as folder:
            cls.measured = cls.render(Path(folder), page)

    @classmethod
    def render(cls, folder, page):
        shutil.copy(ROOT / "res/controlcenter.jpg", folder)
        document = '<meta charset="utf-8">' + MARGINS + composed_page(page["innerHtml"]["Sections"])
        (folder / "page.html").write_text(document, encoding="utf-8")
        (folder / "measured.html").write_text(MEASURE + document, encoding="utf-8")
        size = f'--window-size={page["window"]["width"]},{page["window"]["height"]}'
        cls.chromium(folder, size, f"--screenshot={BUILD / 'page-in-chromium.png'}", folder / "page.html")
        dump = cls.chromium(folder, size, "--dump-dom", folder / "measured.html")
        subprocess.run(["convert", BUILD / "page-in-launcher.png", BUILD / "page-in-chromium.png", "+append",
                        BUILD / "page-in-both.png"], check=True)
        return json.loads(html.unescape(re.search(r'<pre id="boxes">(.*?)</pre>', dump, re.S)[1]))

    @classmethod
    def chromium(cls, folder, *arguments):
        with tempfile.TemporaryDirectory(dir=folder) as profile:
            return subprocess.run([*CHROMIUM, f"--user-data-dir={profile}", *map(str, arguments)],
                                  env=dict(os.environ, HOME=str(folder)), check=True, timeout=2 * PATIENCE,
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, encoding="utf-8").stdout

    def test_sections_in_the_order_of_the_grid(self):
        cells = columns(self.measured)
        # Chromium closes a cell that was left open where the next one begins.
        self.assertEqual(len(cells), len(DEVELOPMENT))
        titles = [title for title, _ in DEVELOPMENT]
        self.assertEqual([heading["text"] for heading in headings(self.measured)], titles)
        rows = in_sight_order(cells)
        self.assertEqual([len(row) for row in rows], [2] * (len(DEVELOPMENT) // 2))
        seen = [heading["text"] for row in in_sight_order(headings(self.measured)) for heading in row]
        self.assertEqual(seen, titles)

    def test_ids_and_texts(self):
        labels = [label for _, section in DEVELOPMENT for label in section]
        self.assertEqual([(box["id"], box["text"]) for box in links(self.measured)],
                         list(zip(LINKS, labels)))
        for box in links(self.measured):
            self.assertEqual((box["color"], box["underlined"]), ("rgb(0, 0, 255)", "underline"), box["id"])

    def test_two_columns_of_equal_width(self):
        for boxes in (self.measured, self.shown):
            for left, right in in_sight_order(columns(boxes)):
                self.assertAlmostEqual(left["width"], right["width"], delta=1.5)
                self.assertLess(left["x"] + left["width"], right["x"] + 1)

    def test_banner(self):
        for boxes in (self.measured, self.shown):
            banner = next(box for box in boxes if box["tag"] == "img")
            self.assertTrue(banner["loaded"])
            middle = banner["x"] + banner["width"] / 2
            self.assertAlmostEqual(middle, self.window["width"] / 2, delta=4)
            # No page needs a horizontal scroll bar for it: MSHTML leaves some 606 pixels on Windows.
            self.assertLessEqual(banner["width"], 600)
        sizes = [next((box["width"], box["height"]) for box in boxes if box["tag"] == "img")
                 for boxes in (self.measured, self.shown)]
        self.assertEqual(*sizes)

    def test_stand_in_has_the_same_boxes(self):
        name = lambda box: (box["tag"], box["id"], box["class"], box["text"] if box["tag"] in ("h2", "span") else "")
        self.assertEqual([name(box) for box in self.shown], [name(box) for box in self.measured])

    def test_stand_in_has_them_in_the_same_places(self):
        def places(boxes):
            """The boxes' numbers in the document, row by row as they are seen."""
            return [[boxes.index(box) for box in row] for row in in_sight_order(boxes)]

        for kind in (links, columns, headings):
            self.assertEqual(places(kind(self.shown)), places(kind(self.measured)))
        half = self.window["width"] / 2
        side = lambda boxes: {box["id"]: box["x"] < half for box in links(boxes)}
        self.assertEqual(side(self.shown), side(self.measured))
        # The same style sheet and the same fonts' fallback: nothing is far from where a browser has it.
        for shown, measured in zip(links(self.shown), links(self.measured)):
            self.assertAlmostEqual(shown["x"], measured["x"], delta=12, msg=shown["id"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
