#ifndef TORVIXML_TESTS_TESTSUPPORT_H
#define TORVIXML_TESTS_TESTSUPPORT_H

// Helpers shared by the test programs: the exact failure messages, the
// member ids of the binary form with building blocks for hand-made input,
// and the message of an expected exception.

#include <TorviXML/TorviXML.h>

#include <QByteArray>
#include <QDataStream>
#include <QIODevice>
#include <QString>

#include <exception>
#include <ostream>
#include <string>

// Shows QStrings readably in failure messages: a null string as <null>,
// long ones cut after 200 characters.
inline void PrintTo(const QString& text, std::ostream* os)
{
    if (text.isNull())
        *os << "<null>";
    else
        *os << '"' << text.left(200).toStdString() << (text.size() > 200 ? "...\"" : "\"");
}

namespace TestSupport {

constexpr qint32 kRootId = 232099450;
constexpr qint32 kModeId = -447125075;
constexpr qint32 kComponentId = -1436546027;
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

const QString kNothingThrown = QStringLiteral("<nothing thrown>");
const QString kUsageInvalid =
    QStringLiteral("enum is not valid (classname=GuiComponentSettings,membername=m_guiComponentUsage)");
const QString kLocationInvalid =
    QStringLiteral("enum is not valid (classname=GuiComponentSettings,membername=m_dockWidgetLocation)");
const QString kHandlerInvalid =
    QStringLiteral("enum is not valid (classname=TorviGuiModeSettings,membername=m_operationModeHandler)");

inline QString LengthError(const char* objectName)
{
    return QLatin1String(objectName)
        + QStringLiteral("::SetBinary(...): Length error occurred during processing of binary representation");
}

// The message of the exception of type E that operation throws; a marker
// text when it throws nothing or another of the library's exceptions.
template <typename E, typename F>
QString MessageOf(F&& operation)
{
    try {
        operation();
    } catch (const E& e) {
        return e.GetMessageText();
    } catch (const ReportException& e) {
        return QStringLiteral("<other exception> ") + e.GetMessageText();
    }
    return kNothingThrown;
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

// Big-endian building blocks for hand-made binary input.
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

} // namespace TestSupport

#endif
