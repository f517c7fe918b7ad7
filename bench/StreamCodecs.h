#ifndef TORVIXML_BENCH_STREAMCODECS_H
#define TORVIXML_BENCH_STREAMCODECS_H

// Hand-written codecs over the plain structs that produce exactly the bytes
// and the XML text the library produces for the same tree. They are what a
// developer would write directly against QDataStream and QXmlStreamWriter /
// QXmlStreamReader, without any of the library's object machinery, and serve
// as the yardstick for the library's own writers and readers.

#include "BenchTrees.h"

#include <QByteArray>
#include <QString>

namespace Bench {

/// The library's binary document: class id, object length, member records,
/// big-endian, lengths patched in place in the output array.
QByteArray EncodeBinary(const PlainTree& tree);
/// Reads a binary document. Returns false for a foreign class id, lengths
/// that do not add up or an unknown enumeration name.
bool DecodeBinary(const QByteArray& bytes, PlainTree& tree);

/// The library's XML document (XML declaration, then the root element,
/// unindented), as GetXmlString() returns it.
QString EncodeXml(const PlainTree& tree);
/// Reads an XML document. Returns false for malformed XML or an unknown
/// enumeration name.
bool DecodeXml(const QString& xml, PlainTree& tree);

} // namespace Bench

#endif
