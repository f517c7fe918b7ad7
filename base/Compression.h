#ifndef TORVIXML_COMPRESSION_H
#define TORVIXML_COMPRESSION_H

#include "rgbase_export.h"

#include <QByteArray>
#include <QString>

namespace REPORTGENERATOR {

/**
 * Inflates Qt's compressed form (what qCompress() makes: the uncompressed
 * size as a big-endian 32-bit number, then a zlib stream).
 *
 * Unlike qUncompress() it never trusts the announced size for allocation:
 * the output grows with what the stream really produces, and the result is
 * accepted only when it comes to exactly the announced size. Hostile input
 * therefore costs no more memory than it inflates to, and at most the size
 * it announces.
 *
 * Returns false (with plain empty and, when asked for, a description of the
 * fault in problem) for data that is not such a form.
 */
RGBASE_EXPORT bool InflateCompressed(const QByteArray& compressed, QByteArray& plain, QString* problem = nullptr);

} // namespace REPORTGENERATOR

#endif
