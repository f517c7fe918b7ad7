#include "BinaryParsingException.h"
#include "IncompleteDefinitionException.h"
#include "OutOfRangeException.h"

ReportException::ReportException(const QString& message)
    : m_message(message)
{
}

ReportException::ReportException(const ReportException& other) = default;
ReportException& ReportException::operator=(const ReportException& other) = default;
ReportException::~ReportException() = default;

QString ReportException::GetMessageText() const
{
    return m_message;
}

// The derived exceptions carry nothing beyond the message.
#define RG_DEFINE_EXCEPTION(Class, Base)                                     \
    Class::Class(const QString& message) : Base(message) {}                  \
    Class::Class(const Class& other) = default;                              \
    Class::~Class() = default;

RG_DEFINE_EXCEPTION(RGException, ReportException)
RG_DEFINE_EXCEPTION(IncompleteDefinitionException, RGException)
RG_DEFINE_EXCEPTION(OutOfRangeException, RGException)
RG_DEFINE_EXCEPTION(BinaryParsingException, RGException)
