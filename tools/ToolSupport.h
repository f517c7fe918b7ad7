#ifndef TORVIXML_TOOLS_TOOLSUPPORT_H
#define TORVIXML_TOOLS_TOOLSUPPORT_H

// Helpers shared by the commands of torvixml: exit codes, the output streams,
// what the library says about its classes, quoting of texts, telling XML from binary, loading a settings document with
// a readable diagnosis, and atomic writing.

#include <QByteArray>
#include <QString>
#include <QVector>

class QCommandLineParser;
class QTextStream;

namespace TORVIXML {
class TorviGuiModeSettings;
struct ClassDescription;
struct MemberDescription;
}

namespace TorviTool {

enum ExitCode {
    ExitSuccess = 0,
    ExitInvalidInput = 1, // failed checks, parse errors, length errors
    ExitUsageOrIo = 2     // bad command line, unreadable or unwritable files
};

/// The settings classes with their members, as the library describes them
/// (root, mode, component).
const QVector<TORVIXML::ClassDescription>& settingsClasses();
/// The class of that name, or null.
const TORVIXML::ClassDescription* settingsClass(const QString& name);

/// Standard output and standard error, both UTF-8.
QTextStream& out();
QTextStream& err();

/// "FILE: message" on standard error.
void reportFileError(const QString& file, const QString& message);

/// Prints "torvixml: message" and a hint to the command's help on standard
/// error and returns ExitUsageOrIo.
int usageError(const QString& command, const QString& message);

/// Parses a command's arguments. Returns -1 when the command should go on;
/// otherwise the exit code (help printed: 0, parse error: 2). Every command
/// gets --quiet, which silences out() from then on.
int parseCommandLine(QCommandLineParser& parser, const QString& command, const QStringList& arguments);

/// A text in double quotes, with backslash, quote, control characters and
/// every blank other than the plain space escaped, so that leading and
/// trailing blanks are visible.
QString quoted(const QString& text);

/// UTF-8 bytes as quoted(); bytes that are not valid UTF-8 are shown as \xNN.
/// validUtf8 (if given) tells whether the bytes were valid.
QString quotedUtf8(const QByteArray& bytes, bool* validUtf8 = nullptr);

enum class DocumentForm { Xml, Binary };

/// XML when the data starts with '<' after an optional byte order mark and
/// white space; binary (plain or compressed) otherwise.
DocumentForm detectForm(const QByteArray& data);

/// Reads a whole file. On failure returns false with a message.
bool readWholeFile(const QString& path, QByteArray& data, QString& message);

/// Reads a settings document (form told from its content) into a fresh
/// root with the given validation flag. Returns ExitSuccess, or
/// ExitInvalidInput / ExitUsageOrIo with a message: for a failure of the
/// library its exact exception text, otherwise a description of what is
/// wrong with the input.
int loadDocument(const QString& path, TORVIXML::TorviGuiModeSettings& root, bool validate,
                 QString& message);

/// Writes the bytes through QSaveFile: the file is replaced only when all of
/// them were written; otherwise it is left as it was and no temporary file
/// remains.
bool writeAtomically(const QString& path, const QByteArray& bytes, QString& message);

} // namespace TorviTool

#endif
