#ifndef TORVIXML_FRAMEWORK_MESSAGES_H
#define TORVIXML_FRAMEWORK_MESSAGES_H

#include <QString>

namespace TORVIXML {
namespace Framework {

// The texts of every failure the settings classes report.

/// "<object name>: Please set <label> properly."
QString PleaseSetMessage(const QString& objectName, const char* label);
/// "enum is not valid (classname=<class>,membername=<field>)"
QString EnumNotValidMessage(const char* className, const char* fieldName);
/// "<object name>: Tried to append not completely defined or invalid item <element class>."
QString AppendRefusedMessage(const QString& objectName, const char* elementClass);
/// "<object name>::SetBinary(...): Length error occurred during processing of binary representation"
QString LengthErrorMessage(const QString& objectName);

} // namespace Framework
} // namespace TORVIXML

#endif
