// torvixml: builds, converts, checks and inspects TorviXML GUI-mode settings
// documents from the command line.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <new>

using namespace TorviTool;

namespace {

const char* const description =
    "Builds, converts, checks and inspects TorviXML GUI-mode settings documents.\n"
    "\n"
    "Commands:\n"
    "  demo [DIR]        Build the example settings, write DIR/settings.xml and\n"
    "                    DIR/settings.bin, read both back and print them.\n"
    "  convert IN OUT    Convert between XML (.xml) and binary (.bin) documents.\n"
    "  check FILE...     Check documents; errors with line and column (XML) or\n"
    "                    offset (binary), notes with path, value and hint.\n"
    "  dump FILE         Annotated walk over a binary document, or the outline of\n"
    "                    an XML one, with offsets or lines.\n"
    "  diff A B          Compare two documents member by member.\n"
    "  format FILE       Write a document as indented XML.\n"
    "  names             List the enumeration values with names and display names.\n"
    "  preview FILE MODE -o PNG\n"
    "                    Draw the main window of a mode as an image.\n"
    "\n"
    "Inputs may be files, pipes or devices, and - for standard input; convert\n"
    "writes to standard output for OUT -. Documents larger than --max-size\n"
    "(default 256M) are refused. check, dump and diff print JSON with --json.\n"
    "'torvixml COMMAND --help' describes a command's options.\n"
    "Exit status: 0 success, 1 invalid input, 2 usage or I/O error; diff: 0 equal,\n"
    "1 different, 2 error.";

int runCommand(const QString& command, const QStringList& arguments)
{
    if (command == QLatin1String("demo"))
        return runDemo(arguments);
    if (command == QLatin1String("convert"))
        return runConvert(arguments);
    if (command == QLatin1String("check"))
        return runCheck(arguments);
    if (command == QLatin1String("dump"))
        return runDump(arguments);
    if (command == QLatin1String("diff"))
        return runDiff(arguments);
    if (command == QLatin1String("format"))
        return runFormat(arguments);
    if (command == QLatin1String("names"))
        return runNames(arguments);
    if (command == QLatin1String("preview"))
        return runPreview(arguments);
    return usageError(QString(), QStringLiteral("unknown command \"%1\"").arg(command));
}

} // namespace

int main(int argc, char* argv[])
{
    const std::unique_ptr<QCoreApplication> app = createApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("torvixml"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TORVIXML_VERSION_STRING));

    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(description));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("The command to run."),
                                 QStringLiteral("COMMAND"));
    parser.addPositionalArgument(QStringLiteral("arguments"), QStringLiteral("The command's arguments."),
                                 QStringLiteral("[ARGUMENTS...]"));
    // Everything after the command belongs to the command's own parser.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    if (!parser.parse(QCoreApplication::arguments()))
        return usageError(QString(), parser.errorText());
    if (parser.isSet(help) || parser.isSet(QStringLiteral("help-all"))) {
        QString text = parser.helpText();
        const int options = text.indexOf(QStringLiteral(" [options]"));
        if (text.startsWith(QStringLiteral("Usage: ")) && options > 0)
            text.replace(7, options - 7, QStringLiteral("torvixml"));
        out() << text;
        out().flush();
        return ExitSuccess;
    }
    if (parser.isSet(version)) {
        out() << QCoreApplication::applicationName() << ' ' << QCoreApplication::applicationVersion() << '\n';
        out().flush();
        return ExitSuccess;
    }
    QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        return usageError(QString(), QStringLiteral("no command given"));
    const QString command = arguments.takeFirst();

    try {
        return runCommand(command, arguments);
    } catch (const ReportException& e) {
        // The commands catch the library's failures themselves; this is the
        // last line of defence.
        err() << "torvixml: " << e.GetMessageText() << '\n';
        err().flush();
        return ExitInvalidInput;
    } catch (const std::bad_alloc&) {
        err() << "torvixml: out of memory\n";
        err().flush();
        return ExitUsageOrIo;
    }
}
