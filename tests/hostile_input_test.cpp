// Hostile XML documents and failing saves: every case ends in a clear
// failure that leaves the object as it was, or in exactly the tree the
// format's rules give, at a cost in proportion to the input. (Hostile
// binary documents are cases of tests/data/binary/hostile.txt.)

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <sys/resource.h>

#include <algorithm>
#include <csignal>

using namespace TestSupport;

namespace {

const std::string kBroken = "false\nXML error at line 1, column ";

// What ReadXml gives for a read that the library's exception ends.
std::string Thrown(const std::string& exception, const QString& message)
{
    return exception + ": " + message.toStdString() + "\n" + message.toStdString() + "\nunchanged";
}
const std::string kHandlerInvalid =
    Thrown("OutOfRangeException", EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler"));

// A whole-document read into the README example, validating or not, from
// the document decoded as UTF-8 (SetXmlString) or from a file holding its
// bytes (LoadXml): the outcome, the error string and the tree afterwards
// ("unchanged" when it is still the example's).
std::string ReadXml(const QByteArray& xml, bool file, bool validate = false, R* read = nullptr)
{
    R root = Example();
    root.SetValidate(validate);
    QTemporaryDir dir;
    const QString path = dir.filePath(Q("document.xml"));
    EXPECT_TRUE(!file || WriteFile(path, xml));
    const std::string outcome = file ? OutcomeOf([&] { return root.LoadXml(path); })
                                     : OutcomeOf([&] { return root.SetXmlString(QString::fromUtf8(xml), false); });
    const std::string tree = Outline(root);
    if (read)
        *read = root;
    return outcome + "\n" + root.GetErrorString().toStdString() + "\n"
        + (tree == Outline(Example()) ? "unchanged" : tree.substr(0, 300));
}

QByteArray Document(const QByteArray& content)
{
    return "<TorviGuiModeSettings>" + content
        + "<OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>";
}

} // namespace

TEST(HostileXml, AnEntityBombEndsAtTheReadersExpansionLimit)
{
    // 10^9 times "QLS" if it were expanded: the reader refuses an entity
    // that expands to more than 4096 characters, which breaks the document;
    // the broken document is what is reported, also in validation mode.
    // Below the limit (10^3 times) entities expand as XML says, to no name.
    const QByteArray bomb = ReadData(Q("hostile/entity-bomb.xml"));
    const QByteArray small = ReadData(Q("hostile/entity-bomb-small.xml"));
    for (const bool validate : {false, true})
        EXPECT_EQ(ReadXml(bomb, false, validate), "false\nXML error at line 1, column 647: Entity expands to more "
                                                  "characters than the entity expansion limit.\nunchanged");
    EXPECT_EQ(ReadXml(small, false), "true\n\n-1*{'vor'*[]}*");
    EXPECT_EQ(ReadXml(small, true, true), kHandlerInvalid);
}

TEST(HostileXml, EntityReferencesAddAtMostTheDocumentsSizePlusOneMiB)
{
    // 258 references to an entity of 4096 characters (64 references to one
    // of 64) spend 1056768 characters: as many as a document of 8192 may
    // add, one more than a document of 8191 may. They count wherever they
    // stand, and so do the default values a DTD gives attributes (here two
    // to each of 129 elements) and entities that refer to them; the
    // reference or start tag that overspends is refused, at its line and
    // column in UTF-16 units. Comments, processing instructions and CDATA
    // sections, and quoted text in the DTD, are no markup: nothing in them
    // counts. A predefined entity or a character reference in an entity's
    // value counts one character.
    const QByteArray refs = QByteArray("&e;").repeated(258);
    const QByteArray skipped =
        "<Unknown><!--&e;<x a='&e;'>--><![CDATA[&e;<x a='&e;'>]]]]><?pi?><?pi &e;?" "?><x b='&#38;&amp;&#x26;'/></Unknown>";
    const QByteArray quoted = "<!--<!ATTLIST Unknown c CDATA \"&e;\">--><?pi?><?pi <!ATTLIST Unknown c CDATA \"&e;\">?>"
                              "<!ENTITY z \"\"><!ENTITY q \"<!ATTLIST Unknown c CDATA '&e;'>\"><!ENTITY g \"&e;\">";
    const QByteArray mixed = "<!ENTITY k \"" + QByteArray("&f;").repeated(56)
        + QByteArray("&amp;&lt;&gt;&apos;&quot;&#65;&#x42;&#67;").repeated(8) + "\">";
    const struct
    {
        QByteArray dtd;
        QByteArray body;
        const char* last; // where the overspending one stands
    } rows[] = {
        {"", "<DataOperationMode Name=\"" + refs + "\"/>", "&e;"},
        {"", "<Unknown>" + refs + "</Unknown>", "&e;"},
        {"", "<Unknown a=\"" + refs + "\"/>", "&e;"},
        {"", QByteArray("<Defaulted/>").repeated(129), "<Defaulted"},
        {"<!ATTLIST Two a CDATA \"&e;\" b CDATA '&e;'>", QByteArray("<Two/>").repeated(129), "<Two"},
        {quoted, skipped + "<Unknown a=\"" + refs.mid(3) + "&g;\"/>", "&g;"},
        {mixed, "<Unknown>" + refs.mid(3) + QByteArray("&f;").repeated(7) + "&k;</Unknown>", "&k;"},
        {"<!ATTLIST TorviGuiModeSettings r CDATA \"&e;\">", "<Unknown>" + refs.mid(3) + "</Unknown>", "&e;"},
        {"<!ATTLIST Cr a CDATA \"&#65;&#66;&#x43;&#68;\">",
         "<Unknown>" + refs.mid(3) + "</Unknown>" + QByteArray("<Cr/>").repeated(1024), "<Cr"},
        {"<!-- " + QByteArray("\xC3\xA4\xF0\x9F\x98\x80").repeated(3) + " -->",
         "<Unknown>\n\n\xC3\xA4\xF0\x9F\x98\x80" + refs + "</Unknown>", "&e;"},
    };
    for (const auto& row : rows) {
        for (const int size : {8192, 8191}) {
            for (const bool file : {false, true}) {
                QByteArray xml = "<!DOCTYPE TorviGuiModeSettings [<!ENTITY f \"" + QByteArray(64, 'x') + "\"><!ENTITY e \""
                    + QByteArray("&f;").repeated(64) + "\">" + row.dtd + "<!ATTLIST Defaulted a CDATA \"&e;\">"
                    + "<!ATTLIST Defaulted b CDATA \"&e;\">]>" + Document(row.body);
                const int length = file ? xml.size() : QString::fromUtf8(xml).size();
                xml.insert(xml.lastIndexOf("</"), QByteArray(size - length, ' '));
                const QString before = QString::fromUtf8(xml.left(xml.lastIndexOf(row.last)));
                SCOPED_TRACE(row.body.left(20).toStdString() + (file ? " in a file" : " in a string"));
                R read;
                const std::string outcome = ReadXml(xml, file, false, &read);
                EXPECT_EQ(outcome.substr(0, outcome.rfind('\n')),
                          size == 8192 ? "true\n"
                                       : QStringLiteral("false\nat line %1, column %2: the entity references and default "
                                                        "attributes expand to more than 1056767 characters, the most "
                                                        "allowed for a document of 8191 %3")
                                             .arg(before.count(QLatin1Char('\n')) + 1)
                                             .arg(before.size() - before.lastIndexOf(QLatin1Char('\n')))
                                             .arg(Q(file ? "bytes" : "characters"))
                                             .toStdString());
                if (size == 8192 && row.body.startsWith("<Data")) {
                    EXPECT_EQ(read.GetDataOperationMode().at(0).GetName(), QString(258 * 4096, QLatin1Char('x')));
                }
            }
        }
    }
}

TEST(HostileXml, AnElementCarriesAtMost1024Attributes)
{
    // Qt's reader compares an element's attributes pairwise; more than 1024
    // are refused before it sees them. In a UTF-8 file the place is counted
    // in UTF-16 units as the reader counts: "\u00E4" is one, "\U0001F600" two.
    QByteArray attributes;
    for (int i = 0; i < 1025; ++i)
        attributes += " a" + QByteArray::number(i) + "=\"\"";
    const QString refused = Q("false\nat line %1, column %2: the element has more than 1024 attributes\nunchanged");
    EXPECT_EQ(ReadXml(Document("<Unknown" + attributes + "/>"), false), refused.arg(1).arg(23).toStdString());
    for (const bool file : {false, true})
        EXPECT_EQ(ReadXml("<TorviGuiModeSettings" + attributes + "/>", file), refused.arg(1).arg(1).toStdString());
    EXPECT_EQ(ReadXml(" <TorviGuiModeSettings" + attributes + "/>", true), refused.arg(1).arg(2).toStdString());
    EXPECT_EQ(ReadXml(Document("<DataOperationMode Name=\"\u00E4\U0001F600\"/><Unknown" + attributes + "/>"), true),
              refused.arg(1).arg(54).toStdString());

    // The screen measures a document as the reader decodes it: by its byte
    // order mark or the pattern of its first character, then by the
    // encoding its declaration names. Decoded any other way, the place
    // moves ("\u00C3\u00A4" is two characters in Latin-1, one in UTF-8).
    struct Encoding
    {
        QByteArray bom;
        int width; // bytes per character, 1 for UTF-8; 0: Latin-1, declared
        bool bigEndian;
    };
    const Encoding encodings[] = {
        {"\xEF\xBB\xBF", 1, false}, {"\xFF\xFE", 2, false}, {"\xFE\xFF", 2, true}, {"", 2, false},
        {"", 2, true}, {QByteArray("\xFF\xFE\0\0", 4), 4, false}, {QByteArray("\0\0\xFE\xFF", 4), 4, true},
        {"", 4, false}, {"", 4, true}, {"", 0, false},
    };
    for (const Encoding& e : encodings) {
        const QString text = Q("<?xml version=\"1.0\"%1?>\n<TorviGuiModeSettings><DataOperationMode "
                               "Name=\"\u00C3\u00A4\"/><Unknown%2/></TorviGuiModeSettings>")
                                 .arg(e.width == 0 ? Q(" encoding=\"ISO-8859-1\"") : QString(),
                                      QString::fromLatin1(attributes));
        QByteArray bytes = e.width == 0 ? text.toLatin1() : e.bom + (e.width == 1 ? text.toUtf8() : QByteArray());
        for (int i = 0; e.width > 1 && i < text.size(); ++i) {
            for (int k = 0; k < e.width; ++k)
                bytes += char(k < 2 ? text.at(i).unicode() >> (8 * k) : 0);
            if (e.bigEndian)
                std::reverse(bytes.end() - e.width, bytes.end());
        }
        EXPECT_EQ(ReadXml(bytes, true), refused.arg(2).arg(53).toStdString()) << bytes.left(8).toHex().toStdString();
    }
    attributes.truncate(attributes.lastIndexOf(' '));
    EXPECT_EQ(ReadXml(Document("<Unknown" + attributes + "/>"), true), "true\n\n2*{}");
}

TEST(HostileXml, ExternalEntitiesAreNeverFetched)
{
    QTemporaryDir dir;
    const QString secret = dir.filePath(Q("secret.txt"));
    const QString dtd = dir.filePath(Q("outside.dtd"));
    ASSERT_TRUE(WriteFile(secret, "PMR830ManagementComponent"));
    ASSERT_TRUE(WriteFile(dtd, "<!ENTITY h \"PMR830ManagementComponent\">"));
    // In content it is passed over: the elements read as empty.
    const QByteArray inContent = "<!DOCTYPE TorviGuiModeSettings [<!ENTITY x SYSTEM \"" + QUrl::fromLocalFile(secret).toEncoded()
        + "\">]><TorviGuiModeSettings><DataOperationMode Name=\"M\"><Name>&x;</Name></DataOperationMode>"
        + "<OperationModeHandler>&x;</OperationModeHandler></TorviGuiModeSettings>";
    EXPECT_EQ(ReadXml(inContent, false), "true\n\n-1*{''*[]}*");
    EXPECT_EQ(ReadXml(inContent, false, true), kHandlerInvalid);
    // An external DTD is not loaded either: its entity stays undeclared.
    EXPECT_EQ(ReadXml("<!DOCTYPE TorviGuiModeSettings SYSTEM \"" + QUrl::fromLocalFile(dtd).toEncoded() + "\">"
                          + "<TorviGuiModeSettings><OperationModeHandler>&h;</OperationModeHandler></TorviGuiModeSettings>",
                      true),
              "true\n\n-1*{}");
}

TEST(HostileXml, DeepNesting)
{
    constexpr int Levels = 10000;
    const auto nest = [](const QByteArray& name, const QByteArray& inside = QByteArray()) -> QByteArray {
        return QByteArray("<" + name + ">").repeated(Levels) + inside + QByteArray("</" + name + ">").repeated(Levels);
    };
    // Unknown elements are passed over as a whole, text inside them is not
    // the member's text, and the members behind them are read.
    EXPECT_EQ(ReadXml("<TorviGuiModeSettings><DataOperationMode Name=\"M\"><GuiComponentSettings Name=\"C\">"
                          + nest("e", "x") + "<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage>"
                          + "</GuiComponentSettings></DataOperationMode><OperationModeHandler>"
                          + nest("e", "TX470ManagementComponent")
                          + "VbkManagementComponent</OperationModeHandler></TorviGuiModeSettings>",
                      false),
              "true\n\n3*{'M'*['C'*(1*,6)]*}*");
    EXPECT_EQ(ReadXml("<TorviGuiModeSettings>" + nest("e"), false).substr(0, kBroken.size()), kBroken);
    // Elements of one name nested: inside a mode the name of a mode is
    // unknown, and skipping an unknown element stops at the next tag of its
    // name, the third level; the mode's walk passes over the rest and ends
    // at the first level's end tag. One empty mode, or one empty component
    // in a mode, and the handler behind is read; refused in validation mode.
    const QByteArray modes = Document(nest("DataOperationMode"));
    const QByteArray components =
        Document("<DataOperationMode Name=\"M\">" + nest("GuiComponentSettings") + "</DataOperationMode>");
    EXPECT_EQ(ReadXml(modes, false), "true\n\n2*{<null>[]}*");
    EXPECT_EQ(ReadXml(components, false), "true\n\n2*{'M'*[<null>(0,6)]*}*");
    EXPECT_EQ(ReadXml(modes, false, true),
              Thrown("IncompleteDefinitionException", IncompleteAppend("TorviGuiModeSettings", "DataOperationMode")));
    EXPECT_EQ(ReadXml(components, false, true),
              Thrown("IncompleteDefinitionException", IncompleteAppend("DataOperationMode", "GuiComponentSettings")));
}

TEST(HostileXml, BytesThatAreNoUtf8AreRefusedWhereTheyStand)
{
    // The reader reports bytes outside UTF-8 where it began decoding, which
    // behind a declaration is where the declaration ends; the place given is
    // where the first of them stands, in UTF-16 units.
    const QByteArray start =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><TorviGuiModeSettings><DataOperationMode Name=\"M";
    const QByteArray end = "rz\"/></TorviGuiModeSettings>";
    const auto refused = [](const char* place) {
        return std::string("false\nXML error at line ") + place + ": Encountered incorrectly encoded content.\nunchanged";
    };
    EXPECT_EQ(ReadXml(start + "\xC3\xA4" + end, true), "true\n\n0{'M\xC3\xA4rz'*[]}*");
    // A lone continuation byte, 0xFF, a cut sequence, the longest overlong
    // forms of two, three and four bytes, a surrogate, beyond U+10FFFF (two
    // ways).
    for (const char* bad : {"\xA4", "\xFF", "\xC3", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"})
        EXPECT_EQ(ReadXml(start + bad + end, true), refused("1, column 87")) << QByteArray(bad).toHex().toStdString();
    EXPECT_EQ(ReadXml(start.mid(38) + "\xFF" + end, true), refused("1, column 49"));
    EXPECT_EQ(ReadXml(start.left(38) + "\n" + start.mid(38) + QByteArray(270, 'x') + "\xFE" + end, true),
              refused("2, column 319"));
    // Behind U+00A0, U+07FF, U+0800, U+20AC, U+D7FF, U+10000 and U+10FFFF.
    const QByteArray valid = "\xC2\xA0\xDF\xBF\xE0\xA0\x80\xE2\x82\xAC\xED\x9F\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ReadXml(start + valid + "\xC3" + end, true), refused("1, column 96"));
}

TEST(HostileXml, AHugeNameIsReadAndWrittenWhole)
{
    // No limit on a name's length; a file of 1.5 MiB is read in steps.
    const QByteArray name(3 << 19, 'x');
    const QByteArray xml = Document("<DataOperationMode Name=\"" + name + "\"/>");
    R read;
    EXPECT_EQ(ReadXml(xml, true, true, &read).substr(0, 6), "true\n\n");
    EXPECT_EQ(read.GetDataOperationMode().at(0).GetName().toUtf8(), name);
    EXPECT_EQ(read.GetXmlString().toUtf8(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + xml + "\n");
}

TEST(AtomicSave, AWriteThatFailsHalfwayLeavesThePreviousFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(Q("settings.xml"));
    ASSERT_TRUE(Example().SaveXml(path));
    const QByteArray before = Example().GetXmlString().toUtf8();
    // While no file may grow beyond 4 KB (a write beyond fails with EFBIG
    // instead of raising SIGXFSZ), a document of 100 KB fails part way, in
    // the temporary file.
    const R big = Root(R::QLSManagementComponent, {Mode(QByteArray(100000, 'n').constData())});
    rlimit saved{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const rlimit limited{4096, saved.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool written = big.SaveXml(path);
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written);
    EXPECT_EQ(big.GetErrorString(), Q("cannot write: File too large"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
              QStringList{Q("settings.xml")});
    // Without the limit the same save succeeds.
    EXPECT_TRUE(big.SaveXml(path));
    EXPECT_EQ(big.GetErrorString(), QString());
}
