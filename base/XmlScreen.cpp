#include "XmlScreen.h"

#include <QHash>
#include <QVector>
#include <QXmlStreamReader>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#else
#include <QStringDecoder>
#endif

#include <algorithm>

namespace REPORTGENERATOR {
namespace XmlScreen {

namespace {

// ---------------------------------------------------------------------------
// Decoding as the reader decodes.

// The encoding QXmlStreamReader starts with, told from the first four bytes:
// a byte order mark, or the pattern '<' makes in UTF-16 and UTF-32; UTF-8
// otherwise. The values are IANA MIB numbers.
int InitialMib(const QByteArray& bytes)
{
    if (bytes.size() < 4)
        return 106;
    const auto* b = reinterpret_cast<const uchar*>(bytes.constData());
    if ((b[0] == 0 && b[1] == 0 && b[2] == 0xFE && b[3] == 0xFF) || (b[0] == 0xFF && b[1] == 0xFE && b[2] == 0 && b[3] == 0))
        return 1017; // UTF-32 with byte order mark
    if (b[0] == 0x3C && b[1] == 0 && b[2] == 0 && b[3] == 0)
        return 1019; // UTF-32LE
    if (b[0] == 0 && b[1] == 0 && b[2] == 0 && b[3] == 0x3C)
        return 1018; // UTF-32BE
    if ((b[0] == 0xFE && b[1] == 0xFF) || (b[0] == 0xFF && b[1] == 0xFE))
        return 1015; // UTF-16 with byte order mark
    if (b[0] == 0x3C && b[1] == 0)
        return 1014; // UTF-16LE
    if (b[0] == 0 && b[1] == 0x3C)
        return 1013; // UTF-16BE
    return 106;
}

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
QString DecodeWith(const QByteArray& bytes, int mib, const QString& declared)
{
    QTextCodec* codec = QTextCodec::codecForMib(mib);
    if (!declared.isEmpty()) {
        if (QTextCodec* named = QTextCodec::codecForName(declared.toLatin1()))
            codec = named;
    }
    if (!codec)
        codec = QTextCodec::codecForMib(106);
    return codec->toUnicode(bytes);
}
#else
QString DecodeWith(const QByteArray& bytes, int mib, const QString& declared)
{
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    switch (mib) {
    case 1017: encoding = QStringConverter::Utf32; break;
    case 1018: encoding = QStringConverter::Utf32BE; break;
    case 1019: encoding = QStringConverter::Utf32LE; break;
    case 1015: encoding = QStringConverter::Utf16; break;
    case 1013: encoding = QStringConverter::Utf16BE; break;
    case 1014: encoding = QStringConverter::Utf16LE; break;
    default: break;
    }
    if (!declared.isEmpty()) {
        if (const auto named = QStringConverter::encodingForName(declared.toLatin1().constData()))
            encoding = *named;
    }
    QStringDecoder decoder(encoding);
    return decoder.decode(bytes);
}
#endif

// Whether the reader reads the bytes as UTF-8: it starts so, and the
// declaration names no other encoding.
bool IsUtf8(int mib, const QString& declared)
{
    if (mib != 106)
        return false;
    if (declared.isEmpty())
        return true;
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const QTextCodec* named = QTextCodec::codecForName(declared.toLatin1());
    return !named || named->mibEnum() == 106;
#else
    const auto named = QStringConverter::encodingForName(declared.toLatin1().constData());
    return !named || *named == QStringConverter::Utf8;
#endif
}

// ---------------------------------------------------------------------------
// Markup.

bool IsDelimiter(ushort c)
{
    return c <= ' ' || c == ';' || c == '&' || c == '<' || c == '>' || c == '"' || c == '\'' || c == '='
        || c == '/' || c == '%';
}

bool IsPredefined(const QString& name)
{
    return name == QLatin1String("lt") || name == QLatin1String("gt") || name == QLatin1String("amp")
        || name == QLatin1String("apos") || name == QLatin1String("quot");
}

// The markup is measured either on a decoded text or, for UTF-8, on the
// bytes themselves: every character that delimits markup is ASCII there, so
// the bytes need no decoding except for the names of entities.
struct Utf16Units
{
    const QChar* p;
    int n;
    ushort operator[](int i) const { return p[i].unicode(); }
    QString Text(int from, int count) const { return QString(p + from, count); }
    // UTF-16 units a unit counts as in a column: 1.
    static int Width(ushort) { return 1; }
};

struct Utf8Units
{
    const uchar* p;
    int n;
    ushort operator[](int i) const { return p[i]; }
    QString Text(int from, int count) const
    {
        return QString::fromUtf8(reinterpret_cast<const char*>(p) + from, count);
    }
    // A lead byte starts one UTF-16 unit, or two from U+10000 on; the bytes
    // that continue a sequence start none.
    static int Width(ushort byte) { return byte < 0x80 ? 1 : byte < 0xC0 ? 0 : byte < 0xF0 ? 1 : 2; }
};

// A reference "&name;" at p[i] (p[i] == '&'): the name, and end set behind
// the ';'. A character reference yields an empty name; something that is no
// reference a null one (end then behind the '&').
template <typename Units>
QString ReferenceAt(const Units& p, int i, int& end)
{
    const int n = p.n;
    int j = i + 1;
    if (j < n && p[j] == '#') {
        while (j < n && p[j] != ';' && !IsDelimiter(p[j]))
            ++j;
        end = j < n && p[j] == ';' ? j + 1 : i + 1;
        return end > i + 1 ? QStringLiteral("") : QString();
    }
    while (j < n && !IsDelimiter(p[j]))
        ++j;
    if (j == i + 1 || j >= n || p[j] != ';') {
        end = i + 1;
        return QString();
    }
    end = j + 1;
    return p.Text(i + 1, j - i - 1);
}

// What the references to the document's declared entities expand to, each
// capped at the reader's expansion limit plus one (the reader refuses a
// reference that expands further, so no more than that ever gets built).
class Expansions
{
public:
    Expansions(const QXmlStreamEntityDeclarations& declarations, qint64 cap)
        : m_cap(cap)
    {
        // A name declared twice counts with both values: never less than
        // whichever the reader uses.
        for (const QXmlStreamEntityDeclaration& declaration : declarations)
            m_values[declaration.name().toString()] += declaration.value().toString();
    }

    /// Characters a reference to name yields: 1 for the predefined
    /// entities, 0 for an undeclared one (the reader refuses it or leaves it
    /// unexpanded).
    qint64 Of(const QString& name)
    {
        if (IsPredefined(name))
            return 1;
        if (!m_values.contains(name))
            return 0;
        const auto known = m_sizes.constFind(name);
        if (known != m_sizes.constEnd())
            return *known;
        Compute(name);
        return m_sizes.value(name);
    }

    /// Characters a literal yields with its references expanded.
    qint64 OfLiteral(const QChar* text, int n)
    {
        const Utf16Units p{text, n};
        qint64 total = 0;
        for (int i = 0; i < n;) {
            if (p[i] != '&') {
                ++total;
                ++i;
                continue;
            }
            int end = 0;
            const QString name = ReferenceAt(p, i, end);
            total += name.isNull() ? 1 : name.isEmpty() ? 1 : Of(name);
            i = end;
        }
        return total;
    }

private:
    // The literal characters of an entity's value and the names it refers
    // to (predefined ones count as literal characters).
    struct Frame
    {
        QString name;
        QStringList references;
        int next = 0;
        qint64 total = 0;
    };

    Frame Open(const QString& name) const
    {
        Frame frame;
        frame.name = name;
        const QString value = m_values.value(name);
        const Utf16Units p{value.constData(), int(value.size())};
        for (int i = 0; i < p.n;) {
            int end = i + 1;
            const QString reference = p[i] == '&' ? ReferenceAt(p, i, end) : QString();
            if (reference.isEmpty() || IsPredefined(reference))
                ++frame.total;
            else
                frame.references << reference;
            i = end;
        }
        return frame;
    }

    // Depth first without recursion, so that a chain of entities each
    // referring to the next costs no stack; a reference back into the chain
    // (the reader refuses such a cycle) counts as the cap.
    void Compute(const QString& name)
    {
        QVector<Frame> stack{Open(name)};
        QHash<QString, bool> open{{name, true}};
        while (!stack.isEmpty()) {
            Frame& top = stack.last();
            if (top.next < top.references.size() && top.total < m_cap) {
                const QString reference = top.references.at(top.next++);
                qint64 size = 0;
                if (!m_values.contains(reference))
                    size = 0;
                else if (m_sizes.contains(reference))
                    size = m_sizes.value(reference);
                else if (open.contains(reference))
                    size = m_cap;
                else {
                    open.insert(reference, true);
                    stack.append(Open(reference));
                    continue;
                }
                top.total = qMin(m_cap, top.total + size);
                continue;
            }
            const qint64 size = qMin(m_cap, top.total);
            const QString done = top.name;
            stack.removeLast();
            open.remove(done);
            m_sizes.insert(done, size);
            if (!stack.isEmpty())
                stack.last().total = qMin(m_cap, stack.last().total + size);
        }
    }

    qint64 m_cap;
    QHash<QString, QString> m_values;
    QHash<QString, qint64> m_sizes;
};

// Index of the end of the next occurrence of what at or after from in p,
// or the end of p when there is none.
template <typename Units>
int SkipPast(const Units& p, int from, const char* what)
{
    const int m = int(qstrlen(what));
    for (int i = from; i + m <= p.n; ++i) {
        int k = 0;
        while (k < m && p[i + k] == uchar(what[k]))
            ++k;
        if (k == m)
            return i + m;
    }
    return p.n;
}

template <typename Units>
bool StartsWith(const Units& p, int i, const char* what)
{
    const int m = int(qstrlen(what));
    if (i + m > p.n)
        return false;
    for (int k = 0; k < m; ++k) {
        if (p[i + k] != uchar(what[k]))
            return false;
    }
    return true;
}

template <typename Units>
QString NameAt(const Units& p, int i)
{
    int j = i;
    while (j < p.n && !IsDelimiter(p[j]))
        ++j;
    return p.Text(i, j - i);
}

// The characters that default values declared for each element name add to
// every start tag of that name: the quoted literals of its ATTLIST
// declarations, references expanded.
QHash<QString, qint64> DefaultAttributeSizes(const QString& dtd, Expansions& expansions)
{
    QHash<QString, qint64> sizes;
    const Utf16Units p{dtd.constData(), int(dtd.size())};
    const int n = p.n;
    for (int i = 0; i < n;) {
        if (StartsWith(p, i, "<!--")) {
            i = SkipPast(p, i + 4, "-->");
        } else if (StartsWith(p, i, "<?")) {
            i = SkipPast(p, i + 2, "?>");
        } else if (StartsWith(p, i, "<!ATTLIST")) {
            int j = i + 9;
            while (j < n && p[j] <= ' ')
                ++j;
            const QString element = NameAt(p, j);
            qint64 total = 0;
            while (j < n && p[j] != '>') {
                if (p[j] == '"' || p[j] == '\'') {
                    const ushort quote = p[j];
                    int k = j + 1;
                    while (k < n && p[k] != quote)
                        ++k;
                    total += expansions.OfLiteral(dtd.constData() + j + 1, k - j - 1);
                    j = k;
                }
                ++j;
            }
            sizes[element] += total;
            i = j + 1;
        } else if (p[i] == '"' || p[i] == '\'') {
            const ushort quote = p[i];
            int k = i + 1;
            while (k < n && p[k] != quote)
                ++k;
            i = k + 1;
        } else {
            ++i;
        }
    }
    return sizes;
}

template <typename Units>
QString At(const Units& p, int index, const QString& what)
{
    Position position;
    qint64 column = 1;
    for (int i = 0; i < index && i < p.n; ++i) {
        if (p[i] == '\n') {
            ++position.line;
            column = 1;
        } else {
            column += Units::Width(p[i]);
        }
    }
    return QStringLiteral("at line %1, column %2: %3").arg(position.line).arg(column).arg(what);
}

// Where the body of a document begins (behind its document type
// declaration), and what that declaration declares, as the reader itself
// sees it; it reads no further than the start of the document element.
// offsetOf turns the reader's character offset into an index of the units.
template <typename Reader, typename OffsetOf>
int ReadProlog(Reader&& prolog, OffsetOf&& offsetOf, QXmlStreamEntityDeclarations& declarations, QString& dtd)
{
    int body = 0;
    while (!prolog.atEnd()) {
        const QXmlStreamReader::TokenType token = prolog.readNext();
        if (token == QXmlStreamReader::DTD) {
            declarations = prolog.entityDeclarations();
            dtd = prolog.text().toString();
            body = offsetOf(prolog.characterOffset());
        }
        if (token == QXmlStreamReader::StartElement || token == QXmlStreamReader::Invalid)
            break;
    }
    return body;
}

// The measurement itself, on the units from body on.
template <typename Units>
bool Measure(const Units& p, int body, const QXmlStreamEntityDeclarations& declarations, const QString& dtd,
             qint64 inputSize, const QString& inputUnit, qint64 allowance, int maxAttributes, QString& message)
{
    const int n = p.n;
    const qint64 budget = inputSize + allowance;
    const qint64 cap = qint64(QXmlStreamReader().entityExpansionLimit()) + 1;
    Expansions expansions(declarations, cap);
    const QHash<QString, qint64> defaults = DefaultAttributeSizes(dtd, expansions);

    qint64 expanded = 0;
    const auto spend = [&](qint64 size, int at) {
        expanded += size;
        if (expanded <= budget)
            return true;
        message = At(p, at, QStringLiteral("the entity references and default attributes expand to more than "
                                           "%1 characters, the most allowed for a document of %2 %3")
                                .arg(budget)
                                .arg(inputSize)
                                .arg(inputUnit));
        return false;
    };
    const auto reference = [&](int at, int& end) {
        const QString name = ReferenceAt(p, at, end);
        return name.isEmpty() || IsPredefined(name) || spend(expansions.Of(name), at);
    };

    for (int i = body; i < n;) {
        const ushort c = p[i];
        if (c == '&') {
            int end = 0;
            if (!reference(i, end))
                return false;
            i = end;
            continue;
        }
        if (c != '<') {
            ++i;
            continue;
        }
        if (StartsWith(p, i, "<!--")) {
            i = SkipPast(p, i + 4, "-->");
        } else if (StartsWith(p, i, "<![CDATA[")) {
            i = SkipPast(p, i + 9, "]]>");
        } else if (StartsWith(p, i, "<?")) {
            i = SkipPast(p, i + 2, "?>");
        } else if (StartsWith(p, i, "</") || StartsWith(p, i, "<!")) {
            i = SkipPast(p, i + 2, ">");
        } else {
            // A start tag: attributes are counted by their '=' outside the
            // quoted values; references count inside the values.
            const int tag = i;
            if (!defaults.isEmpty() && !spend(defaults.value(NameAt(p, i + 1)), tag))
                return false;
            int attributes = 0;
            ushort quote = 0;
            int j = i + 1;
            for (; j < n; ++j) {
                const ushort u = p[j];
                if (quote != 0) {
                    if (u == quote) {
                        quote = 0;
                    } else if (u == '&') {
                        int end = 0;
                        if (!reference(j, end))
                            return false;
                        j = end - 1;
                    }
                } else if (u == '"' || u == '\'') {
                    quote = u;
                } else if (u == '=') {
                    if (++attributes > maxAttributes) {
                        message = At(p, tag, QStringLiteral("the element has more than %1 attributes").arg(maxAttributes));
                        return false;
                    }
                } else if (u == '>' || u == '<') {
                    break;
                }
            }
            i = j < n && p[j] == '>' ? j + 1 : j;
        }
    }
    return true;
}

} // namespace

Decoded Decode(const QByteArray& bytes)
{
    // The reader switches to the encoding the XML declaration names; a
    // reader that stops at the first token has read the declaration, which
    // stands at the very start (a reader decodes all it is given first).
    QXmlStreamReader declaration(bytes.left(4096));
    declaration.readNext();
    const QString declared = declaration.documentEncoding().toString();
    Decoded decoded;
    if (IsUtf8(InitialMib(bytes), declared)) {
        decoded.utf8 = true;
        return decoded;
    }
    decoded.text = DecodeWith(bytes, InitialMib(bytes), declared);
    return decoded;
}

bool FindInvalidUtf8(const QByteArray& bytes, Position& position)
{
    const auto* b = reinterpret_cast<const uchar*>(bytes.constData());
    const int n = bytes.size();
    qint64 column = 1;
    for (int i = 0; i < n;) {
        const uchar c = b[i];
        int length = 0;
        uchar low = 0x80;
        uchar high = 0xBF;
        if (c < 0x80) {
            length = 1;
        } else if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            if (c == 0xE0)
                low = 0xA0;
            else if (c == 0xED)
                high = 0x9F; // no surrogates
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            if (c == 0xF0)
                low = 0x90;
            else if (c == 0xF4)
                high = 0x8F; // nothing above U+10FFFF
        }
        bool valid = length > 0 && i + length <= n;
        for (int k = 1; valid && k < length; ++k) {
            const uchar lo = k == 1 ? low : 0x80;
            const uchar hi = k == 1 ? high : 0xBF;
            valid = b[i + k] >= lo && b[i + k] <= hi;
        }
        if (!valid) {
            position.column = column;
            return true;
        }
        if (c == '\n') {
            ++position.line;
            column = 1;
        } else {
            column += length == 4 ? 2 : 1; // a surrogate pair in UTF-16
        }
        i += length;
    }
    return false;
}

bool Screen(const QString& text, qint64 inputSize, const QString& inputUnit, qint64 allowance, int maxAttributes,
            QString& message)
{
    const Utf16Units units{text.constData(), int(text.size())};
    QXmlStreamEntityDeclarations declarations;
    QString dtd;
    int body = 0;
    // Entities can only be declared in a document type declaration.
    if (text.contains(QLatin1String("<!DOCTYPE"))) {
        body = ReadProlog(QXmlStreamReader(text), [&](qint64 offset) { return int(qMin<qint64>(units.n, offset)); },
                          declarations, dtd);
    }
    return Measure(units, body, declarations, dtd, inputSize, inputUnit, allowance, maxAttributes, message);
}

bool ScreenUtf8(const QByteArray& bytes, qint64 allowance, int maxAttributes, QString& message)
{
    const Utf8Units units{reinterpret_cast<const uchar*>(bytes.constData()), int(bytes.size())};
    QXmlStreamEntityDeclarations declarations;
    QString dtd;
    int body = 0;
    if (bytes.contains("<!DOCTYPE")) {
        // The reader counts UTF-16 units; walk the bytes to the same place.
        const auto offsetOf = [&](qint64 offset) {
            int i = 0;
            for (qint64 counted = 0; i < units.n && counted < offset; ++i)
                counted += Utf8Units::Width(units[i]);
            while (i < units.n && Utf8Units::Width(units[i]) == 0)
                ++i;
            return i;
        };
        body = ReadProlog(QXmlStreamReader(bytes), offsetOf, declarations, dtd);
    }
    return Measure(units, body, declarations, dtd, bytes.size(), QStringLiteral("bytes"), allowance, maxAttributes,
                   message);
}

} // namespace XmlScreen
} // namespace REPORTGENERATOR
