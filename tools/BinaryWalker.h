#ifndef TORVIXML_TOOLS_BINARYWALKER_H
#define TORVIXML_TOOLS_BINARYWALKER_H

// A tolerant reader of the binary form of the settings tree that describes
// what it finds field by field instead of building objects. It serves the
// dump command and the diagnosis of binary files the library refuses.
//
// Everything it reads is bounded by the bytes present: every length is
// checked against the enclosing record, object and buffer before it is
// followed, every loop consumes at least four bytes per round, and the
// nesting depth is fixed by the class structure (root, mode, component), so
// no input makes it crash, hang or allocate more than the input's size.

#include <QByteArray>
#include <QString>

#include <functional>

namespace TorviTool {

/// A binary file as found on disk: plain, or compressed and then inflated.
struct UnpackedBinary
{
    enum Kind {
        Plain,      // starts with the class id of one of the settings classes
        Compressed, // a 32-bit big-endian size followed by a zlib stream
        Unreadable  // neither; problem says why
    };

    Kind kind = Unreadable;
    QByteArray bytes;         // the plain form (inflated when compressed)
    quint32 firstWord = 0;    // the file's first 32-bit word, big-endian
    quint32 announcedSize = 0; // compressed only: the size the file announces
    QString problem;          // Unreadable only
};

/// Inflates a compressed file only when what it announces stays within
/// maxSize and the library's inflation budget.
UnpackedBinary unpackBinary(const QByteArray& fileData, qint64 maxSize);

/// One line of the walk: the offset in the plain bytes, the nesting depth,
/// the text, and whether it reports a fault of the input.
struct WalkLine
{
    WalkLine(qint64 offset, int depth, const QString& text, bool error = false)
        : offset(offset), depth(depth), text(text), error(error)
    {
    }

    qint64 offset = 0;
    int depth = 0;
    QString text;
    bool error = false;
    /// A member record's line: where the record ends by its length, and its
    /// member ("GuiComponentSettings.DockWidgetLocation", empty if unknown).
    qint64 recordEnd = -1;
    QString member;
    /// A text's line: the text (UTF-8 decoded).
    QString value;
    /// The line of an object frame's length: the object's class.
    QString object;
};

struct WalkSummary
{
    int errors = 0;
    qint64 firstErrorOffset = -1;
    QString firstError;
};

/// Walks a plain binary document: the class id, the object length and the
/// member records of the class that id names (the root class when the id is
/// unknown), down through the lists. Each field goes to sink as one line.
WalkSummary walkBinary(const QByteArray& plain, const std::function<void(const WalkLine&)>& sink);

} // namespace TorviTool

#endif
