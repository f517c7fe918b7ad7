#include "Compression.h"

#include <QtEndian>

#include <zlib.h>

#include <limits>

namespace REPORTGENERATOR {

namespace {

QString bytesText(qint64 count)
{
    return count == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(count);
}

// Whether the first 8 inflated bytes can begin a plain document of the
// class the limits name.
bool HeaderFits(const char* bytes, quint32 announced, const InflateLimits& limits, QString& problem)
{
    const qint32 id = qint32(qFromBigEndian<quint32>(bytes));
    const qint64 length = qint32(qFromBigEndian<quint32>(bytes + 4));
    if (id != limits.classId) {
        problem = QStringLiteral("its inflated bytes begin with %1, not with the class id %2").arg(id).arg(limits.classId);
        return false;
    }
    if (length != qint64(announced) - 8) {
        problem = QStringLiteral("its inflated object length %1 is not the announced size minus 8 (%2)")
                      .arg(length)
                      .arg(qint64(announced) - 8);
        return false;
    }
    return true;
}

bool Inflate(const QByteArray& data, quint32 announced, const InflateLimits& limits, QByteArray& out,
             QString& problem)
{
    z_stream zs{};
    if (inflateInit(&zs) != Z_OK) {
        problem = QStringLiteral("zlib could not be initialised");
        return false;
    }
    zs.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData() + 4));
    zs.avail_in = uInt(data.size() - 4);

    qint64 capacity = qMin<qint64>(announced, qMax<qint64>(4096, qint64(data.size()) * 4));
    out.resize(int(capacity));
    qint64 produced = 0;
    int rc = Z_OK;
    while (rc == Z_OK) {
        if (produced == capacity) {
            if (capacity == qint64(announced)) {
                // All announced bytes are there: the stream must end now.
                Bytef probe;
                zs.next_out = &probe;
                zs.avail_out = 1;
                rc = inflate(&zs, Z_NO_FLUSH);
                if (rc == Z_STREAM_END && zs.avail_out == 1)
                    break;
                if (zs.avail_out == 0)
                    problem = QStringLiteral("it inflates to more than the announced %1").arg(bytesText(announced));
                else if (rc == Z_BUF_ERROR || rc == Z_OK)
                    problem = QStringLiteral("the zlib stream does not end after the announced %1")
                                  .arg(bytesText(announced));
                rc = Z_DATA_ERROR;
                break;
            }
            capacity = qMin<qint64>(announced, capacity * 2);
            out.resize(int(capacity));
        }
        zs.next_out = reinterpret_cast<Bytef*>(out.data() + produced);
        zs.avail_out = uInt(capacity - produced);
        rc = inflate(&zs, Z_NO_FLUSH);
        const qint64 before = produced;
        produced = capacity - zs.avail_out;
        if (limits.checkHeader && before < 8 && produced >= 8
            && !HeaderFits(out.constData(), announced, limits, problem)) {
            rc = Z_DATA_ERROR;
            break;
        }
        // Called with room to write, zlib makes no progress only when its
        // input has run out.
        if (rc == Z_BUF_ERROR) {
            problem = QStringLiteral("the zlib stream ends early, after %1 of the announced %2")
                          .arg(bytesText(produced)).arg(announced);
            rc = Z_DATA_ERROR;
        }
    }
    if (rc != Z_STREAM_END && problem.isEmpty()) {
        problem = zs.msg ? QStringLiteral("zlib: %1").arg(QString::fromLatin1(zs.msg))
                         : QStringLiteral("zlib error %1").arg(rc);
    }
    inflateEnd(&zs);
    if (rc != Z_STREAM_END)
        return false;
    if (produced != qint64(announced)) {
        problem = QStringLiteral("it inflates to %1 instead of the announced %2")
                      .arg(bytesText(produced)).arg(announced);
        return false;
    }
    out.resize(int(produced));
    return true;
}


} // namespace

bool InflateCompressed(const QByteArray& compressed, QByteArray& plain, QString* problem, const InflateLimits& limits)
{
    QString fault;
    bool ok = false;
    if (compressed.size() < 6) {
        fault = QStringLiteral("only %1: too short for a compressed document").arg(bytesText(compressed.size()));
    } else {
        const quint32 announced = qFromBigEndian<quint32>(compressed.constData());
        const qint64 budget = InflationBudget(compressed.size());
        if (announced == 0)
            fault = QStringLiteral("it announces an empty document");
        else if (announced > quint32(std::numeric_limits<int>::max() - 1))
            fault = QStringLiteral("the announced size %1 is more than a byte array holds").arg(announced);
        else if (qint64(announced) > limits.maxSize)
            fault = QStringLiteral("it announces %1, more than the maximum document size of %2")
                        .arg(bytesText(announced))
                        .arg(bytesText(limits.maxSize));
        else if (limits.budget && qint64(announced) > budget)
            fault = QStringLiteral("it announces %1, more than the %2 that %3 may inflate to (%4 times as many "
                                   "plus %5)")
                        .arg(bytesText(announced))
                        .arg(budget)
                        .arg(bytesText(compressed.size()))
                        .arg(MaxInflationFactor)
                        .arg(InflationAllowance);
        else if (limits.checkHeader && announced < 8)
            fault = QStringLiteral("it announces %1, too few for a document").arg(bytesText(announced));
        else
            ok = Inflate(compressed, announced, limits, plain, fault);
    }
    if (!ok) {
        plain.clear();
        if (problem)
            *problem = fault;
    }
    return ok;
}

} // namespace REPORTGENERATOR
