#ifndef TORVIXML_FUZZ_FUZZSUPPORT_H
#define TORVIXML_FUZZ_FUZZSUPPORT_H

// Oracles shared by the fuzz targets. A target reads its input into a root
// object in every way it knows; whatever ends up in the object (also after a
// false result or an exception) must then satisfy the checks below. A failed
// check aborts with a message, which libFuzzer reports as a crash and saves
// the input for.

#include <TorviXML/TorviXML.h>

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>

#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <string>

namespace TorviFuzz {

using TORVIXML::DataOperationMode;
using TORVIXML::GuiComponentSettings;
using TORVIXML::TorviGuiModeSettings;

[[noreturn]] inline void Fail(const char* what, const QByteArray& detail = QByteArray())
{
    std::fprintf(stderr, "ORACLE FAILURE: %s\n", what);
    if (!detail.isEmpty())
        std::fprintf(stderr, "%s\n", detail.constData());
    std::abort();
}

inline void Require(bool condition, const char* what, const QByteArray& detail = QByteArray())
{
    if (!condition)
        Fail(what, detail);
}

/// A QFile whose content comes from memory, so that LoadXml(QFile*) and
/// LoadBinary(QFile*) can be fed without touching the file system.
class MemoryFile : public QFile
{
public:
    explicit MemoryFile(const QByteArray& data)
        : m_data(data)
    {
    }
    ~MemoryFile() override { close(); }

    bool open(OpenMode mode) override
    {
        if (mode & WriteOnly)
            return false;
        m_offset = 0;
        return QIODevice::open(mode | Unbuffered);
    }
    void close() override { QIODevice::close(); }
    bool isSequential() const override { return false; }
    qint64 size() const override { return m_data.size(); }
    qint64 pos() const override { return QIODevice::pos(); }
    bool seek(qint64 offset) override
    {
        if (offset < 0 || offset > m_data.size() || !QIODevice::seek(offset))
            return false;
        m_offset = offset;
        return true;
    }
    bool atEnd() const override { return !isOpen() || m_offset >= m_data.size(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 n = qMin<qint64>(maxSize, m_data.size() - m_offset);
        if (n <= 0)
            return 0;
        std::memcpy(data, m_data.constData() + m_offset, size_t(n));
        m_offset += n;
        return n;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_data;
    qint64 m_offset = 0;
};

/// The outcome of one read: the result, and the message of the library's
/// exception that ended it (null when none).
struct Outcome
{
    bool result = false;
    QString exception;

    bool operator==(const Outcome& other) const
    {
        return result == other.result && exception == other.exception;
    }
    QByteArray Describe() const
    {
        return exception.isNull() ? QByteArray(result ? "true" : "false") : "exception: " + exception.toUtf8();
    }
};

template <typename Read>
Outcome Attempt(Read&& read)
{
    Outcome outcome;
    try {
        outcome.result = read();
    } catch (const ReportException& e) {
        outcome.exception = e.GetMessageText();
        Require(!outcome.exception.isEmpty(), "exception without a message");
    }
    return outcome;
}

/// A root that already holds a mode with a component and a handler: a read
/// into it either replaces all of it or, failing, leaves all of it.
inline TorviGuiModeSettings Preloaded(bool validate)
{
    GuiComponentSettings component;
    component.SetName(QStringLiteral("vorher"));
    component.SetGuiComponentUsage(GuiComponentSettings::DEFAULT_DISPLAY);
    component.SetDockWidgetLocation(GuiComponentSettings::BottomDockWidgetArea);
    DataOperationMode mode;
    mode.SetName(QStringLiteral("vorher"));
    mode.AppendGuiComponentSettings(component);
    TorviGuiModeSettings root;
    root.AppendDataOperationMode(mode);
    root.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    root.SetValidate(validate);
    return root;
}

/// Binary form of the object as written with validation off. Writing with
/// validation off never checks, so it must never throw.
inline QByteArray LooseBinary(const TorviGuiModeSettings& object)
{
    TorviGuiModeSettings copy(object);
    copy.SetValidate(false);
    try {
        return copy.GetBinaryRepresentationAsQByteArray();
    } catch (const ReportException& e) {
        Fail("writing binary with validation off threw", e.GetMessageText().toUtf8());
    }
}

inline QString LooseXml(const TorviGuiModeSettings& object)
{
    TorviGuiModeSettings copy(object);
    copy.SetValidate(false);
    try {
        return copy.GetXmlString();
    } catch (const ReportException& e) {
        Fail("writing XML with validation off threw", e.GetMessageText().toUtf8());
    }
}

/// Reads a document that the library itself wrote, with validation off:
/// that must succeed without an exception.
inline TorviGuiModeSettings ReadOwnBinary(const QByteArray& bytes)
{
    TorviGuiModeSettings object;
    object.SetValidate(false);
    QByteArray data(bytes);
    try {
        if (!object.SetBinaryRepresentation(data))
            Fail("a binary document written by the library does not read back", bytes.toHex());
    } catch (const ReportException& e) {
        Fail("reading an own binary document with validation off threw", e.GetMessageText().toUtf8());
    }
    return object;
}

inline TorviGuiModeSettings ReadOwnXml(const QString& xml)
{
    TorviGuiModeSettings object;
    object.SetValidate(false);
    try {
        if (!object.SetXmlString(xml, false))
            Fail("an XML document written by the library does not read back", xml.toUtf8());
    } catch (const ReportException& e) {
        Fail("reading an own XML document with validation off threw", e.GetMessageText().toUtf8());
    }
    return object;
}

/// Fixed point of one form: write what was read, read and write that again;
/// the second writing must reproduce the first one's input byte for byte,
/// and the two objects read from own documents must compare equal.
template <typename Document, typename Write, typename Read, typename Show>
void CheckFixedPoint(const TorviGuiModeSettings& object, const char* form, Write write, Read read, Show show)
{
    const Document first = write(object);
    const TorviGuiModeSettings once = read(first);
    const Document second = write(once);
    const TorviGuiModeSettings twice = read(second);
    const Document third = write(twice);
    Require(second == third, (std::string(form) + " writing is not a fixed point after one round").c_str(),
            "second: " + show(second) + "\nthird:  " + show(third));
    Require(once == twice, (std::string("objects read from equal ") + form + " documents differ").c_str());
}

inline void CheckBinaryFixedPoint(const TorviGuiModeSettings& object)
{
    CheckFixedPoint<QByteArray>(object, "binary", LooseBinary, ReadOwnBinary,
                                [](const QByteArray& bytes) { return bytes.toHex(); });
}

inline void CheckXmlFixedPoint(const TorviGuiModeSettings& object)
{
    CheckFixedPoint<QString>(object, "XML", LooseXml, ReadOwnXml, [](const QString& xml) { return xml.toUtf8(); });
}

inline bool HasXmlNames(const TorviGuiModeSettings& object);

/// An object that passes Check() must be writable in validation mode, and
/// since every part of it then has data, the documents must equal those
/// written with validation off.
inline void CheckValidatedWrite(const TorviGuiModeSettings& object)
{
    TorviGuiModeSettings strict(object);
    strict.SetValidate(true);
    try {
        strict.Check();
    } catch (const OutOfRangeException&) {
        return; // incomplete: refused by Check, as it should be
    } catch (const ReportException& e) {
        Fail("Check() threw something other than OutOfRangeException", e.GetMessageText().toUtf8());
    }
    QByteArray binary;
    QString xml;
    try {
        binary = strict.GetBinaryRepresentationAsQByteArray();
        if (HasXmlNames(object))
            xml = strict.GetXmlString();
    } catch (const ReportException& e) {
        Fail("an object that passes Check() fails to write", e.GetMessageText().toUtf8());
    }
    Require(binary == LooseBinary(object), "validated binary differs from the unvalidated one");
    if (HasXmlNames(object))
        Require(xml == LooseXml(object), "validated XML differs from the unvalidated one");
}

/// A tree whose names XML cannot hold is refused by the XML writers, in
/// either mode, with OutOfRangeException: nothing is written without them.
inline void CheckXmlRefusal(const TorviGuiModeSettings& object)
{
    for (const bool validate : {false, true}) {
        TorviGuiModeSettings copy(object);
        copy.SetValidate(validate);
        try {
            copy.GetXmlString();
        } catch (const OutOfRangeException& e) {
            if (e.GetMessageText().endsWith(QStringLiteral(", which XML 1.0 cannot represent.")))
                continue;
            if (validate)
                continue; // an incomplete tree, refused by Check() first
            Fail("writing XML threw another OutOfRangeException", e.GetMessageText().toUtf8());
        } catch (const ReportException& e) {
            if (validate)
                continue;
            Fail("writing XML threw something else", e.GetMessageText().toUtf8());
        }
        Fail("a tree with names XML cannot hold was written as XML");
    }
}

/// Whether every name in the tree can travel in an XML 1.0 document:
/// characters outside XML's Char production (most control characters,
/// U+FFFE, U+FFFF) cannot be written as anything a reader accepts.
inline bool IsXmlText(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const ushort c = text.at(i).unicode();
        if (c < 0x20 && c != 0x09 && c != 0x0A && c != 0x0D)
            return false;
        if (c == 0xFFFE || c == 0xFFFF)
            return false;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= text.size() || !QChar::isLowSurrogate(text.at(i + 1).unicode()))
                return false;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return false;
        }
    }
    return true;
}

inline bool HasXmlNames(const TorviGuiModeSettings& object)
{
    for (const DataOperationMode& mode : object.GetDataOperationMode()) {
        if (!IsXmlText(mode.GetName()))
            return false;
        for (const GuiComponentSettings& component : mode.GetGuiComponentSettings())
            if (!IsXmlText(component.GetName()))
                return false;
    }
    return true;
}

/// What the oracles can tell apart: the binary document (every value, and
/// whether a name is null) and the set flags, which decide Check().
inline QByteArray StateKey(const TorviGuiModeSettings& object)
{
    QByteArray key = LooseBinary(object);
    key += char('0' + object.IsOperationModeHandlerSet() + 2 * object.IsDataOperationModeSet());
    for (const DataOperationMode& mode : object.GetDataOperationMode()) {
        key += char('0' + mode.IsNameSet() + 2 * mode.IsGuiComponentSettingsSet());
        for (const GuiComponentSettings& component : mode.GetGuiComponentSettings())
            key += char('0' + component.IsNameSet() + 2 * component.IsGuiComponentUsageSet()
                        + 4 * component.IsDockWidgetLocationSet());
    }
    return key;
}

/// Every oracle on one object.
inline void CheckAll(const TorviGuiModeSettings& object)
{
    CheckBinaryFixedPoint(object);
    CheckValidatedWrite(object);
    if (HasXmlNames(object))
        CheckXmlFixedPoint(object);
    else
        CheckXmlRefusal(object);
}

/// Runs the oracles once per distinct state within one input: most ways of
/// reading a hostile input end in the same few objects.
class Checker
{
public:
    void operator()(const TorviGuiModeSettings& object)
    {
        const QByteArray key = StateKey(object);
        if (m_seen.contains(key))
            return;
        m_seen.append(key);
        CheckAll(object);
    }

private:
    QList<QByteArray> m_seen;
};

/// Validation mode only adds refusals: a read in validation mode that
/// throws nothing must end exactly like the same read without it.
inline void CheckValidationOnlyRefuses(const Outcome& lax, const TorviGuiModeSettings& laxObject,
                                       const Outcome& strict, const TorviGuiModeSettings& strictObject)
{
    if (!strict.exception.isNull())
        return;
    Require(lax == strict, "validation mode changed the result of a read", lax.Describe() + " / " + strict.Describe());
    Require(StateKey(laxObject) == StateKey(strictObject), "validation mode changed what a read produced");
}

/// A whole-document read into an object that held something ends like the
/// same read into a fresh object: the same result or exception, and on
/// success the same object; after false or an exception the object holds
/// exactly what it held before.
inline void CheckAllOrNothing(const Outcome& fresh, const TorviGuiModeSettings& freshObject, const Outcome& into,
                              const TorviGuiModeSettings& intoObject, const TorviGuiModeSettings& before)
{
    Require(fresh == into, "a read into a filled object has another result than into a fresh one",
            fresh.Describe() + " / " + into.Describe());
    if (into == Outcome{true, QString()}) {
        Require(StateKey(freshObject) == StateKey(intoObject),
                "a successful read into a filled object produced another object than into a fresh one");
    } else {
        Require(StateKey(intoObject) == StateKey(before), "a failed read changed the object");
        Require(StateKey(freshObject) == StateKey(TorviGuiModeSettings()), "a failed read changed a fresh object");
    }
}

} // namespace TorviFuzz

#endif
