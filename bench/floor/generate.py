#!/usr/bin/env python3
"""Writes the tables that the floor and the data source are compared on.

    generate.py FOLDER [--sets mixed,numeric,text,wide,fixed] [--scale X] [--rows N] [--columns N]

Sets, with their rows at --scale 1:

    mixed    1,000,000 x 10   what most tables look like: numbers, dates, texts, quotes, a position
    numeric  1,000,000 x 20   floating-point numbers: 8 with 6 decimals, 6 with 2, 4 with all their
                              digits, 2 with exponents
    text     1,000,000 x 8    ASCII words, nothing quoted
    wide        20,000 x 500  whole numbers; --columns makes more or fewer
    fixed    1,000,000 x 20   the numbers of `numeric` in columns of 24 characters, with a schema.ini

The same options give the same bytes on every machine: only Random.getrandbits is used, whose
sequence the language fixes. Needs nothing but Python's standard library.
"""
import argparse
import os
import random

ROWS = {
    "mixed": 1_000_000,
    "numeric": 1_000_000,
    "text": 1_000_000,
    "wide": 20_000,
    "fixed": 1_000_000,
}
FIXED_COLUMNS = 20
FIXED_WIDTH = 24
SEED = 20240229

WORDS = (
    "river bridge harbour meadow signal north lower quarry station mill valley field orchard "
    "crossing tower market abbey common ridge forest spring hollow gate lane weir copse farm "
    "chapel moor basin shelter kiln depot wharf lodge terrace avenue parade arcade"
).split()
FOREIGN_WORDS = (
    "Zürich Köln Málaga Łódź Århus Besançon São Gävle Plzeň Győr Αθήνα Москва Київ "
    "東京 大阪 Đà Nẵng İzmir Reykjavík Škofja"
).split()
CODES = "AX BK CF DM EQ FT GW HZ JP KR LN MS NV PX".split()
KINDS = ("residential", "industrial", "retail", "park", "school", "transport", "water", "mixed use")


def pick(choices, bits):
    return choices[bits % len(choices)]


def label_of(c):
    words = [pick(WORDS, c >> k) for k in (3, 9, 15, 21)]
    if (c >> 27) % 10 >= 3:
        return " ".join(words[: 3 + (c >> 41 & 1)])
    words[1] = pick(FOREIGN_WORDS, c >> 31)
    return " ".join(words + [pick(FOREIGN_WORDS, c >> 36)])


def remark_of(c, label):
    first, second = pick(WORDS, c >> 44), pick(WORDS, c >> 50)
    form = c >> 42 & 3
    if form == 0:
        return '"%s, ""%s"" and %s"' % (first, second, label[:8].strip())
    if form == 1:
        return '"%s, %s"' % (second, first)
    if form == 2:
        return '"the ""%s"" %s, no. %d"' % (first, second, (c >> 56) % 97)
    return '"%s %s"' % (first, second)


def angle(seconds, letter):
    return "%d°%02d'%02d\"\"%s" % (seconds // 3600, seconds // 60 % 60, seconds % 60, letter)


def mixed(bits, rows, _):
    yield "id,count,measure,amount,day,stamp,kind,label,remark,position\n"
    for row in range(rows):
        a, b, c = bits(64), bits(64), bits(64)
        count = "" if a % 20 == 0 else str((a >> 8) % 5000 - 500)
        date = "%04d-%02d-%02d" % (1950 + (b >> 30) % 80, 1 + (b >> 37) % 12, 1 + (b >> 41) % 28)
        time = "%02d:%02d:%02d" % ((b >> 46) % 24, (b >> 51) % 60, (b >> 57) % 60)
        label = label_of(c)
        position = '"%s %s"' % (
            angle((a >> 30) % 324000, "NS"[a >> 60 & 1]),
            angle((b >> 12) % 648000, "EW"[a >> 61 & 1]),
        )
        yield "%d,%s,%.6f,%.2f,%s,%sT%s,%s,%s,%s,%s\n" % (
            row + 1,
            count,
            ((a >> 21) % 360_000_000) / 1e6 - 180.0,
            (b % 1_000_000_000) / 100.0,
            date,
            date,
            time,
            KINDS[c & 7],
            label,
            remark_of(c, label),
            position,
        )


def fraction(bits):
    return bits(53) / 2.0**53


def doubles(bits):
    values = ["%.6f" % (bits(29) / 1e6 - 268.0) for _ in range(8)]
    values += ["%.2f" % (bits(30) / 100.0 - 5e6) for _ in range(6)]
    values += [repr(fraction(bits) * 10.0 ** (k * 2)) for k in range(4)]
    values += ["%.9e" % (fraction(bits) * 10.0 ** (bits(5) - 16)) for _ in range(2)]
    return values


def numeric(bits, rows, _):
    yield ",".join("v%02d" % i for i in range(FIXED_COLUMNS)) + "\n"
    for _ in range(rows):
        yield ",".join(doubles(bits)) + "\n"


def fixed(bits, rows, _):
    line = "%%%ds" % FIXED_WIDTH * FIXED_COLUMNS + "\n"
    for _ in range(rows):
        yield line % tuple(doubles(bits))


def text(bits, rows, _):
    yield "code,name,street,kind,owner,note,district,ref\n"
    for _ in range(rows):
        a, b = bits(64), bits(64)
        yield "%s,%s %s,%s %s,%s,%s-%s,%s %s %s,%s,%s%04d%s\n" % (
            pick(CODES, a),
            pick(WORDS, a >> 4),
            pick(WORDS, a >> 10),
            pick(WORDS, a >> 16),
            pick(WORDS, a >> 22),
            KINDS[a >> 28 & 7],
            pick(WORDS, a >> 31),
            pick(CODES, a >> 37),
            pick(WORDS, b >> 3),
            pick(WORDS, b >> 9),
            pick(WORDS, b >> 15),
            pick(WORDS, b >> 21),
            pick(CODES, b >> 27),
            (b >> 31) % 10000,
            pick(CODES, b >> 46),
        )


def wide(bits, rows, columns):
    columns = columns or 500
    yield ",".join("c%03d" % i for i in range(columns)) + "\n"
    for _ in range(rows):
        raw = bits(columns * 24).to_bytes(columns * 3, "little")
        # From one digit to seven.
        yield ",".join(
            str((raw[k] | raw[k + 1] << 8 | raw[k + 2] << 16) - 8000000 >> (raw[k] & 15))
            for k in range(0, columns * 3, 3)
        ) + "\n"


def section(file_name):
    lines = ["[%s]" % file_name, "Format=FixedLength", "ColNameHeader=False"]
    for i in range(FIXED_COLUMNS):
        lines.append("Col%d=v%02d Double Width %d" % (i + 1, i, FIXED_WIDTH))
    return "\n".join(lines) + "\n"


def write(folder, name, rows, columns=None):
    # Both hold the same values.
    seed = "numeric" if name == "fixed" else name
    bits = random.Random("%s-%d" % (seed, SEED)).getrandbits
    file_name = name + (".txt" if name == "fixed" else ".csv")
    with open(os.path.join(folder, file_name), "w", encoding="utf-8", newline="\n") as file:
        file.writelines(globals()[name](bits, rows, columns))
    if name == "fixed":
        with open(os.path.join(folder, "schema.ini"), "w", encoding="utf-8") as file:
            file.write(section(file_name))


def main():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("folder")
    parser.add_argument("--sets", default=",".join(ROWS))
    parser.add_argument("--scale", type=float, default=1.0)
    parser.add_argument("--rows", type=int)
    parser.add_argument("--columns", type=int)
    options = parser.parse_args()
    os.makedirs(options.folder, exist_ok=True)
    for name in options.sets.split(","):
        rows = options.rows or max(1, int(ROWS[name] * options.scale))
        write(options.folder, name, rows, options.columns)


if __name__ == "__main__":
    main()
