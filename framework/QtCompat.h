#ifndef TORVIXML_FRAMEWORK_QTCOMPAT_H
#define TORVIXML_FRAMEWORK_QTCOMPAT_H

// Everything that differs between the Qt versions the library builds
// against (Qt 5.15 and Qt 6) is settled here, in one place.

#include <QString>
#include <QTextStream>

namespace TORVIXML {
namespace Framework {

// QXmlStreamReader::name() and text() return QStringRef in Qt 5 and
// QStringView in Qt 6; the code only compares them with QString and
// QLatin1String and converts them with toString(), which both offer.

/// Makes a text stream write UTF-8 (Qt 6 streams always do).
inline void UseUtf8(QTextStream& stream)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    stream.setCodec("UTF-8");
#else
    Q_UNUSED(stream);
#endif
}

} // namespace Framework
} // namespace TORVIXML

#endif
