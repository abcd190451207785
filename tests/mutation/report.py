"""The result of a sample in words: counts by folder and the survivors."""
from collections import Counter

from build import HANGS
from draw import folder_of
from record import NOT_VIABLE, SURVIVED

COLUMNS = ("killed", "survived", "equivalent", "not viable")


def difference(fault, text):
    original, changed = fault.lines(text)
    return "\n".join([f"{fault.path}:{fault.line} ({fault.function or 'data'}, {fault.operator})",
                      *("-" + line for line in original.splitlines()),
                      *("+" + line for line in changed.splitlines())])


def column(result, is_equivalent):
    return "equivalent" if result.verdict == SURVIVED and is_equivalent else result.verdict


def percent(part, whole):
    return f"{100 * part / whole:.1f} %" if whole else "-"


def table(counts):
    """counts: for each folder how many are in each column."""
    lines = [f"{'':12}" + "".join(f"{name:>12}" for name in COLUMNS) + f"{'survived of all':>18}"]
    total = Counter()
    for folder in sorted(counts):
        total.update(counts[folder])
    for name, row in [*sorted(counts.items()), ("together", total)]:
        tried = sum(row[name] for name in COLUMNS if name != NOT_VIABLE)
        lines.append(f"{name:12}" + "".join(f"{row[name]:12}" for name in COLUMNS)
                     + f"{percent(row[SURVIVED], tried):>18}")
    return "\n".join(lines)


def unlisted_survivors(results, equivalents, texts):
    """texts: for each path the source without the fault."""
    return [result for result in sorted(results) if result.verdict == SURVIVED
            and not equivalents.reason(result.fault, texts[result.fault.path])]


def report(results, equivalents, texts):
    counts, noticed = {}, []
    for result in sorted(results):
        reason = equivalents.reason(result.fault, texts[result.fault.path])
        name = column(result, reason)
        counts.setdefault(folder_of(result.fault), Counter())[name] += 1
        if reason and result.verdict == "killed":
            noticed.append(difference(result.fault, texts[result.fault.path]))
    survivors = [difference(result.fault, texts[result.fault.path])
                 for result in unlisted_survivors(results, equivalents, texts)]
    parts = [table(counts)]
    if survivors:
        parts.append("Survivors:\n\n" + "\n\n".join(survivors))
    waited = [result for result in results if result.noticed.endswith(HANGS)]
    if waited:
        parts.append("Killed since a test waited until its time was over:\n\n" + "\n\n".join(
            difference(result.fault, texts[result.fault.path]) for result in waited))
    if noticed:
        parts.append("Listed as equivalent, and yet noticed by a test:\n\n" + "\n\n".join(noticed))
    return "\n\n".join(parts)
