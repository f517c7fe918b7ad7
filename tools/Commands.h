#ifndef TORVIXML_TOOLS_COMMANDS_H
#define TORVIXML_TOOLS_COMMANDS_H

// The commands of torvixml. Each gets the arguments that follow its name and
// returns the process's exit code (see ExitCode in ToolSupport.h).

#include <QCoreApplication>
#include <QStringList>

#include <memory>

namespace TorviTool {

int runDemo(const QStringList& arguments);
int runConvert(const QStringList& arguments);
int runCheck(const QStringList& arguments);
int runDump(const QStringList& arguments);
int runDiff(const QStringList& arguments);
int runNames(const QStringList& arguments);
int runFormat(const QStringList& arguments);
int runPreview(const QStringList& arguments);

/// The application object the command in argv[1] needs: a QGuiApplication
/// for the preview, a QCoreApplication otherwise.
std::unique_ptr<QCoreApplication> createApplication(int& argc, char** argv);

/// Switches the translation service to the language (when not empty) and
/// warns on standard error when no TorviXML catalogue for it was found.
void selectLanguage(const QString& language);

} // namespace TorviTool

#endif
