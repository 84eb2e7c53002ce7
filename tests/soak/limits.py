# SPDX-License-Identifier: BSD-3-Clause
"""What a process that lives long may hold while nothing of ours is alive in it, and how that is seen.

The first fifth of a run is its warm-up: libraries make their tables, and the allocator finds out how
many heaps the threads need. What comes after it is held against its end.
"""

import statistics

MIB = 1024 * 1024

# Names as in the lines of soak_host: what it is called, what may be added to it after the warm-up under
# no sanitizer and under one, and why that much.
GROWTH = (
    ("heap", "heap in use", 256 * 1024, 4 * MIB,
     "the C library keeps some bytes of each thread and of each library that comes and goes"),
    ("resident", "resident memory", 32 * MIB, 128 * MIB,
     "the allocator gives heaps of threads back in parts, and late"),
    ("descriptors", "descriptors", 0, 0, "none of ours stays open"),
    ("threads", "threads", 0, 0, "all of ours end with what they work for"),
    ("temporary", "temporary files", 0, 0, "all of ours are gone with what made them"),
)

# Under a sanitizer the C library keeps for good what it was told to call at a module's end: 1.7 KB a
# load, of one that is only loaded and unloaded, too.
SANITIZED_BYTES_A_LOAD = 2048
WARM_UP = 0.2


def after_warm_up(samples):
    end = samples[-1]["seconds"]
    return [sample for sample in samples if sample["seconds"] >= WARM_UP * end]


def growth(samples, name):
    """How much more there is at the end than after the warm-up. Of memory, by the medians of the first
    and of the last quarter, as it goes up and down; of what can be counted, by the largest number."""
    flat = [sample[name] for sample in after_warm_up(samples)]
    part = max(1, len(flat) // 4)
    first = flat[:part]
    if name in ("heap", "resident"):
        return statistics.median(flat[-part:]) - statistics.median(first)
    return max(flat) - min(first)


def judged(samples, is_sanitized):
    """Of each of them: what it is called, seen at the warm-up's end and at the most, grown by, limit,
    reason, and whether it held."""
    rows = []
    for name, called, plain, sanitized, reason in GROWTH:
        limit = sanitized if is_sanitized else plain
        if is_sanitized and name == "heap":
            limit += SANITIZED_BYTES_A_LOAD * growth(samples, "loads")
        flat = [sample[name] for sample in after_warm_up(samples)]
        grown = growth(samples, name)
        rows.append((called, flat[0], max(flat), grown, limit, reason, grown <= limit))
    return rows
