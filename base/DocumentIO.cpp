#include "DocumentIO.h"

#include <QIODevice>
#include <QSaveFile>

#include <limits>

namespace REPORTGENERATOR {

QString SizeLimitMessage(const QString& what, qint64 size, qint64 maxSize, const QString& unit)
{
    const QString limit = QStringLiteral("the maximum document size of %1 %2").arg(maxSize).arg(unit);
    if (size < 0)
        return QStringLiteral("%1 holds more than %2").arg(what, limit);
    return QStringLiteral("%1 holds %2 %3, more than %4").arg(what).arg(size).arg(unit, limit);
}

bool ReadWholeDevice(QIODevice& device, qint64 maxSize, QByteArray& data, QString& problem, bool* tooLarge)
{
    data.clear();
    if (tooLarge)
        *tooLarge = false;
    // No byte array holds more than about 2 GiB.
    maxSize = qBound<qint64>(0, maxSize, std::numeric_limits<int>::max() - (qint64(1) << 24));
    const bool known = !device.isSequential();
    const qint64 remaining = known ? device.size() - device.pos() : -1;
    if (known && remaining > maxSize) {
        problem = SizeLimitMessage(QStringLiteral("the file"), remaining, maxSize);
        if (tooLarge)
            *tooLarge = true;
        return false;
    }
    // Grow with what arrives, one step at a time: a device may announce
    // nothing (pipes, /proc files, character devices) or deliver endlessly.
    constexpr qint64 Step = 1024 * 1024;
    if (known && remaining > 0)
        data.reserve(int(remaining + 1));
    qint64 size = 0;
    for (;;) {
        const qint64 want = known && remaining >= size ? qMin(Step, remaining - size + 1) : Step;
        const qint64 room = qMin(want, maxSize + 1 - size);
        data.resize(int(size + room));
        const qint64 got = device.read(data.data() + size, room);
        if (got < 0) {
            data.clear();
            problem = QStringLiteral("cannot read: %1").arg(device.errorString());
            return false;
        }
        size += got;
        if (size > maxSize) {
            data.clear();
            problem = SizeLimitMessage(known ? QStringLiteral("the file") : QStringLiteral("the input"), -1, maxSize);
            if (tooLarge)
                *tooLarge = true;
            return false;
        }
        if (got == 0)
            break;
    }
    data.resize(int(size));
    return true;
}

bool WriteAll(QIODevice& device, const QByteArray& bytes)
{
    // A write the system cuts short (a full disk, a file size limit) reports
    // no reason; the next one fails at once and does.
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 step = device.write(bytes.constData() + written, bytes.size() - written);
        if (step <= 0)
            return false;
        written += step;
    }
    return true;
}

bool WriteFileAtomically(const QString& path, const QByteArray& bytes, QString& problem)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        problem = QStringLiteral("cannot open for writing: %1").arg(file.errorString());
        return false;
    }
    if (!WriteAll(file, bytes) || !file.flush()) {
        problem = QStringLiteral("cannot write: %1").arg(file.errorString());
        file.cancelWriting(); // the temporary file goes with the object
        return false;
    }
    if (!file.commit()) {
        problem = QStringLiteral("cannot write: %1").arg(file.errorString());
        return false;
    }
    return true;
}

} // namespace REPORTGENERATOR
