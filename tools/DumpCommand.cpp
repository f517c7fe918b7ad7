// torvixml dump FILE: an annotated walk over a binary document, field by
// field, that works on damaged input as well.

#include "BinaryWalker.h"
#include "Commands.h"
#include "ToolSupport.h"

#include <QCommandLineParser>
#include <QTextStream>

namespace TorviTool {

int runDump(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Walks a binary settings document (plain, or compressed: then the inflated bytes)\n"
        "and prints every field with its offset: ids and lengths of object frames and\n"
        "member records, member ids with the member's name in its class, element counts and\n"
        "texts (quoted; enumeration names with their value). Unknown members are shown and\n"
        "skipped. Faults of the framing are reported where the byte accounting fails; the\n"
        "exit status is then 1."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Binary document, or - for standard input."));
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, QStringLiteral("dump"), arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(QStringLiteral("dump"), QStringLiteral("dump needs exactly one file"));
    const QString path = positional.first();
    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(QStringLiteral("dump"), message);

    QByteArray data;
    const int read = readInput(path, maxSize, data, message);
    if (read != ExitSuccess) {
        reportFileError(path, message);
        return read;
    }
    if (!data.isEmpty() && detectForm(data) == DocumentForm::Xml) {
        reportFileError(path, QStringLiteral("an XML document, not a binary one"));
        return ExitInvalidInput;
    }
    const UnpackedBinary unpacked = unpackBinary(data, maxSize);
    if (unpacked.kind == UnpackedBinary::Unreadable) {
        reportFileError(path, unpacked.problem);
        return ExitInvalidInput;
    }
    if (unpacked.kind == UnpackedBinary::Plain) {
        out() << path << ": plain binary document, " << data.size() << " bytes\n";
    } else {
        out() << path << ": compressed binary document, " << data.size() << " bytes, announcing "
              << unpacked.announcedSize << " bytes, inflated to " << unpacked.bytes.size()
              << " bytes; offsets are those of the inflated bytes\n";
    }
    const WalkSummary summary = walkBinary(unpacked.bytes, [](const WalkLine& line) {
        out() << formatWalkLine(line) << '\n';
    });
    out().flush();
    if (summary.errors > 0) {
        reportFileError(path, QStringLiteral("%1 %2, the first at offset %3: %4")
                                  .arg(summary.errors)
                                  .arg(summary.errors == 1 ? QStringLiteral("error") : QStringLiteral("errors"))
                                  .arg(summary.firstErrorOffset)
                                  .arg(summary.firstError));
        return ExitInvalidInput;
    }
    return ExitSuccess;
}

} // namespace TorviTool
