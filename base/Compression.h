#ifndef TORVIXML_COMPRESSION_H
#define TORVIXML_COMPRESSION_H

#include "rgbase_export.h"

#include <QByteArray>
#include <QString>

#include <limits>

namespace REPORTGENERATOR {

/// A compressed document may announce at most this many times its own size
/// plus InflationAllowance bytes, so that what it costs stays in proportion
/// to its size. Deflate itself reaches a factor of about 1000 on runs of
/// zeros; a settings tree of 1000 modes with 20 components each compresses
/// 27 times (distinct names) to 245 times (all alike) at level 9, which the
/// allowance covers up to 32 MiB of plain document.
constexpr qint64 MaxInflationFactor = 16;
constexpr qint64 InflationAllowance = qint64(32) << 20;

/// What a compressed document of compressedSize bytes may inflate to.
inline qint64 InflationBudget(qint64 compressedSize)
{
    return MaxInflationFactor * compressedSize + InflationAllowance;
}

/// What InflateCompressed accepts.
struct InflateLimits
{
    /// The largest announced size accepted; larger ones are refused before
    /// anything is inflated.
    qint64 maxSize = std::numeric_limits<int>::max() - 1;
    /// Whether the announced size is also held to InflationBudget().
    bool budget = false;
    /// When set, the inflated bytes must begin a plain document of this
    /// class: the class id, then an object length of the announced size
    /// minus 8. Checked as soon as those 8 bytes are inflated.
    bool checkHeader = false;
    qint32 classId = 0;
};

/**
 * Inflates Qt's compressed form (what qCompress() makes: the uncompressed
 * size as a big-endian 32-bit number, then a zlib stream).
 *
 * Unlike qUncompress() it never trusts the announced size for allocation:
 * the output grows with what the stream really produces, and the result is
 * accepted only when it comes to exactly the announced size. Announced sizes
 * beyond the limits are refused at once, and with checkHeader the inflating
 * stops as soon as the first 8 inflated bytes show another document.
 * Hostile input therefore costs no more memory than it inflates to, and at
 * most the size it announces.
 *
 * Returns false (with plain empty and, when asked for, a description of the
 * fault in problem) for data that is not such a form or exceeds the limits.
 */
RGBASE_EXPORT bool InflateCompressed(const QByteArray& compressed, QByteArray& plain, QString* problem = nullptr,
                                     const InflateLimits& limits = InflateLimits());

} // namespace REPORTGENERATOR

#endif
