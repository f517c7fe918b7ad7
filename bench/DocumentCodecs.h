#ifndef TORVIXML_BENCH_DOCUMENTCODECS_H
#define TORVIXML_BENCH_DOCUMENTCODECS_H

// The same tree in general-purpose formats: compact JSON through
// QJsonDocument, CBOR through QCborValue and, when available, Protocol
// Buffers. Each writes from and reads into the plain structs, so the cost of
// building and walking the format's own document model is included, as it
// is for the library's objects. Enumerations travel as their names in JSON
// and CBOR and as enum numbers in Protocol Buffers.

#include "BenchTrees.h"

#include <QByteArray>

#include <string>

namespace Bench {

QByteArray EncodeJson(const PlainTree& tree);
bool DecodeJson(const QByteArray& json, PlainTree& tree);

QByteArray EncodeCbor(const PlainTree& tree);
bool DecodeCbor(const QByteArray& cbor, PlainTree& tree);

#ifdef TORVIXML_BENCH_PROTOBUF
std::string EncodeProtobuf(const PlainTree& tree);
bool DecodeProtobuf(const std::string& bytes, PlainTree& tree);
#endif

} // namespace Bench

#endif
