#!/usr/bin/env python3
"""Makes a large PDB from a small one for the memory benchmarks: every
record keeps its bytes and is followed by zeros, so that the file grows to
about MEGABYTES while holding the same records for a reader.

    pad_records.py IN.pdb OUT.pdb MEGABYTES
"""
import struct
import sys


def main() -> None:
    source, target, megabytes = sys.argv[1], sys.argv[2], int(sys.argv[3])
    data = open(source, "rb").read()
    count = struct.unpack(">H", data[76:78])[0]
    offsets = [struct.unpack(">I", data[78 + 8 * i:82 + 8 * i])[0] for i in range(count)] + [len(data)]
    records = [data[offsets[i]:offsets[i + 1]] for i in range(count)]
    start = 78 + 8 * count + 2
    pad = max(0, (megabytes * 1024 * 1024 - start - sum(map(len, records))) // max(count, 1))
    entries, body, at = bytearray(), bytearray(), start
    for i, record in enumerate(records):
        entries += struct.pack(">I", at) + data[82 + 8 * i:86 + 8 * i]
        body += record + bytes(pad)
        at += len(record) + pad
    with open(target, "wb") as out:
        out.write(data[:78] + bytes(entries) + bytes(2) + bytes(body))
    print(f"{target}: {count} records, {at} bytes")


if __name__ == "__main__":
    main()
