#!/usr/bin/env python3
"""Writes the hostile inputs of docs/RELIABILITY.md into a directory.

    bench/hostile_inputs.py DIR DEMO_DIR

DEMO_DIR holds settings.xml and settings.bin as `torvixml demo` writes them;
the inputs that need a valid document start from those. Nothing here is
committed: the largest inputs are only large once inflated or on a sparse
file, and are made anew for every measurement.
"""

import os
import struct
import sys
import zlib

ROOT_ID = 232099450


def be32(value):
    return struct.pack(">i", value)


def qcompress_stream(path, announced, chunks, level=9):
    """qCompress() form: the announced size, then a zlib stream of chunks."""
    packer = zlib.compressobj(level)
    with open(path, "wb") as out:
        out.write(struct.pack(">I", announced))
        for chunk in chunks:
            out.write(packer.compress(chunk))
        out.write(packer.flush())


def zeros(total, step=1 << 20):
    block = bytes(step)
    while total > 0:
        yield block[: min(step, total)]
        total -= step


def write(path, data):
    with open(path, "wb") as out:
        out.write(data)


def main():
    out, demo = sys.argv[1], sys.argv[2]
    os.makedirs(out, exist_ok=True)
    xml = open(os.path.join(demo, "settings.xml"), "rb").read()
    binary = open(os.path.join(demo, "settings.bin"), "rb").read()
    p = lambda name: os.path.join(out, name)

    # 1. One entity of 4000 characters referenced 250 000 times: in a name,
    # in a skipped element's text, and through a default attribute of 100 000
    # empty modes.
    entity = b'<!DOCTYPE TorviGuiModeSettings [<!ENTITY e "' + b"x" * 4000 + b'">%s]>'
    refs = b"&e;" * 250000
    tail = b"<OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>"
    write(p("entity-name.xml"), entity % b"" + b'<TorviGuiModeSettings><DataOperationMode Name="' + refs
          + b'"/>' + tail)
    write(p("entity-skipped.xml"), entity % b"" + b"<TorviGuiModeSettings><Unknown>" + refs + b"</Unknown>" + tail)
    write(p("entity-default.xml"), entity % b'<!ATTLIST DataOperationMode Name CDATA "&e;">'
          + b"<TorviGuiModeSettings>" + b"<DataOperationMode/>" * 100000 + tail)

    # 2. Compressed: 1 GiB of zeros without a header; a valid root header in
    # front of 256 MiB and of 1 GiB of empty unknown records.
    qcompress_stream(p("zeros-1g.bin"), 1 << 30, zeros(1 << 30))
    for name, size in (("records-256m.bin", 256 << 20), ("records-1g.bin", 1 << 30)):
        qcompress_stream(p(name), size, [be32(ROOT_ID) + be32(size - 8)] + list(zeros(size - 8)))

    # 3. A sparse file of 3 GiB.
    with open(p("sparse-3g.bin"), "wb") as sparse:
        sparse.truncate(3 << 30)

    # 4. Names holding characters XML 1.0 cannot represent (the same length,
    # so that every length of the document stays right).
    for name, replacement in (("nul", b"Std\x00ardx"), ("u0001", b"\x01tandard"), ("ufffe", b"St\xef\xbf\xbeard")):
        write(p("name-%s.bin" % name), binary.replace(b"Standard", replacement))

    # 5. An unknown enumeration name.
    write(p("leftdock.xml"), xml.replace(b">LeftDockWidgetArea<", b">LeftDock<"))

    # 7. Bytes outside UTF-8 at column 86 and at line 2, column 318; an
    # entity bomb in the handler's text.
    declaration = b'<?xml version="1.0" encoding="UTF-8"?>'
    start = b'<TorviGuiModeSettings><DataOperationMode Name="'
    write(p("byte-86.xml"), declaration + start + b"\xff" + b'"/></TorviGuiModeSettings>')
    write(p("byte-318.xml"), declaration + b"\n" + start + b"x" * 270 + b"\xfe" + b'"/></TorviGuiModeSettings>')
    bomb = b'<!ENTITY l0 "QLS">' + b"".join(
        b'<!ENTITY l%d "%s">' % (i, (b"&l%d;" % (i - 1)) * 10) for i in range(1, 10))
    write(p("laughs.xml"), b"<!DOCTYPE TorviGuiModeSettings [" + bomb + b"]><TorviGuiModeSettings>"
          b"<OperationModeHandler>&l9;</OperationModeHandler></TorviGuiModeSettings>")

    # 10. 100 000 attributes on one unknown element.
    attributes = b"".join(b' a%d=""' % i for i in range(100000))
    write(p("attributes.xml"), b"<TorviGuiModeSettings><Unknown" + attributes + b"/>" + tail)

    # For comparison: an honest document with a name of 100 MB.
    write(p("name-100mb.xml"), b'<TorviGuiModeSettings><DataOperationMode Name="' + b"n" * (100 * 1000 * 1000)
          + b'"/>' + tail)


if __name__ == "__main__":
    main()
