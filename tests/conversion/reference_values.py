#!/usr/bin/env python3
"""Reference values for the value conversion tests, computed by Python.

  reference_values.py dates OUT FIRST_YEAR LAST_YEAR
      Every day from 1 January FIRST_YEAR to 31 December LAST_YEAR as
      little-endian records (int32 ordinal of datetime.date.toordinal(),
      int16 year, uint8 month, uint8 day).

  reference_values.py integers OUT SEED TYPE...
      TYPE is name:bits:s or name:bits:u.  Writes text lines
          P <type> <hex of text> <decimal value | E2701 | E2702>
      for texts made from Python integers at and around the type's limits
      and at random magnitudes, with blanks and '+' signs around them, and
          F <width> <leftAlign> <value> <hex of field> <digit count>
      for fixed-width fields of random values.
"""
import datetime
import random
import struct
import sys

LIMIT_64 = 2 ** 64 - 1  # the base form's accumulator


def dates(out, first, last):
    start = datetime.date(first, 1, 1).toordinal()
    end = datetime.date(last, 12, 31).toordinal()
    pack = struct.Struct("<ihBB").pack
    with open(out, "wb") as f:
        chunk = []
        for ordinal in range(start, end + 1):
            d = datetime.date.fromordinal(ordinal)
            assert d.toordinal() == ordinal
            chunk.append(pack(ordinal, d.year, d.month, d.day))
            if len(chunk) == 65536:
                f.write(b"".join(chunk))
                chunk = []
        f.write(b"".join(chunk))


def expected(text, n, bits, signed):
    """What the parse of `text`, which Python reads as n, must give."""
    if "-" in text and not signed:
        return "E2702"
    low, high = (-(2 ** (bits - 1)), 2 ** (bits - 1) - 1) if signed else (0, 2 ** bits - 1)
    if low <= n <= high:
        return str(n)
    return "E2701"


def decorate(rng, digits, negative):
    blanks = [" ", "\t", "\n", "\r", "\v", "\f"]
    lead = "".join(rng.choice(blanks) for _ in range(rng.randrange(3)))
    pluses = "".join(rng.choice(blanks + ["+"]) for _ in range(rng.randrange(4)))
    tail = "".join(rng.choice(blanks) for _ in range(rng.randrange(3)))
    sign = "-" if negative else ""
    return lead + sign + pluses + digits + tail


def integers(out, seed, types):
    rng = random.Random(seed)
    specials = set()
    for k in range(0, 66):
        for delta in (-1, 0, 1):
            specials.add(2 ** k + delta)
    for k in range(0, 21):
        for delta in (-1, 0, 1):
            specials.add(10 ** k + delta)
    lines = []
    for entry in types:
        name, bits, kind = entry.split(":")
        bits, signed = int(bits), kind == "s"
        values = set(specials)
        values |= {2 ** (bits - 1) - 1, 2 ** (bits - 1), 2 ** bits - 1, 2 ** bits}
        values |= {rng.getrandbits(rng.randrange(1, 70)) for _ in range(3000)}
        for v in sorted(values):
            for negative in (False, True):
                n = -v if negative else v
                # The plain text, as Python's str() writes the integer.
                lines.append((name, str(n), expected(str(n), n, bits, signed)))
                text = decorate(rng, str(v), negative)
                if negative and v == 0:
                    # "-0" is still zero to Python, and a '-' to unsigned forms.
                    lines.append((name, text, expected(text, 0, bits, signed)))
                    continue
                lines.append((name, text, expected(text, n, bits, signed)))
                # Leading zeros do not count against the limit.
                lines.append((name, "000" + str(v), expected("", v, bits, signed)))
    with open(out, "w") as f:
        for name, text, result in lines:
            f.write("P %s %s %s\n" % (name, text.encode().hex() or "-", result))
        for _ in range(4000):
            width = rng.randrange(0, 16)
            left = rng.randrange(2)
            value = rng.getrandbits(rng.randrange(1, 40))
            positions = min(width, 10)
            digits = "" if value == 0 else str(value)
            if len(digits) > positions:
                area, count = "*" * positions, 0
            else:
                area = digits.ljust(positions) if left else digits.rjust(positions)
                count = len(digits)
            field = area + " " * (width - positions) if left else " " * (width - positions) + area
            f.write("F %d %d %d %s %d\n" % (width, left, value, field.encode().hex() or "-", count))


def main():
    if sys.argv[1] == "dates":
        dates(sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
    elif sys.argv[1] == "integers":
        integers(sys.argv[2], int(sys.argv[3]), sys.argv[4:])
    else:
        sys.exit("unknown mode " + sys.argv[1])


if __name__ == "__main__":
    main()
