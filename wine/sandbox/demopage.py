"""What the page of the demonstration's development installation shows and what its links start, written
by hand in demo/development/page.json: the tests' one list of it."""
import json

from .places import DEMO

# In the order of the grid, two to a row: key, title, links; of a link its id, its label, its type as
# kordiag says it, and the whole command line that a click leads to.
SECTIONS = json.loads((DEMO / "development/page.json").read_text(encoding="utf-8"))
# The headings, each with the labels of its links.
DEVELOPMENT = [(section["title"], [link["label"] for link in section["links"]]) for section in SECTIONS]
# Id and command line.
LINKS = {link["id"]: link["starts"] for section in SECTIONS for link in section["links"]}


def row_heights(page, section=45, item=20):
    """Of a page like DEVELOPMENT, in pixels: of the two sections of a row the taller one's."""
    lengths = [len(labels) for _, labels in page]
    return [section + item * max(lengths[at:at + 2]) for at in range(0, len(lengths), 2)]
