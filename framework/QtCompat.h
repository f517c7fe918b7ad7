#ifndef TORVIXML_FRAMEWORK_QTCOMPAT_H
#define TORVIXML_FRAMEWORK_QTCOMPAT_H

// Everything that differs between the Qt versions the library builds
// against (Qt 5.15 and Qt 6) is settled here, in one place.

#include <QCoreApplication>
#include <QString>
#include <QXmlStreamReader>

namespace TORVIXML {
namespace Framework {

/// What QXmlStreamReader::name() and text() return: QStringRef in Qt 5,
/// QStringView in Qt 6. Both compare with QString and QLatin1String.
using XmlStringView = decltype(std::declval<QXmlStreamReader&>().name());

/// tr()/trUtf8(): Qt 4 passed an encoding with the source text (CodecForTr
/// for tr, UnicodeUTF8 for trUtf8). Since Qt 5 source texts are always
/// UTF-8 and Qt 6 no longer has the argument, so both forms translate alike.
inline QString Translate(const char* context, const char* sourceText, const char* disambiguation,
                         int n, bool /*utf8*/)
{
    return QCoreApplication::translate(context, sourceText, disambiguation, n);
}

} // namespace Framework
} // namespace TORVIXML

#endif
