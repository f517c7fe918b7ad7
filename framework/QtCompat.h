#ifndef TORVIXML_FRAMEWORK_QTCOMPAT_H
#define TORVIXML_FRAMEWORK_QTCOMPAT_H

// Everything that differs between the Qt versions the library builds
// against (Qt 5.15 and Qt 6) is settled here, in one place.

#include <QCoreApplication>
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
