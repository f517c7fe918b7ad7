#ifndef TORVIXML_TOOLS_TOOLSUPPORT_H
#define TORVIXML_TOOLS_TOOLSUPPORT_H

// Helpers shared by the commands of torvixml: exit codes, the output streams,
// what the library says about its classes, quoting of texts, telling XML from binary, loading a settings document with
// a readable diagnosis, and atomic writing.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

class QCommandLineOption;
class QCommandLineParser;
class QJsonObject;
class QTextStream;

namespace TORVIXML {
class TorviGuiModeSettings;
struct ClassDescription;
struct MemberDescription;
struct ObjectValues;
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

/// The indexes of a class's members in the order both stored forms write
/// them.
QVector<int> membersInWriteOrder(const TORVIXML::ClassDescription& cls);
/// The index of the class's member of that name, or -1.
int memberIndex(const TORVIXML::ClassDescription& cls, const QString& name);
/// Whether an object has its Name member set, and the name it holds.
bool nameOf(const TORVIXML::ObjectValues& object, QString& name);

/// How an enumeration member reads a text: " -> value N", or " (not a name
/// of MEMBER)" (always so when the text is not one that could be a name);
/// empty for other members.
QString enumerationValueNote(const TORVIXML::MemberDescription& member, const QString& text, bool validText = true);

/// A list element's step in an object path: "DataOperationMode[Name=\"Standard\"]"
/// when byName, else "DataOperationMode[2]" (its position, from 1).
QString pathSegment(const QString& className, bool byName, const QString& name, int position);

/// Where a diagnostic or a line of a dump points: a line and column of an
/// XML document, an offset of a binary one (of the inflated bytes for a
/// compressed one), or the file as a whole.
struct Place
{
    qint64 line = 0;
    qint64 column = 0;
    qint64 offset = -1;

    static Place at(qint64 line, qint64 column) { return Place{line, column, -1}; }
    static Place atOffset(qint64 offset) { return Place{0, 0, offset}; }
    bool isEmpty() const { return line <= 0 && offset < 0; }
    /// "3:7", "offset 40", or empty.
    QString text() const;
    /// Adds "line" and "column", or "offset", to a JSON object.
    void addTo(QJsonObject& object) const;
};

/// Prints the object as an indented JSON document on standard output.
void printJson(const QJsonObject& object);

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

/// Where a command reads or writes: a file (or a pipe or device by its
/// name), or, for "-", standard input or standard output.
bool isStandardStream(const QString& path);

/// The option --max-size of the commands that read documents, and its
/// value: a number of bytes, or of KiB, MiB or GiB with the suffix K, M or G.
/// Without the option, the library's default maximum document size.
QCommandLineOption maxSizeOption();
bool maxSizeFrom(const QCommandLineParser& parser, qint64& maxSize, QString& message);

/// Reads a whole input, at most maxSize bytes (a larger file is refused by
/// its size before it is read). Returns ExitSuccess, or ExitInvalidInput (too
/// large) / ExitUsageOrIo (cannot open or read) with a message.
int readInput(const QString& path, qint64 maxSize, QByteArray& data, QString& message);

/// Reads a settings document (form told from its content) into root with
/// the given validation flag and maximum document size. Returns
/// ExitSuccess, or ExitInvalidInput / ExitUsageOrIo with a message: for a
/// failure of the library its exact exception text or its reason, for a
/// binary document the first fault a walk over the bytes finds. data (if
/// given) receives the bytes read.
int loadDocument(const QString& path, TORVIXML::TorviGuiModeSettings& root, bool validate, qint64 maxSize,
                 QString& message, QByteArray* data = nullptr);

/// Without validation a text that names no value of its enumeration is read
/// as a value without a name, which would be written as an empty text. Says
/// for each such value where it is: "OBJECT: MEMBER \"TEXT\" (PLACE) is no
/// name of its enumeration", with the text of the input and its place where
/// they can be found.
QStringList namelessValues(const TORVIXML::TorviGuiModeSettings& settings, const QByteArray& data, qint64 maxSize);

/// When settings hold values without a name (see namelessValues), reports
/// each and that output was not written, and returns true.
bool reportNamelessValues(const QString& input, const QString& output, const TORVIXML::TorviGuiModeSettings& settings,
                          const QByteArray& data, qint64 maxSize);

/// Writes the bytes to path, atomically (the file is replaced only when all
/// of them were written; otherwise it is left as it was and no temporary
/// file remains), or to standard output for "-". On failure returns false
/// with the system's reason.
bool writeOutput(const QString& path, const QByteArray& bytes, QString& message);

} // namespace TorviTool

#endif
