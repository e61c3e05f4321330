#!/usr/bin/env python3
"""Makes the seed corpora of the fuzz targets in fuzz/corpus/NAME/.

Every seed it makes is named g-*; a run first takes away the g-* seeds of
each corpus and makes them again, so the result depends only on the sources:
the examples, the test data, the hand-kept seeds of fuzz/corpus (the files
not named g-*), and the variants below, which follow what the tests build:
truncations at the places a reader changes state, one field edited, lines
dropped, the other line ends, the maps and routes of the tests.

    fuzz/make-corpus.py            (or fuzz/make-corpus.sh)
"""
import hashlib
import os
import struct
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CORPUS = os.path.join(ROOT, "fuzz", "corpus")
MAX_SEED = 64 * 1024


def read(*parts):
    with open(os.path.join(ROOT, *parts), "rb") as f:
        return f.read()


class Corpus:
    """The seeds of one target; a seed equal to one already there is left out."""

    def __init__(self, name):
        self.name = name
        self.folder = os.path.join(CORPUS, name)
        os.makedirs(self.folder, exist_ok=True)
        for entry in os.listdir(self.folder):
            if entry.startswith("g-"):
                os.remove(os.path.join(self.folder, entry))
        self.seen = set()
        for entry in os.listdir(self.folder):
            self.seen.add(hashlib.sha1(read("fuzz", "corpus", name, entry)).digest())
        self.count = 0

    def add(self, label, data):
        if isinstance(data, str):
            data = data.encode("latin-1")
        if len(data) > MAX_SEED:
            raise SystemExit(f"{self.name}/{label}: {len(data)} bytes, over {MAX_SEED}")
        digest = hashlib.sha1(data).digest()
        if digest in self.seen:
            return
        self.seen.add(digest)
        safe = "".join(c if c.isalnum() or c in "-_." else "_" for c in label)
        path = os.path.join(self.folder, f"g-{safe}")
        if os.path.exists(path):
            raise SystemExit(f"{self.name}: two seeds named {label}")
        with open(path, "wb") as f:
            f.write(data)
        self.count += 1


def hand_kept(name):
    folder = os.path.join(CORPUS, name)
    return {e: read("fuzz", "corpus", name, e) for e in sorted(os.listdir(folder)) if not e.startswith("g-")}


# ---- text helpers

def lines_of(data):
    """The lines with their ends, so that a join gives the bytes back."""
    return data.splitlines(keepends=True)


def line_variants(corpus, label, data, keep_first=0, limit=None):
    """Each line dropped, each line alone (behind the first keep_first
    lines), the file cut inside each line, LF and CR line ends."""
    lines = lines_of(data)
    picks = range(keep_first, len(lines))
    if limit is not None and len(picks) > limit:
        step = len(picks) / limit
        picks = [picks[int(i * step)] for i in range(limit)]
    for i in picks:
        corpus.add(f"{label}-drop{i}", b"".join(lines[:i] + lines[i + 1:]))
    for i in picks:
        corpus.add(f"{label}-only{i}", b"".join(lines[:keep_first] + [lines[i]]))
    for i in picks:
        offset = sum(len(l) for l in lines[:i]) + max(1, len(lines[i].rstrip(b"\r\n")) // 2)
        corpus.add(f"{label}-cut{i}", data[:offset])
    corpus.add(f"{label}-lf", data.replace(b"\r\n", b"\n"))
    corpus.add(f"{label}-crlf", data.replace(b"\r\n", b"\n").replace(b"\n", b"\r\n"))
    corpus.add(f"{label}-cr", data.replace(b"\r\n", b"\n").replace(b"\n", b"\r"))
    corpus.add(f"{label}-noend", data.rstrip(b"\r\n"))
    corpus.add(f"{label}-blanks", data.replace(b"\n", b"\n\n", 2))
    corpus.add(f"{label}-eofmark", data + b"\x1a")


def put(data, column, text):
    """The line with text written over it from column (0-based)."""
    data = data.ljust(column + len(text))
    return data[:column] + text + data[column + len(text):]


# ---- PDB and VFS containers

PDB_HEADER = 78


def pdb_records(data):
    count = struct.unpack(">H", data[76:78])[0]
    offsets = [struct.unpack(">I", data[78 + 8 * i:82 + 8 * i])[0] for i in range(count)]
    ends = offsets[1:] + [len(data)]
    return [data[s:e] for s, e in zip(offsets, ends)]


def make_pdb(records, name=b"RouteHIF", kind=b"DATA", creator=b"qHVN"):
    head = bytearray(PDB_HEADER)
    head[0:len(name)] = name
    head[60:64] = kind
    head[64:68] = creator
    head[76:78] = struct.pack(">H", len(records))
    offset = PDB_HEADER + 8 * len(records) + 2
    table = b""
    for i, record in enumerate(records):
        table += struct.pack(">I", offset) + b"\x40" + struct.pack(">I", i + 1)[1:]
        offset += len(record)
    return bytes(head) + table + b"\0\0" + b"".join(records)


def make_vfs(records):
    return b"".join(struct.pack(">I", len(r)) + r for r in records)


def vfs_records(data):
    records, at = [], 0
    while at + 4 <= len(data):
        length = struct.unpack(">I", data[at:at + 4])[0]
        records.append(data[at + 4:at + 4 + length])
        at += 4 + length
    return records


def patch(data, offset, value):
    return data[:offset] + value + data[offset + len(value):]


def pdb_variants(corpus, label, data, deep=True):
    """Cuts where the reader moves from part to part, and one header or table
    field at a time set to what a damaged file holds."""
    count = struct.unpack(">H", data[76:78])[0]
    table_end = PDB_HEADER + 8 * count
    records = pdb_records(data)
    offsets = [struct.unpack(">I", data[78 + 8 * i:82 + 8 * i])[0] for i in range(count)]
    cuts = {31, 32, 60, 76, 77, PDB_HEADER, PDB_HEADER + 8, table_end, table_end + 2, len(data) - 1}
    if deep:
        cuts |= {PDB_HEADER + 4, table_end - 4}
        for o in offsets[:4]:
            cuts |= {o, o + 1, o + 3}
        cuts.add(len(data) // 2)
    for cut in sorted(c for c in cuts if 0 < c < len(data)):
        corpus.add(f"{label}-cut{cut}", data[:cut])
    for n in (0, 1, count - 1, count + 1, 0x7FFF, 0x8000, 0xFFFF):
        if 0 <= n <= 0xFFFF and n != count:
            corpus.add(f"{label}-count{n}", patch(data, 76, struct.pack(">H", n)))
    corpus.add(f"{label}-name-unended", patch(data, 0, b"A" * 32))
    corpus.add(f"{label}-appinfo-past", patch(data, 52, struct.pack(">I", len(data) + 16)))
    corpus.add(f"{label}-sortinfo-inside", patch(data, 56, struct.pack(">I", 40)))
    corpus.add(f"{label}-type", patch(data, 60, b"appl"))
    if count >= 1:
        corpus.add(f"{label}-first-past", patch(data, 78, struct.pack(">I", len(data) + 1)))
        corpus.add(f"{label}-first-zero", patch(data, 78, struct.pack(">I", 0)))
        corpus.add(f"{label}-first-neg", patch(data, 78, b"\xff\xff\xff\xff"))
    if count >= 3 and deep:
        swapped = patch(patch(data, 78 + 8, struct.pack(">I", offsets[2])), 78 + 16, struct.pack(">I", offsets[1]))
        corpus.add(f"{label}-descending", swapped)
        corpus.add(f"{label}-last-past", patch(data, 78 + 8 * (count - 1), struct.pack(">I", len(data) + 100)))
    if deep and records:
        # Record contents: the first (the file header) emptied, filled, or
        # with its texts run together; a meter record likewise.
        for index in sorted({0, min(2, len(records) - 1)}):
            record = records[index]
            for what, new in (("zero", b"\0" * len(record)), ("ff", b"\xff" * len(record)),
                              ("nonul", record.replace(b"\0", b"A")), ("short", record[:len(record) // 2]),
                              ("empty", b"")):
                changed = list(records)
                changed[index] = new
                corpus.add(f"{label}-rec{index}-{what}", make_pdb(changed))
        # Each record's leading 16-bit field (its kind) set to the kinds a
        # reader tells apart.
        for kind in (0, 1, 2, 3, 5, 6, 7, 0x7FFF, 0xFFFF):
            if len(records) > 1 and len(records[1]) >= 2:
                changed = list(records)
                changed[1] = struct.pack(">H", kind) + records[1][2:]
                corpus.add(f"{label}-rec1-kind{kind}", make_pdb(changed))


def vfs_variants(corpus, label, data):
    records = vfs_records(data)
    at = 0
    cuts = {1, 3, 4, 5, len(data) - 1}
    for record in records[:3]:
        cuts |= {at + 2, at + 4, at + 4 + len(record) // 2}
        at += 4 + len(record)
    for cut in sorted(c for c in cuts if 0 < c < len(data)):
        corpus.add(f"{label}-cut{cut}", data[:cut])
    for what, length in (("zero", 0), ("past", len(data)), ("max16", 0xFFFF), ("neg", 0x80000000)):
        corpus.add(f"{label}-len-{what}", patch(data, 0, struct.pack(">I", length)))
    if len(records) > 1:
        second = 4 + len(records[0])
        corpus.add(f"{label}-len2-past", patch(data, second, struct.pack(">I", len(data))))
        corpus.add(f"{label}-len2-zero", patch(data, second, struct.pack(">I", 0)))
    corpus.add(f"{label}-noheader", make_vfs(records[1:]))


# ---- the targets

def hif_sources():
    sources = {}
    for name, data in hand_kept("hif_read").items():
        sources[name] = data
    sources["example-reading.pdb"] = read("examples", "reading.pdb")
    sources["example-route.pdb"] = read("tests", "data", "example-route.pdb")
    return sources


def make_hif_read():
    corpus = Corpus("hif_read")
    for name, data in hif_sources().items():
        stem = name.rsplit(".", 1)[0]
        if len(data) < PDB_HEADER:
            continue
        if data[0:2] != b"\0\0" and PDB_HEADER + 8 * struct.unpack(">H", data[76:78])[0] > len(data):
            continue  # a seed damaged already stays as it is, without variants
        if data[0:2] == b"\0\0":
            vfs_variants(corpus, stem, data)
            corpus.add(f"{stem}-as-pdb", make_pdb(vfs_records(data)))
        else:
            small = len(data) <= 9000
            pdb_variants(corpus, stem, data, deep=small)
            corpus.add(f"{stem}-as-vfs", make_vfs(pdb_records(data)))
            if small:
                vfs_variants(corpus, f"{stem}-vfs", make_vfs(pdb_records(data)))
    return corpus


def make_reading(name):
    corpus = Corpus(name)
    reading = read("examples", "reading.pdb")
    pdb_variants(corpus, "reading", reading)
    corpus.add("reading-as-vfs", make_vfs(pdb_records(reading)))
    vfs_variants(corpus, "reading-vfs", make_vfs(pdb_records(reading)))
    # Route files are read as readings too, when a reader picks the wrong file.
    for stem in ("pdb_v3_route", "pdb_v3_mixed", "vfs_v3_route"):
        corpus.add(stem, read("fuzz", "corpus", "hif_read", stem + ".hif"))
    # Records dropped one at a time: routes without meters, meters without a
    # route, no file header.
    records = pdb_records(reading)
    for i in range(len(records)):
        corpus.add(f"reading-without{i}", make_pdb(records[:i] + records[i + 1:]))
    return corpus


def dist_sections(text):
    head, *rest = text.split(b"\r\n[")
    return head, [b"[" + section for section in rest]


def site_maps():
    """The maps of the example site: (file name, use, bytes)."""
    _, sections = dist_sections(read("examples", "site.dst"))
    maps = []
    for section in sections:
        title, _, body = section.partition(b"]\r\n")
        if b" MAP " not in title:
            continue
        name = title.split(b" MAP ", 1)[1].decode()
        use = {"hcm": 0, "hrm": 2, "hom": 3}[name[-3:].lower()]
        maps.append((name, use, body))
    return maps


# The maps of the tests: the fixed layout of the route tests and the
# delimited one of their quote test.
TEST_FIXED_MAP = (b"HIF=1.1\r\nMAPNAME=Route.hcm\r\nMAPTYPE=1\r\nRouteNbr=1,2,,,0\r\nSequence=3,4,,,0\r\n"
                  b"MeterTagNbr=7,8,,,0\r\nMeterType=15,1,,,0\r\nReadType=16,1,,,0\r\nUtilityCode=C,1\r\n"
                  b"ServiceAddress=17,10,,,0\r\nBillingName=27,10,,,0\r\nDigits=37,5,,,0\r\n")
TEST_DELIMITED_MAP = (b"HIF=1.1\r\nMAPNAME=Route.hcm\r\nMAPTYPE=2\r\nMAPDELIMITER=,\r\nMAPQUOTE=\"\r\n"
                      b"RouteNbr=1,0,,,0\r\nSequence=2,0,,,0\r\nMeterTagNbr=3,0,,,0\r\nMeterType=C,W\r\n"
                      b"UtilityCode=C,1\r\nServiceAddress=4,0,,,0\r\nBillingName=5,0,,,0\r\nUser1=6,0,,,0\r\n"
                      b"User2=7,0,,,0\r\n")


def make_map_load():
    corpus = Corpus("map_load")
    maps = site_maps() + [("TestFixed.hcm", 0, TEST_FIXED_MAP), ("TestDelimited.hcm", 0, TEST_DELIMITED_MAP)]
    for name, use, body in maps:
        stem = name.replace(".", "-")
        corpus.add(stem, bytes([use]) + body)
        if use == 0:
            corpus.add(f"{stem}-as-reread", bytes([1]) + body)
        lines = lines_of(body)
        # Header lines dropped; one field line set to each kind of mapping.
        for i, line in enumerate(lines):
            if line.startswith(b"MAP") or line.startswith(b"HIF="):
                corpus.add(f"{stem}-drop{i}", bytes([use]) + b"".join(lines[:i] + lines[i + 1:]))
        fields = [i for i, line in enumerate(lines) if b"=" in line and not line.startswith((b"MAP", b"HIF"))]
        if fields:
            i = fields[len(fields) // 2]
            field = lines[i].split(b"=", 1)[0]
            for what, value in (("const", b"C,ABC"), ("prompt", b"P"), ("auto", b"A"), ("notmap", b"N"),
                                ("zero", b"0,0,,,0"), ("huge", b"99999,99999,R,Z,99"), ("negative", b"1,-5,L,B,0"),
                                ("junk", b"abc"), ("empty", b""), ("date", b"1,8,L,B,14"), ("many", b"1,2,3,4,5,6,7")):
                changed = list(lines)
                changed[i] = field + b"=" + value + b"\r\n"
                corpus.add(f"{stem}-{field.decode()}-{what}", bytes([use]) + b"".join(changed))
        corpus.add(f"{stem}-lf", bytes([use]) + body.replace(b"\r\n", b"\n"))
        corpus.add(f"{stem}-cut", bytes([use]) + body[:len(body) // 2])
    for what, header in (("delim-tab", b"MAPDELIMITER=<tab>"), ("quote-none", b"MAPQUOTE=<none>"),
                         ("delim-long", b"MAPDELIMITER=,;|"), ("term-big", b"MAPTERMINATOR= 99 "),
                         ("length-big", b"MAPLENGTH=99999"), ("options", b"MAPOPTIONS=1:Y;2:N;3:Y"),
                         ("type-bad", b"MAPTYPE=9"), ("filter", b"MAPFILTER=1")):
        corpus.add(f"header-{what}", b"\0" + TEST_DELIMITED_MAP.replace(b"MAPQUOTE=\"\r\n", header + b"\r\n"))
    return corpus


def make_dist_load():
    corpus = Corpus("dist_load")
    site = read("examples", "site.dst")
    head, sections = dist_sections(site)
    for i, section in enumerate(sections):
        corpus.add(f"site-section{i}", head + b"\r\n" + section)
        corpus.add(f"site-without{i}", b"\r\n".join([head] + sections[:i] + sections[i + 1:]))
    registry = sections[0]
    reg_lines = lines_of(registry)
    for i in range(1, len(reg_lines), 4):
        corpus.add(f"registry-drop{i}", head + b"\r\n" + b"".join(reg_lines[:i] + reg_lines[i + 1:]))
    for what, line in (("noarrow", b"UseLogin = \"Y\""), ("noequals", b"> UseLogin \"Y\""),
                       ("noquotes", b"> UseLogin = Y"), ("onequote", b"> UseLogin = \"Y"),
                       ("inner", b"> UseLogin = \"a\"b\""), ("emptyname", b">  = \"x\""),
                       ("dword", b"> UseLogin = &H00000001"), ("binary", b"> UseLogin = [binary]"),
                       ("nokey", b"> Orphan = \"1\""), ("deepkey", b"A\\B\\C:\r\n> x = \"y\""),
                       ("long", b"> Message = \"" + b"M" * 1100 + b"\"")):
        corpus.add(f"registry-{what}", b"DIST 1.0\r\n[REGISTRY]\r\nLoginSetup:\r\n" + line + b"\r\n")
    for what, title in (("traversal", b"[ROUTE MAP ../x.hcm]"), ("slash", b"[ROUTE MAP a/b.hcm]"),
                        ("empty", b"[ROUTE MAP ]"), ("unclosed", b"[ROUTE MAP x.hcm"),
                        ("lower", b"[route map x.hcm]"), ("unknown", b"[UNKNOWN MAP x.hxm]"),
                        ("nohif", b"[READING MAP x.hrm]\r\nMAPTYPE=1"), ("dot", b"[ORPHAN MAP ..]")):
        corpus.add(f"map-{what}", b"DIST 1.0\r\n" + title + b"\r\nHIF=1.1\r\nMAPTYPE=1\r\n")
    corpus.add("site-lf", site.replace(b"\r\n", b"\n"))
    corpus.add("site-noheader", site[len(head):])
    corpus.add("site-badheader", b"DIST" + site[5:])
    for cut in (5, 9, len(head) + 12, len(site) // 2, len(site) - 3):
        corpus.add(f"site-cut{cut}", site[:cut])
    corpus.add("site-twice", site + b"\r\n" + b"\r\n".join(sections))
    return corpus


def fixed_test_line(route, sequence, tag, kind, read_type, address, name, digits=5):
    return (f"{route:<2}{sequence:04d}{tag:08d}{kind}{read_type}{address:<10}{name:<10}{digits:05d}").encode()


def make_route_flat():
    corpus = Corpus("route_flat")
    fixed = read("examples", "route-fixed.txt")
    delimited = read("examples", "route-delimited.csv")
    line_variants(corpus, "fixed", fixed)
    line_variants(corpus, "csv", delimited)
    first = lines_of(fixed)[0].rstrip(b"\r\n")
    # One field of the Billing layout at a time (columns from 0).
    for what, column, text in (("route-blank", 0, b"    "), ("seq-zero", 4, b"000000"), ("tag-zero", 10, b"00000000"),
                               ("tag-big", 10, b"99999999"), ("type", 18, b"X"), ("digits", 19, b"9"),
                               ("prv-big", 21, b"9999999999"), ("prv-neg", 21, b"-000000001"),
                               ("max-low", 31, b"0000000000"), ("readtype", 51, b"Q"), ("date-bad", 52, b"20241399"),
                               ("date-blank", 52, b"        "), ("utility", 60, b"XX"), ("addr", 62, b" " * 30),
                               ("name-token", 92, b"THE CO AND INC LLC    ")):
        corpus.add(f"fixed-{what}", put(first, column, text) + b"\r\n")
    corpus.add("fixed-duplicate", fixed + lines_of(fixed)[0])
    corpus.add("fixed-short", first[:40] + b"\r\n")
    corpus.add("fixed-long", first + b"X" * 300 + b"\r\n")
    corpus.add("fixed-nul", first.replace(b" ", b"\0", 3) + b"\r\n")
    first_csv = lines_of(delimited)[0].rstrip(b"\r\n")
    for what, line in (("unbalanced", first_csv + b",\"open"), ("inner-delim", first_csv.replace(b"12 MAIN ST", b"12 MAIN, ST")),
                       ("doubled", first_csv.replace(b"O'BRIEN J", b"SAY \"\"HI\"\"")), ("tilde", first_csv + b",a~b"),
                       ("short", b",".join(first_csv.split(b",")[:4])), ("extra", first_csv + b",x,y,z"),
                       ("empty-fields", b"," * 15), ("quotes-only", b"\"\"\"\"\"\""),
                       ("big-number", first_csv.replace(b"1012345", b"99999999999999999999"))):
        corpus.add(f"csv-{what}", line + b"\r\n")
    # The lines of the route tests' fixed layout.
    test_lines = [fixed_test_line("1", 1, 11, "W", "R", "1 MAIN ST", "DOE JANE"),
                  fixed_test_line("2", 1, 12, "G", "R", "2 OAK AVE", "ROE RICK"),
                  fixed_test_line("1", 0, 100, "W", "R", "1 MAIN", "DOE"),
                  fixed_test_line("", 1, 16777216, "W", "R", "", "A"),
                  fixed_test_line("1", 2, 12, "W", "R", "A", "B", 99999)]
    corpus.add("tests-fixed", b"\r\n".join(test_lines) + b"\r\n")
    corpus.add("tests-fifty", b"\r\n".join(fixed_test_line("1", 0, 100 + i, "W", "R", "1 MAIN", "DOE")
                                           for i in range(51)) + b"\r\n")
    corpus.add("tests-quotes", b"1,1,11,\"12 MAIN, APT 2\",\"SAY \"\"HI\"\"\",a~b,x\r\n1,2,12,OAK\r\n")
    corpus.add("empty-lines", b"\r\n\r\n\r\n")
    return corpus


def make_route_reread():
    corpus = Corpus("route_reread")
    tags = read("examples", "reread-tags.txt")
    corpus.add("tags", tags)
    for what, text in (("one", b"1012346\n"), ("blank", b"\n"), ("spaces", b"          \n"),
                       ("zero", b"0000000000\n"), ("big", b"99999999999\n"), ("letters", b"ABC\n"),
                       ("negative", b"-1012346\n"), ("duplicate", b"1012346\n1012346\n"),
                       ("long", b"1" * 300 + b"\n"), ("nul", b"10\x0012346\n"), ("tab", b"\t1012346\n"),
                       ("crlf", tags.replace(b"\n", b"\r\n")), ("cr", tags.replace(b"\n", b"\r")),
                       ("noend", tags.rstrip(b"\n")), ("eofmark", tags + b"\x1a"),
                       ("messages", b"100-002\n100-003\nSN5501\n")):
        corpus.add(f"tags-{what}", text)
    corpus.add("tags-many", b"".join(b"%07d\n" % (1012345 + i) for i in range(200)))
    # Lines for the delimited re-read map: tag, address, name, account,
    # serial, date, previous reading, read type.
    good = b"1012345,\"12 MAIN ST\",\"O'BRIEN J\",100-003,SN5501,2024-01-31,1234,R"
    corpus.add("csv", good + b"\r\n" + good.replace(b"1012345", b"1012346") + b"\r\n")
    fields = good.split(b",")
    for i in range(len(fields)):
        corpus.add(f"csv-without{i}", b",".join(fields[:i] + fields[i + 1:]) + b"\r\n")
        corpus.add(f"csv-upto{i}", b",".join(fields[:i + 1]) + b"\r\n")
    for what, value, index in (("date-bad", b"2024-13-45", 5), ("date-slash", b"01/31/2024", 5),
                               ("prv-big", b"99999999999", 6), ("read-m", b"M", 7), ("read-p", b"P", 7),
                               ("read-num", b"7", 7), ("quote-open", b"\"12 MAIN", 1), ("tilde", b"a~b", 2),
                               ("any", b"ANY", 3)):
        changed = list(fields)
        changed[index] = value
        corpus.add(f"csv-{what}", b",".join(changed) + b"\r\n")
    for what, text in (("quoted-tags", b"\"1012345\"\r\n\"1012346\"\r\n"), ("comma-only", b",,,,,,,\r\n"),
                       ("tags-with-names", b"1012345,\"SMITH AND CO\",\"THE OAK CO\"\r\n"),
                       ("utf8", "1012345,\"12 MAIN ST\",\"M\u00dcLLER\"\r\n".encode("utf-8"))):
        corpus.add(f"csv-{what}", text)
    # The fixed lines of the example route go through both maps too.
    for i, line in enumerate(lines_of(read("examples", "route-fixed.txt"))[:3]):
        corpus.add(f"fixed-line{i}", line)
    return corpus


def make_route_mvrs():
    corpus = Corpus("route_mvrs")
    route = read("examples", "route-mvrs.dat")
    corpus.add("route", route)
    line_variants(corpus, "route", route, keep_first=0, limit=16)
    lines = lines_of(route)
    # Each kind of line cut to its kind alone, and each kind made unknown.
    kinds = sorted({l[:3] for l in lines if len(l) >= 3})
    for kind in kinds:
        at = next(i for i, l in enumerate(lines) if l[:3] == kind)
        changed = list(lines)
        changed[at] = kind + b"\r\n"
        corpus.add(f"route-{kind.decode('latin-1')}-bare", b"".join(changed))
        changed[at] = b"QQQ" + lines[at][3:]
        corpus.add(f"route-{kind.decode('latin-1')}-unknown", b"".join(changed))
        changed[at] = lines[at].rstrip(b"\r\n") + b"9" * 80 + b"\r\n"
        corpus.add(f"route-{kind.decode('latin-1')}-long", b"".join(changed))
    corpus.add("reading-file", read("tests", "data", "example-mvrs-reading.dat"))
    return corpus


def make_e5k_read():
    corpus = Corpus("e5k_read")
    route = read("examples", "route-e5000.txt")
    line_variants(corpus, "route", route, limit=18)
    lines = lines_of(route)
    kinds = []
    for l in lines:
        kind = l[:3] if l[:1] == b"K" else l[:1]
        if kind not in kinds:
            kinds.append(kind)
    for kind in kinds:
        at = next(i for i, l in enumerate(lines) if l.startswith(kind))
        changed = list(lines)
        changed[at] = kind + b"\r\n"
        corpus.add(f"route-{kind.decode()}-bare", b"".join(changed))
        changed[at] = lines[at].rstrip(b"\r\n")[:80] + b"X" * 40 + b"\r\n"
        corpus.add(f"route-{kind.decode()}-long", b"".join(changed))
        changed[at] = b"X" + lines[at][1:]
        corpus.add(f"route-{kind.decode()}-unknown", b"".join(changed))
        changed[at] = lines[at].replace(b"0", b"A")
        corpus.add(f"route-{kind.decode()}-letters", b"".join(changed))
    # The meter line's numbers at their limits.
    meter = next(i for i, l in enumerate(lines) if l.startswith(b"H"))
    for what, column, text in (("dials", 13, b"9"), ("min", 14, b"99999999"), ("max", 22, b"00000000"),
                               ("prior", 30, b"99999999"), ("decimals", 51, b"9"), ("relative", 1, b"  ")):
        changed = list(lines)
        changed[meter] = put(lines[meter].rstrip(b"\r\n"), column, text) + b"\r\n"
        corpus.add(f"route-meter-{what}", b"".join(changed))
    total = next((i for i, l in enumerate(lines) if l.startswith(b"Z")), None)
    if total is not None:
        for what, text in (("zero", b"00000000"), ("big", b"99999999"), ("letters", b"ABCDEFGH")):
            changed = list(lines)
            changed[total] = put(lines[total].rstrip(b"\r\n"), 9, text) + b"\r\n"
            corpus.add(f"route-total-{what}", b"".join(changed))
    corpus.add("route-twice", route + route)
    corpus.add("upload-file", read("tests", "data", "e5000-upload.txt"))
    return corpus


def registry_lines():
    """The example site's settings as lines of the registry_values input."""
    out = []
    _, sections = dist_sections(read("examples", "site.dst"))
    key = ""
    for raw in sections[0].split(b"\r\n")[1:]:
        line = raw.decode("latin-1").strip()
        if not line:
            continue
        if line.endswith(":"):
            key = line[:-1]
            continue
        name, _, value = line[2:].partition(" = ")
        out.append(f"s{key}\t{name}\t{value.strip(chr(34))}")
    return out


def make_registry_values():
    corpus = Corpus("registry_values")
    lines = registry_lines()
    site = "\n".join(lines) + "\n"
    corpus.add("site", site)
    # Each key of the site alone, and the site without it.
    keys = []
    for line in lines:
        key = line[1:].split("\t")[0]
        if key not in keys:
            keys.append(key)
    for key in keys:
        mine = [l for l in lines if l[1:].split("\t")[0] == key]
        rest = [l for l in lines if l[1:].split("\t")[0] != key]
        corpus.add(f"key-{key}", "\n".join(mine) + "\n")
        corpus.add(f"without-{key}", "\n".join(rest) + "\n")
    # One value at a time of each other type and of odd data.
    for i, line in enumerate(lines[::3]):
        key, name, data = line[1:].split("\t")
        for code in "zdbxm":
            corpus.add(f"type-{code}-{key}-{name}", f"{code}{key}\t{name}\t{data}\n")
    for what, line in (("nul-inside", "sRoute\tMap\tBil\\x00ling"), ("crlf-inside", "sSkip\tDOG\tDog\\x0d\\x0a[ROUTE MAP x.hcm]"),
                       ("long-1024", "sRoute\tMap\t" + "M" * 1023), ("long-1025", "sRoute\tMap\t" + "M" * 1025),
                       ("dword-max", "dOrphan\tConvert\t\\xff\\xff\\xff\\xff"), ("dword-short", "dOrphan\tReplace\t\\x01"),
                       ("dword-long", "dOperPrefs\tAlertTamper\t\\x01\\x02\\x03\\x04\\x05\\x06"),
                       ("convert-big", "sOrphan\tConvert\t70000"), ("convert-text", "sOrphan\tConvert\t-5abc"),
                       ("index-0", "sToken\tIndexControl\t0"), ("index-2", "sToken\tIndexControl\t2"),
                       ("index-big", "sToken\tIndexControl\t99999999999"), ("hiftype-vfs", "sRoute\tHIFType\tVFS"),
                       ("autoinstall", "sPRCInstall\tAutoInstall\tY\nsPRCInstall\tUnit\t../../x"),
                       ("login-nopair", "sLoginSetup\tUseLogin\tY\nsLoginIDs\tBOB\tsecret"),
                       ("login-pairs", "sLoginSetup\tUseLogin\tY\nsLoginIDs\tBOB\ta||b||c||d"),
                       ("message-nopair", "sMessagesAccount\t100-002\tNo route"),
                       ("message-empty", "sMessagesMeterTagNbr\t||\t"),
                       ("message-any", "sMessagesMeterTagNbr\tANY||1012345\tTag message"),
                       ("tokens-empty", "sTokenAddress\t\t\nsTokenOwner\t \t"),
                       ("subkey", "sRoute\\Old\tMap\tX\nsRoute\\Old\\Older\tMap\tY"),
                       ("root-values", "s\tLoose\tvalue\nd\tNumber\t\\x2a\\x00\\x00\\x00"),
                       ("case", "sROUTE\tmap\tBilling\nsroute\tMAP\tOther"),
                       ("type-unknown", "\x07Route\tMap\tBilling"), ("empty-name", "sSkip\t\tNo code"),
                       ("alerts", "sOperPrefs\tAlertOutOfBounds\t-32769\nsOperPrefs\tAlertRollover\t2147483648"),
                       ("favorite", "sFavoriteSetup\tUseFavorite\tY\nsFavorite\tUNIT1\tC:\\\\routes\\\\a.pdb")):
        corpus.add(f"value-{what}", line + "\n")
        corpus.add(f"site-{what}", site + line + "\n")
    many = "".join(f"sSkip\tS{i:04d}\tReason {i}\n" for i in range(300))
    corpus.add("skips-many", many)
    return corpus


def sfnt(tables):
    """A font file of these tables (tag, bytes), in tag order, each aligned."""
    tables = sorted(tables)
    power = 1
    while power * 2 <= len(tables):
        power *= 2
    out = struct.pack(">IHHHH", 0x00010000, len(tables), power * 16, power.bit_length() - 1,
                      len(tables) * 16 - power * 16)
    offset = 12 + 16 * len(tables)
    body = b""
    for tag, data in tables:
        out += tag + struct.pack(">III", 0, offset + len(body), len(data))
        body += data + b"\0" * (-len(data) % 4)
    return out + body


def make_font_subset():
    corpus = Corpus("font_subset")
    head = bytearray(54)
    struct.pack_into(">H", head, 18, 2048)
    struct.pack_into(">hhhh", head, 36, -100, -200, 1000, 1800)
    maxp = struct.pack(">IH", 0x5000, 4)
    hhea = bytearray(36)
    struct.pack_into(">hhH", hhea, 4, 1800, -400, 0)
    struct.pack_into(">H", hhea, 34, 2)
    simple = struct.pack(">hhhhh", 1, 0, 0, 500, 700) + b"\0" * 6
    composite = struct.pack(">hhhhhHHbb", -1, 0, 0, 500, 700, 0x0020, 1, 0, 0) + struct.pack(">HHhh", 0x0001, 3, 10, 10)
    glyf = simple + simple + composite + simple
    for long_offsets in (0, 1):
        struct.pack_into(">H", head, 50, long_offsets)
        ends = [0, len(simple), 2 * len(simple), 2 * len(simple) + len(composite), len(glyf)]
        loca = b"".join(struct.pack(">I", e) if long_offsets else struct.pack(">H", e // 2) for e in ends)
        # The first bytes of the font are its first glyphs used: glyph 2 is
        # the composite of glyphs 1 and 3.
        font = sfnt([(b"head", bytes(head)), (b"maxp", maxp), (b"hhea", bytes(hhea)),
                     (b"hmtx", b"\1\0\0\0\1\0\0\0\0\0\0\0"), (b"loca", loca), (b"glyf", glyf),
                     (b"name", b"names"), (b"post", b"\0\3\0\0")])
        corpus.add(f"truetype-{'long' if long_offsets else 'short'}", font)
    corpus.add("compact", sfnt([(b"CFF ", b"\1\0\4\2"), (b"head", bytes(head))]).replace(b"\0\1\0\0", b"OTTO", 1))
    return corpus


def main():
    made = [make_font_subset(), make_hif_read(), make_reading("reading"), make_reading("report"), make_map_load(),
            make_dist_load(), make_route_flat(), make_route_reread(), make_route_mvrs(), make_e5k_read(),
            make_registry_values()]
    for corpus in made:
        files = os.listdir(corpus.folder)
        size = sum(os.path.getsize(os.path.join(corpus.folder, f)) for f in files)
        print(f"{corpus.name}: {len(files)} seeds ({corpus.count} made), {size} bytes")


if __name__ == "__main__":
    sys.exit(main())
