"""Makes sensor files byte by byte, as docs/file-format.md tells them."""

import struct

HEADER, CALIB, DATA = 0x8034, 0x8036, 0x8035
MAGIC = (0xAF243246, 0x56FE1289, 0x9078BC29)
# Type codes with the letters of struct and the names of text headers.
TYPES = {2: ("B", "unsigned char"), 3: ("b", "signed char"), 4: ("H", "unsigned short"),
         5: ("h", "short"), 6: ("I", "uint32"), 7: ("i", "int32"), 8: ("f", "float"),
         9: ("d", "double"), 10: ("B", "bool"), 11: ("B", "uint8"), 12: ("b", "int8"),
         13: ("H", "uint16"), 14: ("h", "int16"), 15: ("Q", "uint64"), 16: ("q", "int64")}
CODES = {name: code for code, (_, name) in TYPES.items()}
CREATED = (2017, 5, 23, 10, 4, 31)
CALIBRATED = (2016, 12, 1, 8, 0, 9)
GAIN = ("Gain", "double", [[0.998, 0.25], [-0.5, 1.002]])
RANGE = ("Range", "int32", [[-2048, 2047]])
IMU = [("COUNT", "uint16"), ("ACCX", "int16"), ("ACCY", "int16"), ("TIME", "double")]
IMU_ROWS = [(i, -i, 100 + i, 0.005 * i) for i in range(10)]


def opening(order, section, version):
    return struct.pack(order + "IIIHH", *MAGIC, section, version)


def date(order, time):
    year, month, day, hour, minute, second = time
    if order == ">":
        return bytes([day, month, year - 2000, hour, minute, second])
    return bytes([month, day, hour, year - 2000, second, minute])


def binary_calib(records, order=">", version=0x0200, time=CALIBRATED):
    body = b""
    size = 32
    for name, kind, matrix in records:
        rows, cols, code = len(matrix), len(matrix[0]), CODES[kind]
        body += struct.pack("32sBBB", name.encode(), code, rows, cols)
        for col in range(cols):
            for row in range(rows):
                body += struct.pack(order + TYPES[code][0], matrix[row][col])
        size += len(name) + 3 + rows * cols * struct.calcsize(TYPES[code][0])
    return (opening(order, CALIB, version) + struct.pack(order + "Q", size) + date(order, time) +
            struct.pack(order + "HQ", 2, len(records)) + body)


def binary_header(columns, order=">", version=0x0101, frequency=200.0):
    data = opening(order, HEADER, version) + struct.pack(order + "Q", 40 + 34 * len(columns))
    data += date(order, CREATED)
    data += struct.pack(order + ("d" if version != 0x0100 else "H"),
                        frequency if version != 0x0100 else int(frequency))
    data += struct.pack(order + "H", len(columns))
    for name, kind in columns:
        code = CODES[kind]
        data += struct.pack("BB32s", struct.calcsize(TYPES[code][0]), code,
                            name if isinstance(name, bytes) else name.encode())
    return data


def pack_rows(columns, rows, order=">"):
    layout = struct.Struct(order + "".join(TYPES[CODES[kind]][0] for _, kind in columns))
    return b"".join(layout.pack(*row) for row in rows)


def binary_file(columns=IMU, rows=IMU_ROWS, order=">", calib=(), **options):
    return (binary_header(columns, order, **options) + binary_calib(calib, order) +
            opening(order, DATA, 0x0100) + pack_rows(columns, rows, order))


def legacy_file():
    """The oldest versions: an integer frequency, and the bare values 0 to 11 as calibration."""
    values = struct.pack(">12d", *range(12))
    calib = (opening(">", CALIB, 0x0100) + struct.pack(">Q", 32 + len(values)) +
             date(">", CALIBRATED) + b"\1" + values)
    return (binary_header(IMU, version=0x0100) + calib + opening(">", DATA, 0x0100) +
            pack_rows(IMU, IMU_ROWS))


def text_opening(label, section, version):
    words = "\t".join(f"{word:08x}" for word in MAGIC)
    return f"{label} id: \t{words}\t{section:04x}{version:04x}\t\n"


def text_time(time):
    year, month, day, hour, minute, second = time
    return f"{day:02}/{month:02}/{year:04}\t{hour:02}:{minute:02}:{second:02}\n"


def text_calib(records, version=0x0200):
    text = text_opening("Calib", CALIB, version) + "Calib datetime:\t" + text_time(CALIBRATED)
    text += f"Calib version:\t2\t\nNumber of Calibration coefficient:\t{len(records)}\t\n"
    for name, kind, matrix in records:
        text += f"{name}\t{kind}\t({len(matrix)}, {len(matrix[0])})\t\n"
        for row in matrix:
            text += "".join(f"{value}\t" for value in row) + "\n"
    return text


def text_file(columns=IMU, rows=IMU_ROWS, calib=()):
    text = text_opening("Header", HEADER, 0x0101) + text_time(CREATED)
    text += f"Sample frequency:\t200 (Hz)\n{len(columns)} column(s):\t"
    for name, kind in columns:
        text += f"{name}\t{kind}\t({struct.calcsize(TYPES[CODES[kind]][0])}) \t"
    text += "\n\n" + text_calib(calib) + "\n" + text_opening("Data", DATA, 0x0100)
    for row in rows:
        text += "".join(f"{value}\t" for value in row) + "\n"
    return text.encode()


def kivra2_calib():
    matrices = [[0.5, 0.25, 0, 0, 0.5, 0, 0, 0, 0.5], [1, -2, 3],
                [1, 0, 0, 0, 1, 0, 0, 0, 1], [0, 0, 0],
                [2, 0, 0, 0, 2, 0, 0, 0, 2], [0.1, 0, -0.1]]
    return (bytes([5, 3, 17, 14, 7, 9]) + struct.pack(">H", 3) +
            b"".join(struct.pack(f">{len(values)}d", *values) for values in matrices))
