// torvixml check FILE...: reads each document with validation on and checks
// it for completeness.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QTextStream>

namespace TorviTool {

namespace {

// ExitSuccess, or the exit code with the message to report.
int checkOne(const QString& path, QString& message)
{
    TORVIXML::TorviGuiModeSettings settings;
    const int loaded = loadDocument(path, settings, true, message);
    if (loaded != ExitSuccess)
        return loaded;
    try {
        settings.Check();
    } catch (const ReportException& e) {
        message = e.GetMessageText();
        return ExitInvalidInput;
    }
    const QVector<TORVIXML::DataOperationMode>& modes = settings.GetDataOperationMode();
    int components = 0;
    for (const TORVIXML::DataOperationMode& mode : modes)
        components += mode.GetGuiComponentSettings().size();
    message = QStringLiteral("OK (%1 %2, %3 %4)")
                  .arg(modes.size())
                  .arg(modes.size() == 1 ? QStringLiteral("mode") : QStringLiteral("modes"))
                  .arg(components)
                  .arg(components == 1 ? QStringLiteral("component") : QStringLiteral("components"));
    return ExitSuccess;
}

} // namespace

int runCheck(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Reads each settings document (XML, plain or compressed binary) with validation on\n"
        "and checks it for completeness. Prints \"FILE: OK (N modes, M components)\" on\n"
        "standard output, or \"FILE: <reason>\" on standard error."));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Documents to check."),
                                 QStringLiteral("FILE..."));
    const int parsed = parseCommandLine(parser, QStringLiteral("check"), arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList files = parser.positionalArguments();
    if (files.isEmpty())
        return usageError(QStringLiteral("check"), QStringLiteral("check needs at least one file"));

    int result = ExitSuccess;
    for (const QString& file : files) {
        QString message;
        const int status = checkOne(file, message);
        if (status == ExitSuccess) {
            out() << file << ": " << message << '\n';
            out().flush();
        } else {
            reportFileError(file, message);
        }
        result = qMax(result, status);
    }
    return result;
}

} // namespace TorviTool
