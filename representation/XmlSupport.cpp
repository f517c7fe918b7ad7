#include "XmlSupport.h"

namespace TORVIXML {
namespace Xml {

QString NameText(QString text)
{
    if (text.isEmpty())
        return QStringLiteral("");
    return text;
}

} // namespace Xml
} // namespace TORVIXML
