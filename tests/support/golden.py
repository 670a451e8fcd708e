#!/usr/bin/env python3
"""Golden settings files and memory blocks of the nine models, from arithmetic of their own.

    golden.py           writes tests/device/golden/<code>.ust, <code>.blocks and <code>.fields, the
                        fields that the blocks hold as describe() of imagefields.h has them
    golden.py --check   compares what it would write with what is there

The recipe. k is the row of a model in MODELS (from 0), n its number of channels, c a channel
(from 0). All numbers are computed in double precision and stored in single.

    settings            as in MODELS; the measurement time is k
    serial number       1000 + 257 k
    name                NAMES[k - 6] for the extended models
    R1 to R4            200 + (2 k + 1) / 64;  -1500.1 - k;  1 / (k + 3);  3.000005 + 0.1 k
    Uref                299.99999 + 100 k
    T0                  k + 0.125, negative for odd k
    a, b of R1 .. Uref  COEFFICIENTS[0 .. 9] * (k + 1)
    zero shift s        (s - 10 - k) * SHIFT_SCALES[s % 5], s from 0 to 36 in the order of the block
    channel c           off when (c + k) % 3 is 0
        measures        MEASUREMENTS[(c + k) % 4], in the unit UNITS[(c / 4 + k) % 4] if it is 0x11
        current         (3 c + k) % number of currents
        resistor        (c + 2 k) % number of resistors
        characteristic  from SOURCES[(c / 2 + k) % 4], index (7 c + 3 k) % 13 or 16
        compensation    from COMPENSATIONS[(c + c / 4 + k) % 4], index (6 c + 3 k) % 13 or 16
                        (13 for the standard lists, 16 for the others)
    own characteristic  type (c + k) % 4, name FEATURE_NAMES[(c + k) % 5]
        types 0, 2      entry i (of 10, 9) is ENTRIES[(i + c) % 10]; the numbers are those of all 10
        type 1          entries CALLENDAR; number i of 10 is (i + 1) (c + 1) / 8, negative if i is odd
        type 3          56 pairs; pair p beyond the last of 56 - 6 k different ones repeats that:
                        (1990 p - 9999 + c) / 10 and (100 p p - 99999 + c) / 10000
    date and time       2026-11-24 17:05:09, a Tuesday
    logger              start at that moment; for i from 0 to 3 the time mark 2.5 i, then channel
                        i * (n - 1) / 3 with -0.1 - i and the type 0x00, 0x10, 0x20, 0x30;
                        last a record of type 0
"""

import struct
import sys
from decimal import ROUND_HALF_UP, Context, Decimal
from pathlib import Path

GOLDEN = Path(__file__).resolve().parent.parent / "device" / "golden"

CURRENTS = (
    ("1mA", "1.5mA"),
    ("0.1mA", "0.2mA", "1mA", "1.5mA"),
    ("0.1mA", "0.2mA", "0.4mA", "0.7mA", "1mA", "1.5mA", "2mA", "4mA"),
    ("0.4mA", "0.7mA", "1mA", "1.5mA", "2mA", "2.5mA", "3mA", "4mA"),
)
# code, base model's name, channels, resistors, currents, family;
# mode, rounding, compensation, reversal, short circuit
MODELS = (
    (0x01, "NOX A", 8, 1, CURRENTS[0], 0, 0, 0x00, 0, 0x00, 0),
    (0x11, "NOX B", 8, 2, CURRENTS[1], 1, 1, 0x10, 1, 0x10, 0),
    (0x21, "NOX C", 8, 4, CURRENTS[2], 2, 2, 0x20, 1, 0x00, 0),
    (0x22, "NOX CM", 8, 4, CURRENTS[2], 2, 1, 0x00, 2, 0x10, 1),
    (0x31, "NOX D", 8, 4, CURRENTS[3], 3, 2, 0x10, 0, 0x00, 0),
    (0x41, "NOX CM1", 16, 4, CURRENTS[2], 4, 0, 0x20, 1, 0x10, 1),
    (0x0950AA0F, "NOX CM", 8, 4, CURRENTS[2], 2, 2, 0x00, 2, 0x10, 0),
    (0x0960AA0F, "NOX CM1", 16, 4, CURRENTS[2], 4, 0, 0x10, 0, 0x00, 1),
    (0x0970AA0F, "NOX D", 8, 4, CURRENTS[3], 3, 1, 0x20, 1, 0x10, 1),
)
NAMES = ("Эталонный прибор", "Ёмкий щуп № 0007", "Печь «Юг», °C µ±")
COEFFICIENTS = (3.9083e-3, -5.775e-7, 1e-5, -1.25e-4, 123456.5, -1234567, 1e-4, -1e-30, 1.5e10, 0)
SHIFT_SCALES = (1e-7, 0.001, 1, 12345.5, 1e9)
MEASUREMENTS = (0x00, 0x10, 0x11, 0x20)
UNITS = ("K", "°F", "мкК", "градус.№10")
SOURCES = (0x00, 0x40, 0x80, 0xC0)
COMPENSATIONS = (0x00, 0x10, 0x20, 0x30)
FEATURE_NAMES = ("Термопара платинородиевая № 1234 (Юг-2)", "", "A", "Градуировка «№ 7», °C",
                 "Ё µ±0.01")
ENTRIES = (
    ("1", 1), ("-0.0039083", -0.0039083), ("5.775E-7", 5.775e-7), ("-4.183e-12", -4.183e-12),
    ("12,5", 12.5), ("", 0), ("-1234567890.1234567", -1234567890.1234567), ("+7", 7), ("-", 0),
    ("0.00000000000000001", 1e-17),
)
CALLENDAR = ("100", "3.9083E-3", "-5.775E-7", "-4.183E-12", "-50", "850")
MOMENT = bytes((17, 5, 9, 0, 24, 11, 26, 2))


def single(number):
    return struct.unpack(">f", struct.pack(">f", number))[0]


def floats(numbers):
    return b"".join(struct.pack(">f", number) for number in numbers)


def fixed(number, decimals):
    """What 'f' writes: halves go away from zero."""
    rounded = Decimal(number).quantize(Decimal(1).scaleb(-decimals), ROUND_HALF_UP)
    return f"{rounded:f}"


def general(number):
    """What 'g' with 6 significant digits writes."""
    if number == 0:
        return "0"
    rounded = Context(prec=6, rounding=ROUND_HALF_UP).create_decimal(Decimal(number)).normalize()
    exponent = rounded.adjusted()
    if -4 <= exponent < 6:
        return f"{rounded:f}"
    return f"{rounded.scaleb(-exponent).normalize():f}e{exponent:+03d}"


def digits(number):
    """What 'g' with 9 significant digits writes of a number in single precision."""
    return f"{single(number):.9g}"


def cp1251(text, size):
    return text.encode("cp1251").ljust(size, b"\0")


class Feature:
    def __init__(self, k, c):
        self.type = (c + k) % 4
        self.name = FEATURE_NAMES[(c + k) % 5]
        if self.type == 3:
            pairs = [min(p, 55 - 6 * k) for p in range(56)]
            self.pairs = [(single((1990 * p - 9999 + c) / 10),
                           single((100 * p * p - 99999 + c) / 10000)) for p in pairs]
        elif self.type == 1:
            self.entries = list(CALLENDAR)
            self.numbers = [(-1) ** i * (i + 1) * (c + 1) / 8 for i in range(10)]
        else:
            entries = [ENTRIES[(i + c) % 10] for i in range(10)]
            self.entries = [text for text, _ in entries[: 9 if self.type == 2 else 10]]
            self.numbers = [number for _, number in entries]

    def record(self):
        head = bytes((self.type, 0, 0, 0, len(self.name))) + cp1251(self.name, 39)
        if self.type == 3:
            return head + floats(number for pair in self.pairs for number in pair)
        slots = self.entries[:4] + (["0"] if self.type == 2 else []) + self.entries[4:]
        texts = b"".join(bytes((len(text),)) + cp1251(text, 19) for text in slots)
        return (head + floats(self.numbers) + texts).ljust(492, b"\0")

    def fields(self):
        if self.type == 3:
            numbers = [number for pair in self.pairs for number in pair]
            different = sorted(set(self.pairs))
            entries = [text for first, second in different
                       for text in (fixed(first, 1), fixed(second, 4))]
        else:
            numbers = self.numbers + [0] * 102
            entries = self.entries
        while entries and not entries[-1]:
            entries = entries[:-1]
        return [f"own type {self.type} '{self.name}'",
                "own numbers: " + " ".join(digits(number) for number in numbers),
                "own entries: '" + "' '".join(entries) + "'"]

    def form_code(self):
        return (0, 1, 3, 2)[self.type]

    def entry_lines(self):
        if self.type == 3:
            return [fixed(first * 10, 0).rjust(5) + fixed(second * 10000, 0).rjust(6)
                    for first, second in self.pairs]
        return self.entries + [""] * (56 - len(self.entries))

    def coefficient_lines(self):
        if self.type == 3:
            return [""] * 10
        gap = [""] if self.type == 2 else []
        lines = self.entries[:4] + gap + self.entries[4:]
        return lines + [""] * (10 - len(lines))


class Channel:
    def __init__(self, k, c, resistors, currents):
        self.on = 0 if (c + k) % 3 == 0 else 1
        self.measures = MEASUREMENTS[(c + k) % 4]
        self.unit = UNITS[(c // 4 + k) % 4] if self.measures == 0x11 else ""
        self.current = (3 * c + k) % len(currents)
        self.current_text = currents[self.current]
        self.resistor = (c + 2 * k) % resistors
        self.source = SOURCES[(c // 2 + k) % 4]
        self.index = (7 * c + 3 * k) % (13 if self.source in (0x40, 0x80) else 16)
        self.compensation = COMPENSATIONS[(c + c // 4 + k) % 4]
        limit = 13 if self.compensation in (0x10, 0x20) else 16
        self.compensation_index = (6 * c + 3 * k) % limit

    def record(self):
        return bytes((self.on, (self.measures & 0xF0) | self.current,
                      self.resistor << 4 | self.index,
                      self.source | self.compensation | self.compensation_index))

    def fields(self):
        return [f"on {self.on}", f"measures 0x{self.measures:x} in '{self.unit}'",
                f"current {self.current}, resistor {self.resistor}",
                f"characteristic 0x{self.source:x} {self.index}",
                f"compensation 0x{self.compensation:x} {self.compensation_index}"]

    def lines(self):
        code = {0x00: self.index + 1, 0x40: self.index + 21, 0x80: self.index + 41, 0xC0: 1}
        unit = {0x00: "Ом", 0x10: "°C", 0x11: "°C", 0x20: "mV"}
        return [("Выкл", "Вкл")[self.on], unit[self.measures],
                f"{self.current + 1} [{self.current_text}]", f"Rr {self.resistor + 1}",
                str(code[self.source])]

    def compensation_line(self):
        first = {0x00: 1, 0x10: 21}.get(self.compensation)
        return "" if first is None else str(first + self.compensation_index)


class Image:
    def __init__(self, k):
        (self.code, self.model, self.n, resistors, currents, self.family, self.mode, self.rounding,
         self.compensation, self.reversal, self.short_circuit) = MODELS[k]
        self.extended = self.code > 0xFF
        self.time = k
        self.number = 1000 + 257 * k
        self.name = NAMES[k - 6] if self.extended else ""
        self.values = [single(number) for number in (
            200 + (2 * k + 1) / 64, -1500.1 - k, 1 / (k + 3), 3.000005 + 0.1 * k,
            299.99999 + 100 * k)]
        self.t0 = (-1) ** k * (k + 0.125)
        self.coefficients = [single(number * (k + 1)) for number in COEFFICIENTS]
        self.shifts = [single((s - 10 - k) * SHIFT_SCALES[s % 5]) for s in range(37)]
        self.channels = [Channel(k, c, resistors, currents) for c in range(self.n)]
        self.features = [Feature(k, c) for c in range(self.n)]

    def settings_bytes(self):
        return bytes((self.time << 4 | self.mode, self.rounding | self.compensation,
                      self.reversal | self.short_circuit, 0))

    def configuration(self):
        return (self.settings_bytes() + b"".join(channel.record() for channel in self.channels)
                + bytes((self.family, 0, 0, 0))
                + b"".join(feature.record() for feature in self.features))

    def reference(self, stamp):
        numbers = [self.t0]
        for i, value in enumerate(self.values):
            numbers += [value, self.coefficients[2 * i], self.coefficients[2 * i + 1]]
        return floats(numbers) + stamp

    def identification(self):
        if self.extended:
            return struct.pack("<I", self.code) + cp1251(self.name, 16)
        return bytes((self.family, 0, 0, 0, self.code, 0)) + struct.pack(">H", self.number)

    def channel_block(self, c):
        return bytes((c, 0, 0, 0)) + self.settings_bytes() + self.channels[c].record()

    def logger(self):
        _, minute, second, _, day, month, year, _ = MOMENT
        records = bytes((0, day, month, year, MOMENT[0], minute, second, 0))
        for i, measurement in enumerate((0x00, 0x10, 0x20, 0x30)):
            records += bytes((1, 0, 0, 0)) + floats([2.5 * i])
            records += bytes((2, i * (self.n - 1) // 3)) + floats([-0.1 - i])
            records += bytes((measurement, 0))
        return records + bytes(8)

    def blocks(self):
        serial_number = struct.pack("<I", self.number)
        shifts = floats(self.shifts) if self.extended else b""
        blocks = {
            "configuration": self.configuration(),
            "reference": self.reference(bytes(8)),
            "referenceWritten": self.reference(MOMENT),
            "allReference": self.reference(bytes(8)) + shifts,
            "identificationRead": self.identification() + (serial_number if self.extended else b""),
            "identificationWritten": self.identification(),
            "channel0": self.channel_block(0),
            "channelLast": self.channel_block(self.n - 1),
            "dateTime": MOMENT,
            "logger": self.logger(),
        }
        if self.extended:
            blocks.update(shifts=shifts, serialNumber=serial_number)
        return blocks

    def fields(self):
        def triple(name, i):
            a, b = self.coefficients[2 * i:2 * i + 2]
            return f"{name}: {digits(self.values[i])}, a {digits(a)}, b {digits(b)}"

        shifts = [digits(shift if self.extended else 0) for shift in self.shifts]
        fields = [f"type {self.code}, number {self.number}, name '{self.name}'",
                  f"time {self.time}, rounding {self.rounding}, mode {self.mode}, "
                  f"compensation {self.compensation}, reversal {self.reversal}, "
                  f"short circuit {self.short_circuit}",
                  "T0: " + digits(self.t0), triple("Uref", 4),
                  "shifts of the ranges: " + " ".join(shifts[:17]),
                  "shifts of the channels: " + " ".join(shifts[17:33]),
                  "shifts of the resistors: " + " ".join(shifts[33:])]
        fields += [triple(f"R{i + 1}", i) for i in range(4)]
        for c in range(self.n):
            fields += [f"channel {c} {field}"
                       for field in self.channels[c].fields() + self.features[c].fields()]
        return fields

    def lines(self):
        lines = ["COM1"] + [fixed(value, 5) for value in self.values]
        lines += [str(self.mode), str(self.rounding // 16), str(self.compensation)]
        for channel in self.channels:
            lines += channel.lines()
        lines += [feature.name for feature in self.features]
        for feature in self.features:
            lines += feature.entry_lines()
        for feature in self.features:
            lines += feature.coefficient_lines()
        lines += [str(feature.form_code()) for feature in self.features]
        lines += [""] * 41
        lines += [self.model + " rev3", chr(self.time + 1), fixed(self.t0, 2)]
        lines += [general(coefficient) for coefficient in self.coefficients]
        lines += ["1" if self.reversal == 0x10 else "0"]
        if self.code > 0x21:
            lines += [channel.compensation_line() for channel in self.channels]
            lines += ["1" if self.short_circuit == 0 else "0"]
        lines += [channel.unit for channel in self.channels]
        if self.extended:
            lines += ["rev4", str(self.code), self.name] + [general(shift) for shift in self.shifts]
        return lines


def check_image(image):
    """Sizes and positions that any file and any block of the model has."""
    lines, blocks = image.lines(), image.blocks()
    counts = {0x01: 656, 0x11: 656, 0x21: 656, 0x22: 665, 0x31: 665, 0x41: 1265,
              0x0950AA0F: 705, 0x0960AA0F: 1305, 0x0970AA0F: 705}
    assert len(lines) == counts[image.code]
    assert lines[634 if image.n == 8 else 1218] == image.model + " rev3"
    assert all(len(feature.record()) == 492 for feature in image.features)
    sizes = {"configuration": 3976 if image.n == 8 else 7944, "reference": 72,
             "referenceWritten": 72, "allReference": 220 if image.extended else 72,
             "identificationRead": 24 if image.extended else 8,
             "identificationWritten": 20 if image.extended else 8, "channel0": 12,
             "channelLast": 12, "dateTime": 8, "logger": 80}
    if image.extended:
        sizes.update(shifts=148, serialNumber=4)
        assert len(image.name) == 16
    assert {name: len(block) for name, block in blocks.items()} == sizes


def check_coverage(images):
    """What the recipe is for: every code, and both ends of every list."""
    channels = [channel for image in images for channel in image.channels]
    assert {channel.measures for channel in channels} == set(MEASUREMENTS)
    assert {channel.unit for channel in channels} == {"", *UNITS}
    assert {channel.current for channel in channels} == set(range(8))
    assert {channel.resistor for channel in channels} == set(range(4))
    for source in SOURCES:
        indices = {channel.index for channel in channels if channel.source == source}
        assert {0, 12 if source in (0x40, 0x80) else 15} <= indices, (source, indices)
    for source in COMPENSATIONS:
        indices = {c.compensation_index for c in channels if c.compensation == source}
        assert {0, 12 if source in (0x10, 0x20) else 15} <= indices, (source, indices)
    features = [feature for image in images for feature in image.features]
    assert {(f.type, f.name) for f in features} == {(t, n) for t in range(4) for n in FEATURE_NAMES}
    assert max(len(name) for name in FEATURE_NAMES) == 39
    assert max(len(text) for text, _ in ENTRIES) == 19
    assert max(len(unit) for unit in UNITS) == 10
    assert fixed(0.015625, 5) == "0.01563" and general(-1.25e-7) == "-1.25e-07"


def main():
    is_check = "--check" in sys.argv[1:]
    images = [Image(k) for k in range(len(MODELS))]
    check_coverage(images)
    differing = 0
    if not is_check:
        GOLDEN.mkdir(exist_ok=True)
    for image in images:
        check_image(image)
        blocks = "".join(f"{name} {block.hex()}\n" for name, block in image.blocks().items())
        contents = {".ust": "".join(line + "\r\n" for line in image.lines()).encode("cp1251"),
                    ".blocks": blocks.encode("ascii"),
                    ".fields": "".join(field + "\n" for field in image.fields()).encode()}
        for suffix, content in contents.items():
            file = GOLDEN / (f"{image.code:0{8 if image.extended else 2}X}" + suffix)
            if not is_check:
                file.write_bytes(content)
            differs = not file.exists() or file.read_bytes() != content
            differing += differs
            print(f"{file.name}: {len(content)} bytes{' DIFFERS' if differs else ''}")
        print(f"  {image.model}: {image.n} channels, {len(image.lines())} lines, "
              f"{len(image.blocks())} blocks")
    sys.exit(1 if differing else 0)


if __name__ == "__main__":
    main()
