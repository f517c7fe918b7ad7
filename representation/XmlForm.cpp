#include "XmlForm.h"

namespace TORVIXML {
namespace Xml {

QString ElementText(QString text)
{
    if (text.isEmpty())
        return QStringLiteral("");
    return text;
}

} // namespace Xml
} // namespace TORVIXML
