#!/usr/bin/env python3
"""Cuts a 64-bit PE file down to a small fuzz seed: its headers and only the
sections that hold the import and export directories, packed one after the
other, with the section table and raw offsets rewritten to match.

    fuzz/cut_pe_seed.py build/bin/user.krx fuzz/corpus/pe_image/user.krx
"""
import struct
import sys


def cut(data):
    pe = struct.unpack_from("<I", data, 0x3C)[0]
    count = struct.unpack_from("<H", data, pe + 6)[0]
    optional_size = struct.unpack_from("<H", data, pe + 20)[0]
    optional = pe + 24
    table = optional + optional_size
    wanted = [struct.unpack_from("<I", data, optional + 112 + 8 * i)[0] for i in (0, 1)]
    kept = []
    for i in range(count):
        header = bytearray(data[table + 40 * i: table + 40 * (i + 1)])
        virtual_size, rva, raw_size, raw_offset = struct.unpack_from("<IIII", header, 8)
        if any(rva <= w < rva + max(virtual_size, raw_size) for w in wanted if w):
            kept.append((header, data[raw_offset: raw_offset + raw_size]))
    out = bytearray(data[:table])
    struct.pack_into("<H", out, pe + 6, len(kept))
    offset = table + 40 * len(kept)
    for header, raw in kept:
        struct.pack_into("<II", header, 16, len(raw), offset)
        out += header
        offset += len(raw)
    for _, raw in kept:
        out += raw
    return bytes(out)


if __name__ == "__main__":
    with open(sys.argv[1], "rb") as source:
        seed = cut(source.read())
    with open(sys.argv[2], "wb") as target:
        target.write(seed)
