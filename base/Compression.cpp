#include "Compression.h"

#include <zlib.h>

#include <limits>

namespace REPORTGENERATOR {

namespace {

QString bytesText(qint64 count)
{
    return count == 1 ? QStringLiteral("1 byte") : QStringLiteral("%1 bytes").arg(count);
}

bool Inflate(const QByteArray& data, quint32 announced, QByteArray& out, QString& problem)
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
        produced = capacity - zs.avail_out;
        if (rc == Z_BUF_ERROR && zs.avail_out != 0) {
            problem = QStringLiteral("the zlib stream ends early, after %1 of the announced %2")
                          .arg(bytesText(produced)).arg(announced);
            rc = Z_DATA_ERROR;
        } else if (rc == Z_BUF_ERROR) {
            rc = Z_OK;
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

bool InflateCompressed(const QByteArray& compressed, QByteArray& plain, QString* problem)
{
    QString fault;
    bool ok = false;
    if (compressed.size() < 6) {
        fault = QStringLiteral("only %1: too short for a compressed document").arg(bytesText(compressed.size()));
    } else {
        const auto* u = reinterpret_cast<const uchar*>(compressed.constData());
        const quint32 announced = (quint32(u[0]) << 24) | (quint32(u[1]) << 16) | (quint32(u[2]) << 8) | quint32(u[3]);
        if (announced == 0)
            fault = QStringLiteral("it announces an empty document");
        else if (announced > quint32(std::numeric_limits<int>::max() - 1))
            fault = QStringLiteral("the announced size %1 is more than a byte array holds").arg(announced);
        else
            ok = Inflate(compressed, announced, plain, fault);
    }
    if (!ok) {
        plain.clear();
        if (problem)
            *problem = fault;
    }
    return ok;
}

} // namespace REPORTGENERATOR
