// torvixml dump FILE: an annotated walk over a binary document, field by
// field, that works on damaged input as well; for an XML document, its
// outline with the line and column of every element. Either is cut off
// after a number of lines, and can be printed as JSON.

#include "BinaryWalker.h"
#include "Commands.h"
#include "ToolSupport.h"
#include "XmlOutline.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

namespace TorviTool {

namespace {

const char* const defaultLimit = "10000";

// Prints the lines of a walk, as text or as JSON, up to a limit; of the
// lines after it, only how many there are and how many of them are units,
// records (binary) or elements (XML), is kept.
class DumpOutput
{
public:
    DumpOutput(qint64 limit, bool json, const char* unit)
        : m_limit(limit)
        , m_json(json)
        , m_unit(QLatin1String(unit))
        , m_units(m_unit + QLatin1Char('s'))
    {
    }

    void add(const Place& place, int depth, const QString& text, bool error, bool counted)
    {
        if (error && m_errors++ == 0) {
            m_firstError = place;
            m_firstErrorText = text;
        }
        if (m_limit > 0 && m_shown >= m_limit) {
            ++m_omitted;
            m_omittedUnits += counted ? 1 : 0;
            return;
        }
        ++m_shown;
        if (m_json) {
            QJsonObject line{{QStringLiteral("depth"), depth},
                             {QStringLiteral("text"), text},
                             {QStringLiteral("error"), error}};
            place.addTo(line);
            m_lines.append(line);
            return;
        }
        out() << (place.line > 0 ? QStringLiteral("%1").arg(place.text(), 9) : QStringLiteral("%1").arg(place.offset, 6))
              << "  " << QString(depth * 2, QLatin1Char(' ')) << (error ? QStringLiteral("error: ") : QString()) << text
              << '\n';
    }

    // The summary line, or the JSON document with what head holds; the
    // exit status. A walk's faults go to standard error unless in the JSON.
    int finish(const QString& file, QJsonObject head)
    {
        if (m_json) {
            head.insert(QStringLiteral("lines"), m_lines);
            head.insert(QStringLiteral("omitted"), QJsonObject{{QStringLiteral("lines"), m_omitted},
                                                               {m_units, m_omittedUnits}});
            head.insert(QStringLiteral("errors"), m_errors);
            QJsonObject first{{QStringLiteral("message"), m_firstErrorText}};
            m_firstError.addTo(first);
            head.insert(QStringLiteral("firstError"), m_errors > 0 ? QJsonValue(first) : QJsonValue());
            printJson(head);
        } else {
            if (m_omitted > 0) {
                out() << "... " << m_omitted << (m_omitted == 1 ? " more line" : " more lines") << " not shown ("
                      << m_omittedUnits << ' ' << (m_omittedUnits == 1 ? m_unit : m_units) << "); --limit 0 shows all\n";
            }
            out().flush();
            if (m_errors > 0) {
                const QString where = m_firstError.line > 0 ? QStringLiteral(":") + m_firstError.text() + QStringLiteral(": error")
                                                            : QStringLiteral(": %1 %2, the first at %3")
                                                                  .arg(m_errors)
                                                                  .arg(m_errors == 1 ? QStringLiteral("error") : QStringLiteral("errors"))
                                                                  .arg(m_firstError.text());
                err() << file << where << ": " << m_firstErrorText << '\n';
                err().flush();
            }
        }
        return m_errors > 0 ? ExitInvalidInput : ExitSuccess;
    }

private:
    const qint64 m_limit;
    const bool m_json;
    const QString m_unit;
    const QString m_units;
    qint64 m_shown = 0;
    qint64 m_omitted = 0;
    qint64 m_omittedUnits = 0;
    int m_errors = 0;
    Place m_firstError;
    QString m_firstErrorText;
    QJsonArray m_lines;
};

// The outline of an XML document as the library reads it: the objects at
// their start tags (list elements with their position and Name attribute),
// the members' elements with their text, and the elements the reader skips.
void outlineXmlDocument(const QByteArray& data, DumpOutput& output)
{
    using TORVIXML::ClassDescription;
    using TORVIXML::MemberDescription;
    // What each open element is: an object of a class, a member's element,
    // or (both null) inside something the reader skips.
    struct Role
    {
        const ClassDescription* object;
        const MemberDescription* member;
    };
    QVector<Role> roles;
    const ClassDescription& root = settingsClasses().first();
    const XmlOutline walk = walkXml(data, [&](const QVector<XmlElement>& open, bool started) {
        const XmlElement& e = open.last();
        const Place place = Place::at(e.line, e.column);
        if (!started) {
            const Role role = roles.takeLast();
            if (role.member) {
                output.add(place, e.depth,
                           e.hasText ? QString(e.name + QLatin1Char(' ') + quoted(e.text)
                                               + enumerationValueNote(*role.member, e.text))
                                     : QString(e.name + QStringLiteral(" holds elements, not a text")),
                           false, true);
            }
            return;
        }
        Role role{nullptr, nullptr};
        const ClassDescription* owner = roles.isEmpty() ? nullptr : roles.last().object;
        if (roles.isEmpty()) {
            if (e.name == root.name) {
                role.object = &root;
                output.add(place, 0, root.name, false, true);
            } else {
                output.add(place, 0, QStringLiteral("the document element is <%1>, not <%2>").arg(e.name, root.name), true, false);
            }
        } else if (owner) {
            const int index = memberIndex(*owner, e.name);
            if (index < 0) {
                output.add(place, e.depth, QStringLiteral("%1: unknown in %2, skipped").arg(e.name, owner->name), false, true);
            } else if (owner->members[index].kind == MemberDescription::List) {
                role.object = settingsClass(e.name);
                output.add(place, e.depth,
                           QStringLiteral("%1 %2").arg(e.name).arg(e.position)
                               + (e.hasName ? QStringLiteral(", Name ") + quoted(e.objectName) : QString()),
                           false, true);
            } else {
                role.member = &owner->members[index];
            }
        }
        roles.append(role);
    });
    if (!walk.wellFormed)
        output.add(Place::at(walk.errorLine, walk.errorColumn), 0, walk.error, true, false);
}

} // namespace

int runDump(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Walks a binary settings document (plain, or compressed: then the inflated bytes)\n"
        "and prints every field with its offset: ids and lengths of object frames and\n"
        "member records, member ids with the member's name in its class, element counts and\n"
        "texts (quoted; enumeration names with their value). Unknown members are shown and\n"
        "skipped. Faults of the framing are reported where the byte accounting fails; the\n"
        "exit status is then 1.\n"
        "For an XML document it prints the outline as the library reads it: each object and\n"
        "member element with its line and column, texts quoted, enumeration names with their\n"
        "value, elements the library skips marked; an XML error ends it (exit status 1).\n"
        "After --limit lines one line says how many more were left out."));
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Binary or XML document, or - for standard input."));
    const QCommandLineOption limitOption(
        QStringLiteral("limit"),
        QStringLiteral("Print at most <N> lines of the walk or outline (default %1; 0: all of them).")
            .arg(QLatin1String(defaultLimit)),
        QStringLiteral("N"), QLatin1String(defaultLimit));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"),
        QStringLiteral("Print one JSON document instead: {\"file\", \"form\", \"size\", \"lines\": [{\"offset\" or "
                       "\"line\" and \"column\", \"depth\", \"text\", \"error\"}], \"omitted\": {\"lines\", "
                       "\"records\" or \"elements\"}, \"errors\", \"firstError\"}; compressed documents add "
                       "\"announcedSize\" and \"inflatedSize\". The faults are then not repeated on standard error."));
    parser.addOption(limitOption);
    parser.addOption(jsonOption);
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, QStringLiteral("dump"), arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != 1)
        return usageError(QStringLiteral("dump"), QStringLiteral("dump needs exactly one file"));
    bool ok = false;
    const qint64 limit = parser.value(limitOption).toLongLong(&ok);
    if (!ok || limit < 0) {
        return usageError(QStringLiteral("dump"),
                          QStringLiteral("--limit: a number of lines, 0 for all, not \"%1\"").arg(parser.value(limitOption)));
    }
    const QString path = positional.first();
    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(QStringLiteral("dump"), message);

    QByteArray data;
    const int read = readInput(path, maxSize, data, message);
    if (read != ExitSuccess) {
        reportFileError(path, message);
        return read;
    }
    const bool json = parser.isSet(jsonOption);
    QJsonObject head{{QStringLiteral("file"), path}, {QStringLiteral("size"), data.size()}};
    if (!data.isEmpty() && detectForm(data) == DocumentForm::Xml) {
        head.insert(QStringLiteral("form"), QStringLiteral("xml"));
        if (!json)
            out() << path << ": XML document, " << data.size() << " bytes; elements at their line and column\n";
        DumpOutput output(limit, json, "element");
        outlineXmlDocument(data, output);
        return output.finish(path, head);
    }
    const UnpackedBinary unpacked = unpackBinary(data, maxSize);
    if (unpacked.kind == UnpackedBinary::Unreadable) {
        reportFileError(path, unpacked.problem);
        return ExitInvalidInput;
    }
    if (unpacked.kind == UnpackedBinary::Plain) {
        head.insert(QStringLiteral("form"), QStringLiteral("binary"));
        if (!json)
            out() << path << ": plain binary document, " << data.size() << " bytes\n";
    } else {
        head.insert(QStringLiteral("form"), QStringLiteral("compressed binary"));
        head.insert(QStringLiteral("announcedSize"), qint64(unpacked.announcedSize));
        head.insert(QStringLiteral("inflatedSize"), unpacked.bytes.size());
        if (!json) {
            out() << path << ": compressed binary document, " << data.size() << " bytes, announcing "
                  << unpacked.announcedSize << " bytes, inflated to " << unpacked.bytes.size()
                  << " bytes; offsets are those of the inflated bytes\n";
        }
    }
    DumpOutput output(limit, json, "record");
    walkBinary(unpacked.bytes, [&](const WalkLine& line) {
        output.add(Place::atOffset(line.offset), line.depth, line.text, line.error, line.recordEnd >= 0);
    });
    return output.finish(path, head);
}

} // namespace TorviTool
