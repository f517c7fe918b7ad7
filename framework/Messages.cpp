#include "Messages.h"

#include <QLatin1Char>
#include <QLatin1String>

namespace TORVIXML {
namespace Framework {

QString PleaseSetMessage(const QString& objectName, const char* label)
{
    return objectName
        + QStringLiteral(": Please set %1 properly.").arg(QLatin1String(label), 0, QLatin1Char(' '));
}

QString EnumNotValidMessage(const char* className, const char* fieldName)
{
    return QStringLiteral("enum is not valid (classname=%1,membername=%2)")
        .arg(QLatin1String(className), QLatin1String(fieldName));
}

QString AppendRefusedMessage(const QString& objectName, const char* elementClass)
{
    return objectName + QStringLiteral(": Tried to append not completely defined or invalid item ")
        + QLatin1String(elementClass) + QLatin1Char('.');
}

QString LengthErrorMessage(const QString& objectName)
{
    return objectName
        + QStringLiteral("::SetBinary(...): Length error occurred during processing of binary representation");
}

} // namespace Framework
} // namespace TORVIXML
