"""What a build makes from a file, directly or not, as ninja knows it."""
import re
import subprocess
from pathlib import Path

NODE = re.compile(r'"(0x[0-9a-f]+)" \[label="([^"]*)"(, shape=ellipse)?')
EDGE = re.compile(r'"(0x[0-9a-f]+)" -> "(0x[0-9a-f]+)"(.*)')


def read_graph(dot):
    """Pairs (from, to) of ninja's graph in Graphviz's form; an order alone is no dependence."""
    labels, pairs = {}, []
    for line in dot.splitlines():
        node, edge = NODE.match(line), EDGE.match(line)
        if edge and "dotted" not in edge[3]:
            pairs.append((edge[1], edge[2]))
        elif node:
            # A rule with several inputs or outputs is a node too, which is no file.
            labels[node[1]] = node[1] if node[3] else node[2]
    return [(labels.get(one, one), labels.get(other, other)) for one, other in pairs]


def read_deps(listing):
    """Pairs (header or source, object) of ninja's list of what the compiler read."""
    pairs, target = [], None
    for line in listing.splitlines():
        if line.startswith("    "):
            pairs.append((line.strip(), target))
        elif ": #deps" in line:
            target = line.split(": #deps")[0]
    return pairs


class Dependence:
    def __init__(self, build):
        self.build = build
        self.users = {}
        pairs = read_graph(self.ask("graph")) + read_deps(self.ask("deps"))
        for one, other in pairs:
            self.users.setdefault(self.absolute(one), set()).add(self.absolute(other))

    def ask(self, tool):
        return subprocess.run(["ninja", "-C", self.build, "-t", tool], check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def absolute(self, name):
        return name if name.startswith("0x") else str(Path(self.build) / name)

    def made_from(self, path):
        """The files that the build makes from this one."""
        made, waiting = set(), [str(path)]
        while waiting:
            for user in self.users.get(waiting.pop(), ()):
                if user not in made:
                    made.add(user)
                    waiting.append(user)
        return {Path(name) for name in made if Path(name).is_file()}
