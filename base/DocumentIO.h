#ifndef TORVIXML_DOCUMENTIO_H
#define TORVIXML_DOCUMENTIO_H

// Reading a whole document from a device without letting the device decide
// how much memory that takes, and writing one so that a file is replaced
// whole or not at all. Used by the whole-document operations of IRGObject
// and by the torvixml tool.

#include "rgbase_export.h"

#include <QByteArray>
#include <QString>

class QIODevice;

namespace REPORTGENERATOR {

/// "more than the maximum document size of N bytes", preceded by what
/// holds how much: "the file holds 3221225472 bytes, more than ...", or,
/// for a size that is not known (size < 0), "the input holds more than ...".
RGBASE_EXPORT QString SizeLimitMessage(const QString& what, qint64 size, qint64 maxSize,
                                       const QString& unit = QStringLiteral("bytes"));

/// Reads what an open device holds from its position to its end, at most
/// maxSize bytes. A random-access device (a regular file) whose remaining
/// size exceeds maxSize is refused before anything is read; a sequential one
/// (a pipe, a terminal, a character device such as /dev/zero) is read in
/// steps until it ends and refused as soon as it has delivered more than
/// maxSize bytes. Returns false with data empty and a message in problem
/// when the device holds too much (then tooLarge, if given, is set) or a
/// read fails.
RGBASE_EXPORT bool ReadWholeDevice(QIODevice& device, qint64 maxSize, QByteArray& data, QString& problem,
                                   bool* tooLarge = nullptr);

/// Writes all bytes to an open device, going on after short writes.
/// Returns false when a write fails; the device's errorString() then says
/// why (a short write reports no reason of its own, the next one does).
RGBASE_EXPORT bool WriteAll(QIODevice& device, const QByteArray& bytes);

/// Writes bytes to path through QSaveFile: the file is replaced only when all
/// of them were written and committed; otherwise it is left as it was, no
/// temporary file remains, and problem says why, in the system's words
/// ("cannot write: No space left on device").
RGBASE_EXPORT bool WriteFileAtomically(const QString& path, const QByteArray& bytes, QString& problem);

} // namespace REPORTGENERATOR

#endif
