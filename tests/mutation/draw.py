"""Which faults are put in: drawn by a seeded random generator, from each folder as many as is its
share of the lines that a fault can be put into."""
import random
from pathlib import PurePosixPath


def folder_of(fault):
    return str(PurePosixPath(fault.path).parent)


def by_line(faults):
    lines = {}
    for fault in faults:
        lines.setdefault((fault.path, fault.line), []).append(fault)
    return lines


def shuffled(faults, generator):
    """All faults of a folder: each line gives one before a line gives another one."""
    lines = list(by_line(faults).values())
    for line in lines:
        generator.shuffle(line)
    generator.shuffle(lines)
    order = []
    for turn in range(max(map(len, lines), default=0)):
        order += [line[turn] for line in lines if len(line) > turn]
    return order


def shares(sizes, total):
    """Splits the total in proportion to the sizes; the largest remainders get what is left."""
    whole = sum(sizes.values())
    exact = {name: total * size / whole for name, size in sizes.items()}
    split = {name: int(share) for name, share in exact.items()}
    for name in sorted(exact, key=lambda name: (split[name] - exact[name], name)):
        if sum(split.values()) < total:
            split[name] += 1
    return split


class Chosen:
    """Hands out these faults; none takes the place of one that cannot be compiled any more."""

    def __init__(self, faults):
        self.waiting = sorted(faults, reverse=True)

    def next(self):
        return self.waiting.pop() if self.waiting else None

    def replace(self, fault):
        pass


class Sample:
    """Hands out faults until each folder has as many as its share that could be compiled."""

    def __init__(self, faults, size, seed):
        folders = {}
        for fault in faults:
            folders.setdefault(folder_of(fault), []).append(fault)
        self.shares = shares({name: len(by_line(members)) for name, members in folders.items()},
                             size)
        self.waiting = {}
        for name, members in sorted(folders.items()):
            generator = random.Random(f"{seed} {name}")
            self.waiting[name] = shuffled(members, generator)[::-1]
        self.taken = dict.fromkeys(folders, 0)

    def next(self):
        """A fault of the folder that is furthest behind its share; None when there is none."""
        open_folders = [name for name in self.shares
                        if self.taken[name] < self.shares[name] and self.waiting[name]]
        if not open_folders:
            return None
        name = min(open_folders, key=lambda name: (self.taken[name] / self.shares[name], name))
        self.taken[name] += 1
        return self.waiting[name].pop()

    def replace(self, fault):
        """One that could not be compiled does not count: another one takes its place."""
        self.taken[folder_of(fault)] -= 1
