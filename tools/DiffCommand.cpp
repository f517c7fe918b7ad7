// torvixml diff A B: compares two settings documents, in either form, member
// by member, and prints each difference with its object path and both
// values, or all of them as one JSON document.

#include "Commands.h"
#include "ToolSupport.h"

#include <TorviXML/TorviXML.h>

#include <QCommandLineParser>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

namespace TorviTool {

namespace {

using TORVIXML::ClassDescription;
using TORVIXML::MemberDescription;
using TORVIXML::MemberValue;
using TORVIXML::ObjectValues;

// Exit status for documents that differ; 2 is for inputs that cannot be
// compared, as diff and cmp have it.
const int ExitDifferent = 1;

// An object with its members in write order, as text, "{Name: "A", ...}",
// or as a JSON object; members that are not set and empty lists left out.
QString objectText(const QVector<ObjectValues>& tree, int index)
{
    const ObjectValues& object = tree[index];
    const ClassDescription& cls = settingsClasses()[object.classIndex];
    QStringList members;
    for (int m : membersInWriteOrder(cls)) {
        const MemberValue& value = object.members[m];
        if (cls.members[m].kind != MemberDescription::List) {
            if (value.set)
                members << cls.members[m].name + QStringLiteral(": ") + quoted(value.text);
            continue;
        }
        QStringList elements;
        for (int element : value.elements)
            elements << objectText(tree, element);
        if (!elements.isEmpty())
            members << cls.members[m].name + QStringLiteral(": [") + elements.join(QStringLiteral(", ")) + QLatin1Char(']');
    }
    return QLatin1Char('{') + members.join(QStringLiteral(", ")) + QLatin1Char('}');
}

QJsonObject objectJson(const QVector<ObjectValues>& tree, int index)
{
    const ObjectValues& object = tree[index];
    const ClassDescription& cls = settingsClasses()[object.classIndex];
    QJsonObject result;
    for (int m = 0; m < cls.members.size(); ++m) {
        const MemberValue& value = object.members[m];
        if (cls.members[m].kind != MemberDescription::List) {
            if (value.set)
                result.insert(cls.members[m].name, value.text);
            continue;
        }
        QJsonArray elements;
        for (int element : value.elements)
            elements.append(objectJson(tree, element));
        if (!elements.isEmpty())
            result.insert(cls.members[m].name, elements);
    }
    return result;
}

// Walks both trees at once, pairing list elements by index, and reports
// every difference as it meets it: each object is visited once.
class Comparison
{
public:
    Comparison(const QVector<ObjectValues>& a, const QVector<ObjectValues>& b, bool json)
        : m_a(a)
        , m_b(b)
        , m_json(json)
    {
    }

    void compareObjects(int a, int b, const QString& path)
    {
        const ClassDescription& cls = settingsClasses()[m_a[a].classIndex];
        for (int m : membersInWriteOrder(cls)) {
            const MemberDescription& member = cls.members[m];
            const MemberValue& x = m_a[a].members[m];
            const MemberValue& y = m_b[b].members[m];
            if (member.kind == MemberDescription::List) {
                compareLists(x.elements, y.elements, path, member.name);
            } else if (x.set && y.set) {
                if (member.kind == MemberDescription::Enumeration ? x.value != y.value : x.text != y.text)
                    report("modified", path, member.name, x.text, y.text);
            } else if (x.set || y.set) {
                report(x.set ? "deleted" : "added", path, member.name, x.set ? x.text : QString(), y.text);
            }
        }
    }

    int differences() const { return m_count; }
    const QJsonArray& json() const { return m_differences; }

private:
    // The elements of one list member in both trees, by index. An element
    // is named in its path by its Name when both trees give that name to
    // one element of the list each, at this index (or none, for an element
    // that only one tree has); else by its position.
    void compareLists(const QVector<int>& a, const QVector<int>& b, const QString& path, const QString& className)
    {
        const QHash<QString, int> namesA = nameCounts(m_a, a);
        const QHash<QString, int> namesB = nameCounts(m_b, b);
        for (int i = 0; i < qMax(a.size(), b.size()); ++i) {
            const bool inA = i < a.size();
            const bool inB = i < b.size();
            QString nameA;
            QString nameB;
            const bool namedA = inA && nameOf(m_a[a[i]], nameA);
            const bool namedB = inB && nameOf(m_b[b[i]], nameB);
            const QString name = namedA ? nameA : nameB;
            const bool byName = namedA == inA && namedB == inB && (!inA || !inB || nameA == nameB)
                && namesA.value(name) == (inA ? 1 : 0) && namesB.value(name) == (inB ? 1 : 0);
            const QString elementPath = path + QLatin1Char('/') + pathSegment(className, byName, name, i + 1);
            if (i < a.size() && i < b.size())
                compareObjects(a[i], b[i], elementPath);
            else if (i < a.size())
                reportElement("deleted", elementPath, a[i], -1);
            else
                reportElement("added", elementPath, -1, b[i]);
        }
    }

    static QHash<QString, int> nameCounts(const QVector<ObjectValues>& tree, const QVector<int>& list)
    {
        QHash<QString, int> counts;
        QString name;
        for (int index : list) {
            if (nameOf(tree[index], name))
                ++counts[name];
        }
        return counts;
    }

    void report(const char* kind, const QString& path, const QString& member, const QString& a, const QString& b)
    {
        const bool added = qstrcmp(kind, "added") == 0;
        const bool deleted = qstrcmp(kind, "deleted") == 0;
        ++m_count;
        if (m_json) {
            m_differences.append(QJsonObject{{QStringLiteral("kind"), QLatin1String(kind)},
                                             {QStringLiteral("path"), path},
                                             {QStringLiteral("member"), member},
                                             {QStringLiteral("a"), added ? QJsonValue() : QJsonValue(a)},
                                             {QStringLiteral("b"), deleted ? QJsonValue() : QJsonValue(b)}});
            return;
        }
        out() << kind << ": " << path << '/' << member << ": "
              << (added ? quoted(b) : deleted ? quoted(a) : quoted(a) + QStringLiteral(" -> ") + quoted(b)) << '\n';
    }

    void reportElement(const char* kind, const QString& path, int a, int b)
    {
        ++m_count;
        if (m_json) {
            m_differences.append(QJsonObject{{QStringLiteral("kind"), QLatin1String(kind)},
                                             {QStringLiteral("path"), path},
                                             {QStringLiteral("member"), QJsonValue()},
                                             {QStringLiteral("a"), a < 0 ? QJsonValue() : QJsonValue(objectJson(m_a, a))},
                                             {QStringLiteral("b"), b < 0 ? QJsonValue() : QJsonValue(objectJson(m_b, b))}});
            return;
        }
        out() << kind << ": " << path << ": " << (a < 0 ? objectText(m_b, b) : objectText(m_a, a)) << '\n';
    }

    const QVector<ObjectValues>& m_a;
    const QVector<ObjectValues>& m_b;
    const bool m_json;
    int m_count = 0;
    QJsonArray m_differences;
};

// Reads a document without validation, so that incomplete ones compare as
// well; a text that names no value of its enumeration cannot be compared
// and makes the input an error.
bool load(const QString& path, qint64 maxSize, QVector<ObjectValues>& tree)
{
    TORVIXML::TorviGuiModeSettings settings;
    QByteArray data;
    QString message;
    if (loadDocument(path, settings, false, maxSize, message, &data) != ExitSuccess) {
        reportFileError(path, QStringLiteral("error: ") + message);
        return false;
    }
    const QStringList nameless = namelessValues(settings, data, maxSize);
    for (const QString& text : nameless)
        reportFileError(path, QStringLiteral("error: ") + text);
    tree = TORVIXML::SettingsValues(settings);
    return nameless.isEmpty();
}

} // namespace

int runDiff(const QStringList& arguments)
{
    const QString command = QStringLiteral("diff");
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Compares two settings documents (XML, plain or compressed binary, in any mix)\n"
        "member by member, as read without validation, and prints one line per difference:\n"
        "  modified: PATH/MEMBER: \"value in A\" -> \"value in B\"\n"
        "  added: PATH/MEMBER: \"value in B\"     a member set in B only\n"
        "  deleted: PATH/MEMBER: \"value in A\"   a member set in A only\n"
        "  added: PATH: {MEMBER: VALUE, ...}    a list element in B only\n"
        "  deleted: PATH: {MEMBER: VALUE, ...}  a list element in A only\n"
        "PATH is the object path that check prints, for example\n"
        "TorviGuiModeSettings/DataOperationMode[Name=\"Standard\"]/GuiComponentSettings[2].\n"
        "List elements are paired by their index, as the library's comparison pairs them:\n"
        "an element inserted before others shows as those modified and one added at the\n"
        "end. Equal documents print nothing.\n"
        "Exit status: 0 equal, 1 different, 2 an input that cannot be read, a text that names\n"
        "no value of its enumeration, or a usage error."));
    parser.addPositionalArgument(QStringLiteral("A"), QStringLiteral("First document, or - for standard input."));
    parser.addPositionalArgument(QStringLiteral("B"), QStringLiteral("Second document, or - for standard input."));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"),
        QStringLiteral("Print one JSON document instead: {\"a\", \"b\", \"equal\", \"differences\": [{\"kind\", "
                       "\"path\", \"member\", \"a\", \"b\"}]}; member is null for a list element, a and b are "
                       "null where a member is not set or an element is missing, else the text, or the element "
                       "as an object."));
    parser.addOption(jsonOption);
    parser.addOption(maxSizeOption());
    const int parsed = parseCommandLine(parser, command, arguments);
    if (parsed >= 0)
        return parsed;
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2)
        return usageError(command, QStringLiteral("diff needs exactly two files, A and B"));
    if (isStandardStream(files[0]) && isStandardStream(files[1]))
        return usageError(command, QStringLiteral("only one of A and B can be standard input"));
    QString message;
    qint64 maxSize = 0;
    if (!maxSizeFrom(parser, maxSize, message))
        return usageError(command, message);

    QVector<ObjectValues> a;
    QVector<ObjectValues> b;
    const bool readA = load(files[0], maxSize, a);
    const bool readB = load(files[1], maxSize, b);
    if (!readA || !readB)
        return ExitUsageOrIo;
    const bool json = parser.isSet(jsonOption);
    Comparison comparison(a, b, json);
    comparison.compareObjects(0, 0, settingsClasses().first().name);
    if (json) {
        printJson({{QStringLiteral("a"), files[0]},
                   {QStringLiteral("b"), files[1]},
                   {QStringLiteral("equal"), comparison.differences() == 0},
                   {QStringLiteral("differences"), comparison.json()}});
    }
    out().flush();
    return comparison.differences() == 0 ? ExitSuccess : ExitDifferent;
}

} // namespace TorviTool
