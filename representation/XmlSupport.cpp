#include "XmlSupport.h"

namespace TORVIXML {
namespace Xml {

void SkipUnknown(QXmlStreamReader& reader)
{
    const QString name = reader.name().toString();
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.name() == name)
            return;
    }
}

QString NameText(QString text)
{
    if (text.isEmpty())
        return QStringLiteral("");
    return text;
}

} // namespace Xml
} // namespace TORVIXML
