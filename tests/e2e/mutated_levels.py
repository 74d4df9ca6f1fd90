#!/usr/bin/python3
# Damaged PWADs: a one-level PWAD is mutated in many ways (flipped bits, truncations, wild
# header counts and directory offsets, lump offsets and sizes, renamed and swapped entries,
# out-of-range references inside the level lumps), and each mutant goes through
# `kelvar-cli level`, `render` and `save` (every other one with nodes). Whatever the damage, no
# run may die by a signal or hang, every run ends with one of kelvar-cli's exit codes, and
# every failure says why on stderr.
# usage: mutated_levels.py KELVAR_CLI WORKDIR [MUTANTS [SEED]]
# SPDX-License-Identifier: GPL-3.0-or-later
import collections
import concurrent.futures
import os
import random
import signal
import struct
import subprocess
import sys

IWAD = "/usr/share/games/doom/freedoom2.wad"
LEVEL = "MAP01"
TIMEOUT = 20
INT32 = [0, 1, -1, 12, 0x7FFFFFFF, -0x80000000, 2000000000, 0x10000000, 0x7FFFFFF0]

# Fields of the level lumps that refer to other objects: (lump, record size, field offsets).
REFERENCES = [
    ("LINEDEFS", 14, [0, 2, 10, 12]),
    ("SIDEDEFS", 30, [28]),
    ("SEGS", 12, [0, 2, 6]),
    ("SSECTORS", 4, [0, 2]),
    ("NODES", 28, [24, 26]),
]
RECORD_SIZES = {"THINGS": 10, "LINEDEFS": 14, "SIDEDEFS": 30, "VERTEXES": 4, "SECTORS": 26,
                "SEGS": 12, "SSECTORS": 4, "NODES": 28}
NAMES = [b"THINGS", b"LINEDEFS", b"SIDEDEFS", b"VERTEXES", b"SEGS", b"SSECTORS", b"NODES",
         b"SECTORS", b"REJECT", b"BLOCKMAP", b"BEHAVIOR", b"MAP01", b"F_START", b"GL_VERT", b""]


def directory(data):
    count, offset = struct.unpack_from("<ii", data, 4)
    return [(offset + 16 * i, *struct.unpack_from("<ii8s", data, offset + 16 * i))
            for i in range(count)]


def entry(data, name):
    for at, offset, size, entry_name in directory(data):
        if entry_name.rstrip(b"\0") == name.encode():
            return at, offset, size
    raise KeyError(name)


def wild(rng, near):
    return rng.choice(INT32 + [near - 1, near + 1, near + rng.randint(-64, 64),
                               rng.randint(-2**31, 2**31 - 1)])


def flip_bits(rng, data):
    for _ in range(rng.randint(1, 24)):
        data[rng.randrange(len(data))] ^= 1 << rng.randrange(8)
    return "flipped bits"


def truncate(rng, data):
    keep = rng.randrange(len(data))
    del data[keep:]
    return f"cut to {keep} bytes"


def header_count(rng, data):
    count = struct.unpack_from("<i", data, 4)[0]
    value = wild(rng, count)
    struct.pack_into("<i", data, 4, value)
    return f"lump count {value}"


def header_offset(rng, data):
    offset = struct.unpack_from("<i", data, 8)[0]
    value = rng.choice([wild(rng, offset), len(data) - rng.randint(0, 20)])
    struct.pack_into("<i", data, 8, value)
    return f"directory offset {value}"


def lump_place(rng, data):
    at, offset, size, name = rng.choice(directory(data))
    field = rng.randrange(2)
    value = rng.choice([wild(rng, (offset, size)[field]), len(data) - offset,
                        len(data) - offset + 1, len(data)])
    struct.pack_into("<i", data, at + 4 * field, value)
    return f"{name.rstrip(bytes(1)).decode()} {('offset', 'size')[field]} {value}"


def lump_name(rng, data):
    entries = directory(data)
    if rng.randrange(2):
        a, b = rng.sample(entries, 2)
        data[a[0]:a[0] + 16], data[b[0]:b[0] + 16] = data[b[0]:b[0] + 16], data[a[0]:a[0] + 16]
        return f"swapped {a[3].rstrip(bytes(1))} and {b[3].rstrip(bytes(1))}"
    at = rng.choice(entries)[0]
    name = rng.choice(NAMES)
    data[at + 8:at + 16] = name.ljust(8, b"\0")
    return f"renamed an entry to {name}"


def record_size(rng, data):
    name = rng.choice(sorted(RECORD_SIZES))
    at, _, size = entry(data, name)
    value = max(0, size - rng.randint(1, RECORD_SIZES[name] - 1)) if rng.randrange(2) else 0
    struct.pack_into("<i", data, at + 4, value)
    return f"{name} size {value}"


def references(rng, data):
    name, record, fields = rng.choice(REFERENCES)
    _, offset, size = entry(data, name)
    count = size // record
    for _ in range(rng.randint(1, 8)):
        field = offset + rng.randrange(count) * record + rng.choice(fields)
        struct.pack_into("<H", data, field, rng.choice([0xFFFF, 0xFFFE, 0x8000, count,
                                                        rng.randrange(0x10000)]))
    return f"references in {name}"


MUTATIONS = [flip_bits, truncate, header_count, header_offset, lump_place, lump_name,
             record_size, references]


def run(env, command):
    """Runs one command; returns its exit status and what is wrong with the run, if anything."""
    # A session of its own, so a run that hangs goes with kelvarbsp and zdbsp under it.
    process = subprocess.Popen(command, env=env, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, start_new_session=True)
    try:
        _, stderr = process.communicate(timeout=TIMEOUT)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return None, "hung"
    status = process.returncode
    if status < 0:
        return status, f"died by signal {-status}"
    if b"terminate called" in stderr:
        return status, "uncaught exception"
    if status not in (0, 2, 4):
        return status, f"exit {status}"
    if status != 0 and not stderr.strip():
        return status, f"exit {status} without a message"
    return status, None


def check(cli, work, env, index, what):
    mutant = os.path.join(work, f"mutant{index}.wad")
    out = os.path.join(work, f"out{index}.wad")
    problems = []
    statuses = []
    for command in (["level", IWAD, mutant, LEVEL],
                    ["render", IWAD, mutant, LEVEL, "-o", out + ".png", "--size", "160x120"],
                    # Every other save builds nodes, so kelvarbsp sees what the save wrote.
                    ["save", IWAD, mutant, LEVEL, "-o", out] + ["--nodes"] * (index % 2)):
        status, problem = run(env, [cli, *command])
        statuses.append(status)
        if problem:
            problems.append(f"mutant {index} ({what}): {command[0]} {problem}")
    for path in (mutant, out, out + ".png"):
        if os.path.exists(path):
            os.remove(path)
    return problems, statuses


def main():
    cli, work = sys.argv[1], sys.argv[2]
    mutants = int(sys.argv[3]) if len(sys.argv) > 3 else 300
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    os.makedirs(work, exist_ok=True)
    env = dict(os.environ, XDG_CONFIG_HOME=os.path.join(work, "config"))
    base = os.path.join(work, "base.wad")
    if os.path.exists(base):
        os.remove(base)
    made = subprocess.run([cli, "save", IWAD, LEVEL, "-o", base], env=env, capture_output=True)
    if made.returncode != 0:
        print(f"the base PWAD could not be saved:\n{made.stderr.decode()}")
        return 1
    original = open(base, "rb").read()

    rng = random.Random(seed)
    jobs = []
    for index in range(mutants):
        data = bytearray(original)
        what = rng.choice(MUTATIONS)(rng, data)
        with open(os.path.join(work, f"mutant{index}.wad"), "wb") as f:
            f.write(data)
        jobs.append((index, what))
    problems = []
    statuses = collections.Counter()
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        for found, codes in pool.map(lambda job: check(cli, work, env, *job), jobs):
            problems.extend(found)
            statuses.update(codes)
    for problem in problems:
        print(problem)
    print(f"{mutants} mutants, seed {seed}: {len(problems)} problems; exit statuses of the runs: "
          f"{dict(sorted(statuses.items(), key=str))}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
