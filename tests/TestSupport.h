#ifndef TORVIXML_TESTS_TESTSUPPORT_H
#define TORVIXML_TESTS_TESTSUPPORT_H

// What the test programs share: builders of the example trees, one printer
// of a tree, the library's messages, the message of an expected exception,
// building blocks of hand-made binary input, and golden files under
// tests/data compared by one helper.
//
// Golden files: MatchesGolden("xml/example.xml", bytes) compares with
// tests/data/xml/example.xml. On a mismatch the actual bytes go to the build
// tree (golden-actual/...) and the failure shows `diff -u` of the two.
// TORVIXML_REGENERATE_GOLDEN=1 rewrites the golden files instead.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <QProcess>
#include <QString>
#include <QVector>

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>

// Shows QStrings and bytes readably in failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    if (text.isNull())
        *os << "<null>";
    else
        *os << '"' << text.left(300).toStdString() << (text.size() > 300 ? "...\"" : "\"");
}
inline void PrintTo(const QByteArray& bytes, std::ostream* os)
{
    *os << bytes.size() << " bytes: " << bytes.left(200).toHex(' ').toStdString();
}

namespace TestSupport {

using G = TORVIXML::GuiComponentSettings;
using M = TORVIXML::DataOperationMode;
using R = TORVIXML::TorviGuiModeSettings;

constexpr qint32 kRootId = 232099450;
constexpr qint32 kModeId = -447125075;
constexpr qint32 kComponentId = -1436546027;
// Member ids of the binary form.
constexpr qint32 kNameId = 0x58D44D66;
constexpr qint32 kUsageId = 0x0EDC6084;
constexpr qint32 kLocationId = 0x17299F64;
constexpr qint32 kComponentListId = qint32(0xC0D4B710);
constexpr qint32 kModeListId = qint32(0x95948526);
constexpr qint32 kHandlerId = 0x6EEDD5E0;

inline QString Q(const char* text)
{
    return QString::fromUtf8(text);
}

// ---- the library's messages -------------------------------------------

inline QString EnumInvalid(const char* cls, const char* field)
{
    return QStringLiteral("enum is not valid (classname=%1,membername=%2)").arg(Q(cls), Q(field));
}
inline QString PleaseSet(const char* cls, const char* member)
{
    return QStringLiteral("%1: Please set %2 properly.").arg(Q(cls), Q(member));
}
inline QString IncompleteAppend(const char* owner, const char* item)
{
    return QStringLiteral("%1: Tried to append not completely defined or invalid item %2.").arg(Q(owner), Q(item));
}

const QString kNothingThrown = QStringLiteral("<nothing thrown>");

// The message of the exception of type E that operation throws; a marker
// text when it throws nothing or another of the library's exceptions.
template <typename E, typename F>
QString MessageOf(F&& operation)
{
    try {
        operation();
    } catch (const ReportException& e) {
        if constexpr (!std::is_same_v<E, ReportException>) {
            if (!dynamic_cast<const E*>(&e))
                return QStringLiteral("<other exception> ") + e.GetMessageText();
        }
        return e.GetMessageText();
    }
    return kNothingThrown;
}

// What operation comes to: "true" or "false" for one that returns a bool,
// "done" for one that returns nothing, or the class and message of the
// library's exception that ends it ("BinaryParsingException: ...").
template <typename F>
std::string OutcomeOf(F&& operation)
{
    try {
        if constexpr (std::is_void_v<decltype(operation())>) {
            operation();
            return "done";
        } else {
            return operation() ? "true" : "false";
        }
    } catch (const ReportException& e) {
        int status = 0;
        char* name = abi::__cxa_demangle(typeid(e).name(), nullptr, nullptr, &status);
        const std::string thrown = status == 0 ? name : typeid(e).name();
        std::free(name);
        return thrown + ": " + e.GetMessageText().toStdString();
    }
}

// How handlers see an exception of the library that operation throws:
// whether a handler for std::exception catches it, and the message that a
// handler for ReportException (by reference) and one for RGException (by
// value, which handlers may do as well) receive.
struct Catches
{
    bool asStdException = false;
    QString asReportException;
    QString asRGExceptionByValue;
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wcatch-value"
#endif
template <typename F>
Catches CatchesOf(F&& operation)
{
    Catches caught;
    try {
        try {
            operation();
        } catch (const std::exception&) {
            caught.asStdException = true;
        }
    } catch (const ReportException& e) {
        caught.asReportException = e.GetMessageText();
    }
    try {
        operation();
    } catch (RGException e) {
        caught.asRGExceptionByValue = e.GetMessageText();
    }
    return caught;
}
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

// ---- builders ----------------------------------------------------------

inline G Component(const char* name, G::GuiComponentUsage usage = G::AVAILABLE,
                   G::DockWidgetLocation dock = G::LeftDockWidgetArea)
{
    G s;
    if (name)
        s.SetName(Q(name));
    s.SetGuiComponentUsage(usage);
    s.SetDockWidgetLocation(dock);
    return s;
}

// A null name leaves the name unset. Appends run outside validation mode.
inline M Mode(const char* name, std::initializer_list<G> components = {})
{
    M m;
    if (name)
        m.SetName(Q(name));
    for (const G& c : components)
        m.AppendGuiComponentSettings(c);
    return m;
}

constexpr int kNoHandler = -100;

inline R Root(int handler, std::initializer_list<M> modes = {})
{
    R r;
    if (handler != kNoHandler)
        r.SetOperationModeHandler(R::OperationModeHandler(handler));
    for (const M& m : modes)
        r.AppendDataOperationMode(m);
    return r;
}

// The README's example: tests/data/xml/example.xml.
inline R Example()
{
    return Root(R::PMR830ManagementComponent,
                {Mode("Standard", {Component("Overview", G::DEFAULT_DISPLAY, G::LeftDockWidgetArea),
                                   Component("Details", G::AVAILABLE, G::FloatingDockWidgetArea)})});
}

// The smallest complete tree, the worked example of the binary form:
// tests/data/binary/root.hex (153 bytes).
inline R Small()
{
    return Root(R::TX470ManagementComponent, {Mode("M", {Component("A")})});
}

// Two modes, three components.
inline R TwoModes()
{
    R r = Example();
    r.AppendDataOperationMode(Mode("Service", {Component("Log", G::AVAILABLE, G::BottomDockWidgetArea)}));
    return r;
}

// ---- one printer of a tree ---------------------------------------------
// 'Overview'*(1*,0*) for a component (name, usage, dock), 'Standard'*[...]*
// for a mode, 1*{...}* for a root; '*' marks a set member, <null> a null
// name. Reads through const access only.

inline std::string Shown(const QString& s)
{
    return s.isNull() ? "<null>" : "'" + s.toStdString() + "'";
}
inline const char* Mark(bool set)
{
    return set ? "*" : "";
}
inline std::string Outline(const G& g)
{
    return Shown(g.GetName()) + Mark(g.IsNameSet()) + "(" + std::to_string(g.GetGuiComponentUsage())
        + Mark(g.IsGuiComponentUsageSet()) + "," + std::to_string(g.GetDockWidgetLocation())
        + Mark(g.IsDockWidgetLocationSet()) + ")";
}
inline std::string Outline(const M& m)
{
    std::string out = Shown(m.GetName()) + Mark(m.IsNameSet()) + "[";
    for (const G& g : m.GetGuiComponentSettings())
        out += (out.back() == '[' ? "" : ",") + Outline(g);
    return out + "]" + Mark(m.IsGuiComponentSettingsSet());
}
inline std::string Outline(const R& r)
{
    std::string out = std::to_string(r.GetOperationModeHandler()) + Mark(r.IsOperationModeHandlerSet()) + "{";
    for (const M& m : r.GetDataOperationMode())
        out += (out.back() == '{' ? "" : ";") + Outline(m);
    return out + "}" + Mark(r.IsDataOperationModeSet());
}

// ---- hand-made binary input --------------------------------------------

inline QByteArray Int(qint32 value)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << value;
    return bytes;
}
inline QByteArray Text(const QByteArray& utf8)
{
    return Int(utf8.size()) + utf8;
}
inline QByteArray Record(qint32 memberId, const QByteArray& payload)
{
    return Int(memberId) + Int(payload.size()) + payload;
}
inline QByteArray Frame(const QByteArray& records)
{
    return Int(records.size()) + records;
}
// Hex digits with blanks, line breaks and #-comments to the end of a line.
inline QByteArray Hex(const QByteArray& text)
{
    QByteArray digits;
    bool comment = false;
    for (const char c : text) {
        if (c == '#')
            comment = true;
        else if (c == '\n')
            comment = false;
        else if (!comment && QByteArray("0123456789abcdefABCDEF").contains(c))
            digits += c;
    }
    return QByteArray::fromHex(digits);
}

// ---- data files and golden files ---------------------------------------

inline QString DataPath(const QString& name)
{
    return QStringLiteral(TORVIXML_TEST_DATA_DIR "/") + name;
}

inline QByteArray ReadData(const QString& name)
{
    QFile file(DataPath(name));
    if (!file.open(QIODevice::ReadOnly)) {
        ADD_FAILURE() << "cannot read " << file.fileName().toStdString();
        return QByteArray();
    }
    return file.readAll();
}

inline bool WriteFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline ::testing::AssertionResult MatchesGolden(const QString& name, const QByteArray& actual)
{
    const QString golden = DataPath(name);
    if (qEnvironmentVariableIntValue("TORVIXML_REGENERATE_GOLDEN") == 1) {
        if (!WriteFile(golden, actual))
            return ::testing::AssertionFailure() << "cannot write " << golden.toStdString();
        return ::testing::AssertionSuccess();
    }
    QFile file(golden);
    const QByteArray expected = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.isOpen() && expected == actual)
        return ::testing::AssertionSuccess();
    const QString actualPath = QStringLiteral(TORVIXML_TEST_OUTPUT_DIR "/") + name;
    WriteFile(actualPath, actual);
    QProcess diff;
    diff.start(QStringLiteral("diff"), {QStringLiteral("-u"), golden, actualPath});
    diff.waitForFinished();
    return ::testing::AssertionFailure()
        << (file.isOpen() ? "differs from " : "missing: ") << golden.toStdString() << "\nactual output: "
        << actualPath.toStdString() << "\n"
        << diff.readAllStandardOutput().left(4000).toStdString()
        << "(TORVIXML_REGENERATE_GOLDEN=1 rewrites the golden file)";
}

} // namespace TestSupport

#endif
