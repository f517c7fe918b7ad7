#!/usr/bin/env python3
"""Writes the seed corpora of the fuzz targets into fuzz/corpus/.

The documents are encoded here by hand, independently of the library, from
the format tables: object frame = [id] objectLength records, record =
memberId recordLength payload, text payload = 32-bit byte count (0xFFFFFFFF
for a null text) and UTF-8 bytes, list payload = element count and element
frames without id; all integers big-endian. The compressed binary form is
qCompress()'s: the big-endian uncompressed size, then a zlib stream.

Run it from anywhere: python3 fuzz/make_corpus.py

Files named regression-* in the corpus folders are inputs that fuzzing found;
they are kept by hand and not written by this script.
"""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
BIN = os.path.join(HERE, "corpus", "binary")
XML = os.path.join(HERE, "corpus", "xml")

ROOT_ID = 232099450
MODE_ID = -447125075
COMPONENT_ID = -1436546027

NAME = 1490308454
USAGE = 249323652
LOCATION = 388603748
COMPONENT_LIST = -1059801328
MODE_LIST = -1785428698
HANDLER = 1861080544


def i32(v):
    return struct.pack(">i", v)


def text(s):
    if s is None:
        return struct.pack(">I", 0xFFFFFFFF)
    data = s.encode("utf-8")
    return struct.pack(">I", len(data)) + data


def record(member, payload, length=None):
    return i32(member) + i32(len(payload) if length is None else length) + payload


def frame(records, ident=None, length=None):
    body = b"".join(records)
    head = i32(ident) if ident is not None else b""
    return head + i32(len(body) if length is None else length) + body


def component(name, usage, location):
    return frame([record(NAME, text(name)), record(USAGE, text(usage)), record(LOCATION, text(location))])


def mode(name, components):
    records = [record(NAME, text(name))]
    if components:
        records.append(record(COMPONENT_LIST, i32(len(components)) + b"".join(components)))
    return frame(records)


def root(modes, handler, extra=()):
    records = []
    if modes:
        records.append(record(MODE_LIST, i32(len(modes)) + b"".join(modes)))
    records.append(record(HANDLER, text(handler)))
    records.extend(extra)
    return frame(records, ROOT_ID)


def compress(plain, announced=None):
    return struct.pack(">I", len(plain) if announced is None else announced) + zlib.compress(plain, 9)


def write(folder, name, data):
    if isinstance(data, str):
        data = data.encode("utf-8")
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def binary_seeds():
    # The worked examples, to the byte.
    example_component = component("A", "AVAILABLE", "LeftDockWidgetArea")
    assert len(example_component) == 68
    leaf = i32(COMPONENT_ID) + example_component
    assert len(leaf) == 72 and leaf[:8].hex() == "aa600c1500000040"
    element = mode("M", [example_component])
    assert len(element) == 97 and element[:4].hex() == "0000005d"
    example_root = root([element], "TX470ManagementComponent")
    assert len(example_root) == 153 and example_root[:8].hex() == "0dd58e7a00000091"
    write(BIN, "example-root-153.bin", example_root)
    write(BIN, "example-component-72.bin", leaf)
    write(BIN, "example-mode-element-97.bin", element)

    # The demo tree (one mode "Standard" with two components).
    demo = root([mode("Standard", [
        component("Overview", "DEFAULT_DISPLAY", "LeftDockWidgetArea"),
        component("Details", "AVAILABLE", "FloatingDockWidgetArea "),
    ])], "PMR830ManagementComponent")
    write(BIN, "demo.bin", demo)
    write(BIN, "demo-compressed.bin", compress(demo))

    # Every enumeration name, null names, an invalid enumeration value.
    locations = ["LeftDockWidgetArea", "RightDockWidgetArea", "TopDockWidgetArea", "BottomDockWidgetArea",
                 "CenterDockWidgetArea", "FloatingDockWidgetArea ", "NoDockWidgetArea"]
    every = root([
        mode("Alle", [component("K%d" % i, ["AVAILABLE", "DEFAULT_DISPLAY"][i % 2], loc)
                      for i, loc in enumerate(locations)]),
        mode(None, [component(None, None, "NoSuchArea")]),
        mode("", []),
    ], "QLSManagementComponent")
    write(BIN, "every-name.bin", every)
    write(BIN, "handler-vbk.bin", root([], "VbkManagementComponent"))

    # Hostile: an element count of 0x7FFFFFFF in front of one element.
    one = mode("M", [])
    write(BIN, "hostile-count-7fffffff.bin",
          frame([record(MODE_LIST, i32(0x7FFFFFFF) + one)], ROOT_ID))
    # Hostile: a text announcing 0xFFFFFFFE bytes.
    write(BIN, "hostile-text-count-4g.bin",
          frame([record(HANDLER, struct.pack(">I", 0xFFFFFFFE) + b"TX470", length=4)], ROOT_ID))
    # Hostile: negative record lengths, and an object length that lies.
    write(BIN, "hostile-negative-record.bin",
          frame([record(0x1234, b"", length=-8), record(0x1234, b"", length=-100),
                 record(HANDLER, text("TX470ManagementComponent"))], ROOT_ID))
    write(BIN, "hostile-negative-object.bin",
          frame([record(HANDLER, text("TX470ManagementComponent"))], ROOT_ID, length=-1))
    write(BIN, "hostile-record-too-long.bin",
          frame([record(HANDLER, text("TX470ManagementComponent"), length=29)], ROOT_ID))
    # Hostile: records in the wrong class (a usage record in a mode, a mode
    # list in a component, the component list in the root).
    write(BIN, "hostile-wrong-class.bin",
          root([frame([record(NAME, text("M")), record(USAGE, text("AVAILABLE")),
                       record(COMPONENT_LIST, i32(1) + frame([
                           record(NAME, text("C")), record(MODE_LIST, i32(1) + mode("X", [])),
                           record(USAGE, text("AVAILABLE")), record(LOCATION, text("NoDockWidgetArea"))]))])],
               "TX470ManagementComponent",
               extra=[record(COMPONENT_LIST, i32(1) + component("R", "AVAILABLE", "TopDockWidgetArea"))]))
    # Hostile: element frames of the wrong class in the mode list.
    write(BIN, "hostile-wrong-element.bin",
          root([component("C", "AVAILABLE", "LeftDockWidgetArea")], "TX470ManagementComponent"))
    # Hostile compressed forms: announced size too small and too large.
    write(BIN, "hostile-compressed-short.bin", compress(demo, announced=16))
    write(BIN, "hostile-compressed-long.bin", compress(demo, announced=0x7FFFFFF0))
    write(BIN, "hostile-compressed-truncated.bin", compress(demo)[:40])


EXAMPLE_XML = (
    '<TorviGuiModeSettings><DataOperationMode Name="Standard"><GuiComponentSettings Name="Overview">'
    '<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage><DockWidgetLocation>LeftDockWidgetArea'
    '</DockWidgetLocation></GuiComponentSettings><GuiComponentSettings Name="Details"><GuiComponentUsage>'
    'AVAILABLE</GuiComponentUsage><DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation>'
    '</GuiComponentSettings></DataOperationMode><OperationModeHandler>PMR830ManagementComponent'
    '</OperationModeHandler></TorviGuiModeSettings>')


def xml_seeds():
    write(XML, "example.xml", EXAMPLE_XML)
    write(XML, "example-declared.xml", '<?xml version="1.0" encoding="UTF-8"?>\n' + EXAMPLE_XML + "\n")
    write(XML, "formatted.xml", """<?xml version="1.0"?>
<!-- settings -->
<TorviGuiModeSettings>
  <?editor keep?>
  <OperationModeHandler>VbkManagementComponent</OperationModeHandler>
  <DataOperationMode>
    <Name>Zwei</Name>
    <GuiComponentSettings Other="x">
      <DockWidgetLocation>RightDockWidgetArea</DockWidgetLocation>
      <Name><![CDATA[A&B]]></Name>
      <GuiComponentUsage>AVAILABLE</GuiComponentUsage>
    </GuiComponentSettings>
    <GuiComponentSettings Name="&lt;&#x263A;&gt;">
      <GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage>
      <DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation>
      <Extra><Extra>deep</Extra><More a="1"/></Extra>
    </GuiComponentSettings>
  </DataOperationMode>
  <DataOperationMode Name=""/>
</TorviGuiModeSettings>
""")
    write(XML, "every-name.xml",
          "<TorviGuiModeSettings><DataOperationMode Name=\"m\">" + "".join(
              '<GuiComponentSettings Name="c%d"><GuiComponentUsage>%s</GuiComponentUsage>'
              "<DockWidgetLocation>%s</DockWidgetLocation></GuiComponentSettings>" % (i, u, l)
              for i, (u, l) in enumerate([
                  ("AVAILABLE", "BottomDockWidgetArea"), ("DEFAULT_DISPLAY", "CenterDockWidgetArea"),
                  ("AVAILABLE", "NoDockWidgetArea"), ("available", "FloatingDockWidgetArea"),
                  ("", "")]))
          + "</DataOperationMode><OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
            "<OperationModeHandler>TX470ManagementComponent</OperationModeHandler></TorviGuiModeSettings>")
    write(XML, "unnamed-mode.xml",
          "<TorviGuiModeSettings><DataOperationMode><GuiComponentSettings/></DataOperationMode>"
          "<OperationModeHandler/></TorviGuiModeSettings>")
    write(XML, "foreign-root.xml", "<GuiComponentSettings Name=\"x\"/>")
    laughs = '<?xml version="1.0"?>\n<!DOCTYPE TorviGuiModeSettings [\n <!ENTITY l0 "QLS">\n'
    for i in range(1, 6):
        laughs += ' <!ENTITY l%d "%s">\n' % (i, ("&l%d;" % (i - 1)) * 10)
    laughs += ']>\n<TorviGuiModeSettings><OperationModeHandler>&l5;</OperationModeHandler></TorviGuiModeSettings>\n'
    write(XML, "hostile-laughs.xml", laughs)
    write(XML, "internal-entity.xml",
          '<!DOCTYPE TorviGuiModeSettings [<!ENTITY h "PMR830ManagementComponent"><!ENTITY n "Mode">]>'
          '<TorviGuiModeSettings><DataOperationMode Name="&n;"/><OperationModeHandler>&h;</OperationModeHandler>'
          '</TorviGuiModeSettings>')
    write(XML, "hostile-external-entity.xml",
          '<!DOCTYPE TorviGuiModeSettings [<!ENTITY x SYSTEM "file:///etc/hostname">]>'
          '<TorviGuiModeSettings><DataOperationMode Name="a"><Name>&x;</Name></DataOperationMode>'
          '<OperationModeHandler>&x;</OperationModeHandler></TorviGuiModeSettings>')
    depth = 300
    write(XML, "hostile-deep-unknown.xml",
          '<TorviGuiModeSettings><DataOperationMode Name="d"><GuiComponentSettings Name="g">'
          + "<u>" * depth + "</u>" * depth
          + "<GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
          + "".join("<e%d>" % i for i in range(depth)) + "".join("</e%d>" % i for i in reversed(range(depth)))
          + "<DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
          + "</DataOperationMode><OperationModeHandler>" + "<t>" * 50 + "</t>" * 50
          + "VbkManagementComponent</OperationModeHandler></TorviGuiModeSettings>")
    write(XML, "hostile-deep-open.xml", "<TorviGuiModeSettings>" + "<DataOperationMode>" * 200)
    write(XML, "hostile-invalid-utf8.xml",
          b'<TorviGuiModeSettings><DataOperationMode Name="a\xff\xfeb"/>'
          b"<OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>")
    write(XML, "latin1.xml",
          b'<?xml version="1.0" encoding="ISO-8859-1"?><TorviGuiModeSettings><DataOperationMode Name="M\xe4rz"/>'
          b"<OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>")
    write(XML, "utf16.xml", ("\ufeff" + EXAMPLE_XML).encode("utf-16-le"))
    write(XML, "hostile-trailing-garbage.xml", EXAMPLE_XML + "<TorviGuiModeSettings>")
    write(XML, "hostile-truncated.xml", EXAMPLE_XML[:200])


if __name__ == "__main__":
    os.makedirs(BIN, exist_ok=True)
    os.makedirs(XML, exist_ok=True)
    binary_seeds()
    xml_seeds()
