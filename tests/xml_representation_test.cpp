// The XML form of the settings tree: exact output, reading back, the
// reading failures, the whole-document operations on strings and files, and
// what flag and logger the elements carry after a read.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <functional>
#include <memory>
#include <ostream>

using namespace TORVIXML;
using namespace TestSupport;
namespace {
const QString kUsageInvalid = EnumInvalid("GuiComponentSettings", "m_guiComponentUsage");
const QString kLocationInvalid = EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation");
const QString kHandlerInvalid = EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler");
}
using REPORTGENERATOR::IRGObject;
using REPORTGENERATOR::Logger;

namespace {

using Usage = GuiComponentSettings::GuiComponentUsage;
using Location = GuiComponentSettings::DockWidgetLocation;
using Handler = TorviGuiModeSettings::OperationModeHandler;

const QString kStandardMode = QStringLiteral(
    "<DataOperationMode Name=\"Standard\"><GuiComponentSettings Name=\"Overview\">"
    "<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage><DockWidgetLocation>LeftDockWidgetArea</DockWidgetLocation>"
    "</GuiComponentSettings><GuiComponentSettings Name=\"Details\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
    "<DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation></GuiComponentSettings></DataOperationMode>");

const QString kExample = QStringLiteral("<TorviGuiModeSettings>") + kStandardMode
    + QStringLiteral("<OperationModeHandler>PMR830ManagementComponent</OperationModeHandler></TorviGuiModeSettings>");

const QString kDeclaration = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");


GuiComponentSettings Component(const QString& name, Usage usage, Location location)
{
    GuiComponentSettings component;
    component.SetName(name);
    component.SetGuiComponentUsage(usage);
    component.SetDockWidgetLocation(location);
    return component;
}

DataOperationMode Mode(const QString& name, const QVector<GuiComponentSettings>& components = {})
{
    DataOperationMode mode;
    mode.SetName(name);
    for (const GuiComponentSettings& component : components)
        mode.AppendGuiComponentSettings(component);
    return mode;
}

DataOperationMode StandardMode()
{
    return Mode(QStringLiteral("Standard"),
                {Component(QStringLiteral("Overview"), GuiComponentSettings::DEFAULT_DISPLAY,
                           GuiComponentSettings::LeftDockWidgetArea),
                 Component(QStringLiteral("Details"), GuiComponentSettings::AVAILABLE,
                           GuiComponentSettings::FloatingDockWidgetArea)});
}


// GetXml alone, on a writer with its default settings: no declaration.
QString WriteXml(const IRGObject& object)
{
    QString text;
    QXmlStreamWriter writer(&text);
    object.GetXml(writer);
    return text;
}


const DataOperationMode& ModeAt(const TorviGuiModeSettings& root, int i)
{
    return root.GetDataOperationMode().at(i);
}

const GuiComponentSettings& ComponentAt(const DataOperationMode& mode, int i)
{
    return mode.GetGuiComponentSettings().at(i);
}

// A settings class that notes every call of its SetValidate and SetLogger,
// and every child element that its ProcessXmlStartElement is handed.
template <typename Base>
class Noting : public Base
{
public:
    mutable QStringList calls;
    const std::shared_ptr<Logger> own = std::make_shared<Logger>();

    void SetValidate(bool validate) const override
    {
        calls << (validate ? QStringLiteral("SetValidate(true)") : QStringLiteral("SetValidate(false)"));
        Base::SetValidate(validate);
    }
    void SetLogger(std::shared_ptr<Logger> logger) const override
    {
        calls << (logger == own ? QStringLiteral("SetLogger(own)") : QStringLiteral("SetLogger(other)"));
        Base::SetLogger(std::move(logger));
    }

protected:
    void ProcessXmlStartElement(QXmlStreamReader& reader) override
    {
        calls << reader.name().toString();
        Base::ProcessXmlStartElement(reader);
    }
};

// Reads xml into a new object of class T in validation mode with a logger
// of its own; returns the calls noted during the read.
template <typename T>
QStringList NotedRead(Noting<T>& object, const QString& xml)
{
    object.SetValidate(true);
    object.SetLogger(object.own);
    object.calls.clear();
    // The object's own reader: a whole-document read would read into a
    // fresh object of the base class instead.
    QXmlStreamReader reader(xml);
    reader.readNextStartElement();
    object.ProcessXml(reader);
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return object.calls;
}

// What a read notes: the record is created (InitData re-applies flag and
// logger), then each child is handed in and first re-applies both.
QStringList ReappliedAt(const QStringList& children)
{
    QStringList calls = {QStringLiteral("SetValidate(true)"), QStringLiteral("SetLogger(own)")};
    for (const QString& child : children)
        calls << child << QStringLiteral("SetValidate(true)") << QStringLiteral("SetLogger(own)");
    return calls;
}

} // namespace

TEST(XmlRepresentation, ExampleIsWrittenExactlyAndReadsBackEqual)
{
    const TorviGuiModeSettings root = Example();
    EXPECT_EQ(WriteXml(root), kExample);

    root.SetValidate(true);
    EXPECT_EQ(WriteXml(root), kExample);
    const QString document = root.GetXmlString();
    EXPECT_EQ(document, kDeclaration + kExample + QLatin1Char('\n'));

    for (const QString& text : {kExample, document}) {
        TorviGuiModeSettings read;
        read.SetValidate(true);
        ASSERT_TRUE(read.SetXmlString(text, false));
        EXPECT_TRUE(read == root);
        EXPECT_EQ(WriteXml(read), kExample);
    }
}

TEST(XmlRepresentation, LargeTreeRoundTrips)
{
    TorviGuiModeSettings root;
    root.SetValidate(true);
    root.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    for (int i = 0; i < 300; ++i) {
        QVector<GuiComponentSettings> components;
        for (int j = 0; j < i % 5; ++j) {
            const QString name = (i % 7 == 0 && j == 0)
                ? QStringLiteral("")
                : QStringLiteral("  C%1 <&> \"'\u00fc\u20ac ").arg(i * 10 + j);
            components.append(Component(name, Usage(j % 2), Location((i + j) % 7)));
        }
        root.AppendDataOperationMode(Mode(QStringLiteral("Mode %1 & <%2>").arg(i).arg(i % 3), components));
    }

    const QString document = root.GetXmlString();
    TorviGuiModeSettings read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetXmlString(document, false));
    ASSERT_EQ(read.GetDataOperationMode().size(), 300);
    EXPECT_TRUE(read == root);
    EXPECT_TRUE(ComponentAt(ModeAt(read, 7), 0).GetName().isEmpty());
    EXPECT_FALSE(ComponentAt(ModeAt(read, 7), 0).GetName().isNull());
    EXPECT_EQ(read.GetXmlString(), document);
}

TEST(XmlRepresentation, UnknownElementsAndAttributesArePassedOver)
{
    const QString document = QStringLiteral(
        "<TorviGuiModeSettings Version=\"9\"><Unknown><DataOperationMode Name=\"Ghost\"/>"
        "<OperationModeHandler>QLSManagementComponent</OperationModeHandler></Unknown>"
        "<DataOperationMode Name=\"Standard\" Extra=\"x\"><Extra a=\"1\">text<Name>Wrong</Name>"
        "<GuiComponentSettings Name=\"Ghost\"/><Deep><Deeper/></Deep></Extra>"
        "<GuiComponentSettings Name=\"Overview\"><Extra><Name>Wrong</Name><Deep>"
        "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></Deep></Extra>"
        "<GuiComponentUsage a=\"b\">DEFAULT_DISPLAY</GuiComponentUsage><!-- note -->"
        "<DockWidgetLocation>LeftDockWidgetArea</DockWidgetLocation><Extra/></GuiComponentSettings>"
        "<GuiComponentSettings Name=\"Details\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
        "<DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation></GuiComponentSettings></DataOperationMode>"
        "<OperationModeHandler x=\"y\">PMR830ManagementComponent</OperationModeHandler><Trailer>t</Trailer>"
        "</TorviGuiModeSettings>");
    TorviGuiModeSettings read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetXmlString(document, false));
    EXPECT_TRUE(read == Example());
    EXPECT_EQ(WriteXml(read), kExample);
}

TEST(XmlRepresentation, UnknownElementWithASameNamedDescendantEndsAtItsOwnEndTag)
{
    // Skipping an unknown element stops on the start tag of a descendant of
    // the same name. The rest of the unknown element is passed over (nothing
    // in it is taken for a child of the object), and reading goes on behind
    // the unknown element's own end tag, up to the object's own end tag.
    const QStringList unknown = {
        QStringLiteral("<Extra><Extra/></Extra>"),
        QStringLiteral("<Extra><a><Extra/></a></Extra>"),
        QStringLiteral("<Extra><Extra><Extra>t</Extra></Extra></Extra>"),
        QStringLiteral("<Extra><Extra></Extra><Extra/><b><Extra/></b></Extra>"),
        QStringLiteral("<Extra><Extra><GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage></Extra>"
                       "<DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation><Name>Wrong</Name></Extra>"),
        QStringLiteral("<Extra><Extra/><OperationModeHandler>VbkManagementComponent</OperationModeHandler>"
                       "<DataOperationMode Name=\"Ghost\"/><GuiComponentSettings Name=\"Ghost\"/></Extra>"),
    };
    TorviGuiModeSettings expected;
    expected.SetOperationModeHandler(TorviGuiModeSettings::PMR830ManagementComponent);
    expected.AppendDataOperationMode(Mode(
        QStringLiteral("M"),
        {Component(QStringLiteral("C"), GuiComponentSettings::AVAILABLE, GuiComponentSettings::TopDockWidgetArea)}));
    for (const QString& extra : unknown) {
        SCOPED_TRACE(extra.toStdString());
        // At each level, before and after the members; the copy behind the
        // members would overwrite them if its content were taken.
        const QString document = QStringLiteral("<TorviGuiModeSettings>") + extra
            + QStringLiteral("<DataOperationMode Name=\"M\">") + extra
            + QStringLiteral("<GuiComponentSettings Name=\"C\">") + extra
            + QStringLiteral("<GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                             "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation>")
            + extra + QStringLiteral("</GuiComponentSettings>") + extra + QStringLiteral("</DataOperationMode>")
            + extra + QStringLiteral("<OperationModeHandler>PMR830ManagementComponent</OperationModeHandler>")
            + extra + QStringLiteral("</TorviGuiModeSettings>");
        TorviGuiModeSettings read;
        read.SetValidate(true);
        ASSERT_TRUE(read.SetXmlString(document, false));
        EXPECT_TRUE(read == expected);
        EXPECT_EQ(WriteXml(read), WriteXml(expected));

        // An object read inside a larger document leaves the reader on its
        // own end tag, so that the caller goes on behind it.
        QXmlStreamReader reader(QStringLiteral("<list><GuiComponentSettings Name=\"C\">") + extra
                                + QStringLiteral("<GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                                                 "</GuiComponentSettings><After/></list>"));
        ASSERT_TRUE(reader.readNextStartElement());
        ASSERT_TRUE(reader.readNextStartElement());
        GuiComponentSettings component;
        component.ProcessXml(reader);
        EXPECT_TRUE(reader.isEndElement());
        EXPECT_EQ(reader.name().toString(), QStringLiteral("GuiComponentSettings"));
        EXPECT_EQ(component.GetName(), QStringLiteral("C"));
        EXPECT_EQ(component.GetGuiComponentUsage(), GuiComponentSettings::AVAILABLE);
        EXPECT_FALSE(component.IsDockWidgetLocationSet());
        ASSERT_TRUE(reader.readNextStartElement());
        EXPECT_EQ(reader.name().toString(), QStringLiteral("After"));
    }
}

TEST(XmlRepresentation, UnknownEnumerationTextIsRefusedOrStoredAsInvalid)
{
    struct Case
    {
        QString document;
        QString message;
    };
    const QString gcs = QStringLiteral("<GuiComponentSettings Name=\"c\">%1%2</GuiComponentSettings>");
    const QString usageOk = QStringLiteral("<GuiComponentUsage>AVAILABLE</GuiComponentUsage>");
    const QString locationOk = QStringLiteral("<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation>");
    const QVector<Case> componentCases = {
        {gcs.arg(QStringLiteral("<GuiComponentUsage>available</GuiComponentUsage>"), locationOk), kUsageInvalid},
        {gcs.arg(QStringLiteral("<GuiComponentUsage/>"), locationOk), kUsageInvalid},
        {gcs.arg(usageOk, QStringLiteral("<DockWidgetLocation/>")), kLocationInvalid},
        {gcs.arg(usageOk, QStringLiteral("<DockWidgetLocation> TopDockWidgetArea</DockWidgetLocation>")),
         kLocationInvalid},
    };
    for (const Case& c : componentCases) {
        SCOPED_TRACE(c.document.toStdString());
        GuiComponentSettings strict;
        strict.SetValidate(true);
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { strict.SetXmlString(c.document, false); }), c.message);

        GuiComponentSettings lax;
        ASSERT_TRUE(lax.SetXmlString(c.document, false));
        EXPECT_TRUE(lax.IsGuiComponentUsageSet());
        EXPECT_TRUE(lax.IsDockWidgetLocationSet());
        if (c.message == kUsageInvalid) {
            EXPECT_EQ(lax.GetGuiComponentUsage(), Usage(-1));
            EXPECT_EQ(lax.GetDockWidgetLocation(), GuiComponentSettings::TopDockWidgetArea);
        } else {
            EXPECT_EQ(lax.GetGuiComponentUsage(), GuiComponentSettings::AVAILABLE);
            EXPECT_EQ(lax.GetDockWidgetLocation(), Location(-1));
        }
    }

    // The root's handler; the invalid value is the object's own.
    for (const QString& text : {QStringLiteral("pmr830managementcomponent"), QString()}) {
        const QString document = QStringLiteral("<TorviGuiModeSettings><OperationModeHandler>") + text
            + QStringLiteral("</OperationModeHandler></TorviGuiModeSettings>");
        TorviGuiModeSettings strict;
        strict.SetValidate(true);
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { strict.SetXmlString(document, false); }), kHandlerInvalid);
        EXPECT_FALSE(strict.IsOperationModeHandlerSet());

        TorviGuiModeSettings lax;
        lax.SetInvalidOperationModeHandler(Handler(9));
        ASSERT_TRUE(lax.SetXmlString(document, false));
        EXPECT_TRUE(lax.IsOperationModeHandlerSet());
        EXPECT_EQ(lax.GetOperationModeHandler(), Handler(9));
    }

    // Deep in a tree the element's own message reaches the caller; what was
    // read before stays.
    QString tree = kExample;
    tree.replace(QStringLiteral(">AVAILABLE<"), QStringLiteral(">Available<"));
    TorviGuiModeSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { strict.SetXmlString(tree, false); }), kUsageInvalid);
    EXPECT_FALSE(strict.IsDataOperationModeSet());
    EXPECT_EQ(strict.GetDataOperationMode().size(), 0);
}

TEST(XmlRepresentation, ChildWithoutDataIsRefusedOrAppended)
{
    const QString complete = QStringLiteral(
        "<GuiComponentSettings Name=\"x\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
        "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings>");
    const QString namelessMode = QStringLiteral(
        "<TorviGuiModeSettings><DataOperationMode Name=\"A\"/><DataOperationMode>%1</DataOperationMode>"
        "<OperationModeHandler>QLSManagementComponent</OperationModeHandler></TorviGuiModeSettings>")
                                     .arg(complete);
    {
        TorviGuiModeSettings strict;
        strict.SetValidate(true);
        EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { strict.SetXmlString(namelessMode, false); }),
                  QStringLiteral("TorviGuiModeSettings: Tried to append not completely defined or invalid item "
                                 "DataOperationMode."));
        // The refused read changes nothing, not even the mode read before.
        EXPECT_FALSE(strict.AnyData());

        TorviGuiModeSettings lax;
        ASSERT_TRUE(lax.SetXmlString(namelessMode, false));
        ASSERT_EQ(lax.GetDataOperationMode().size(), 2);
        EXPECT_TRUE(ModeAt(lax, 1).GetName().isNull());
        EXPECT_FALSE(ModeAt(lax, 1).IsNameSet());
        EXPECT_EQ(ModeAt(lax, 1).GetGuiComponentSettings().size(), 1);
        EXPECT_EQ(lax.GetOperationModeHandler(), TorviGuiModeSettings::QLSManagementComponent);
    }

    const QString incompleteComponent = QStringLiteral(
        "<TorviGuiModeSettings><DataOperationMode Name=\"M\">%1<GuiComponentSettings Name=\"y\">"
        "<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage></GuiComponentSettings></DataOperationMode>"
        "</TorviGuiModeSettings>")
                                            .arg(complete);
    TorviGuiModeSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { strict.SetXmlString(incompleteComponent, false); }),
              QStringLiteral("DataOperationMode: Tried to append not completely defined or invalid item "
                             "GuiComponentSettings."));
    EXPECT_EQ(strict.GetDataOperationMode().size(), 0);

    TorviGuiModeSettings lax;
    ASSERT_TRUE(lax.SetXmlString(incompleteComponent, false));
    ASSERT_EQ(lax.GetDataOperationMode().size(), 1);
    const DataOperationMode& mode = ModeAt(lax, 0);
    ASSERT_EQ(mode.GetGuiComponentSettings().size(), 2);
    EXPECT_EQ(ComponentAt(mode, 1).GetName(), QStringLiteral("y"));
    EXPECT_EQ(ComponentAt(mode, 1).GetGuiComponentUsage(), GuiComponentSettings::DEFAULT_DISPLAY);
    EXPECT_FALSE(ComponentAt(mode, 1).IsDockWidgetLocationSet());
    EXPECT_FALSE(lax.IsOperationModeHandlerSet());
}

TEST(XmlRepresentation, ReadingReplacesInAnyOrderAndNameElementsWin)
{
    // What the object held is replaced, with or without resetFirst.
    for (const bool resetFirst : {false, true}) {
        TorviGuiModeSettings root;
        root.AppendDataOperationMode(Mode(QStringLiteral("First")));
        root.SetOperationModeHandler(TorviGuiModeSettings::QLSManagementComponent);
        ASSERT_TRUE(root.SetXmlString(kExample, resetFirst));
        EXPECT_TRUE(root == Example());
    }

    // Elements in another order, names as child elements (written later than
    // the attribute, so they win), a repeated text element.
    const QString reordered = QStringLiteral(
        "<TorviGuiModeSettings><OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
        "<DataOperationMode><GuiComponentSettings><DockWidgetLocation>LeftDockWidgetArea</DockWidgetLocation>"
        "<Name>Overview</Name><GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage></GuiComponentSettings>"
        "<Name>Standard</Name><GuiComponentSettings Name=\"Ignored\"><DockWidgetLocation>FloatingDockWidgetArea "
        "</DockWidgetLocation><Name>Details</Name><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
        "</GuiComponentSettings></DataOperationMode>"
        "<OperationModeHandler>PMR830ManagementComponent</OperationModeHandler></TorviGuiModeSettings>");
    TorviGuiModeSettings read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetXmlString(reordered, false));
    EXPECT_TRUE(read == Example());
    EXPECT_EQ(WriteXml(read), kExample);

    // A member the document leaves out is unset afterwards, whatever the
    // object held: the document replaces it all. Reading does not check,
    // the next write in validation mode does.
    const QString withoutHandler =
        QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"A\"/></TorviGuiModeSettings>");
    TorviGuiModeSettings partial;
    partial.SetValidate(true);
    ASSERT_TRUE(partial.SetXmlString(withoutHandler, false));
    EXPECT_FALSE(partial.IsOperationModeHandlerSet());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { partial.GetXmlString(); }),
              QStringLiteral("TorviGuiModeSettings: Please set OperationModeHandler properly."));
    partial.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    ASSERT_TRUE(partial.SetXmlString(withoutHandler, false));
    EXPECT_FALSE(partial.IsOperationModeHandlerSet());
    EXPECT_EQ(partial.GetOperationModeHandler(), TorviGuiModeSettings::TX470ManagementComponent);
    EXPECT_EQ(partial.GetDataOperationMode().size(), 1);

    // An empty Name element gives an empty, non-null name, even with the
    // attribute present.
    GuiComponentSettings component;
    component.SetValidate(true);
    ASSERT_TRUE(component.SetXmlString(
        QStringLiteral("<GuiComponentSettings Name=\"attr\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                       "<DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation><Name/></GuiComponentSettings>"),
        false));
    EXPECT_TRUE(component.IsNameSet());
    EXPECT_TRUE(component.GetName().isEmpty());
    EXPECT_FALSE(component.GetName().isNull());
    EXPECT_TRUE(component.HasData());
}

TEST(XmlRepresentation, FloatingLocationKeepsItsTrailingBlank)
{
    GuiComponentSettings floating = Component(QStringLiteral("F"), GuiComponentSettings::AVAILABLE,
                                              GuiComponentSettings::FloatingDockWidgetArea);
    const QString written = WriteXml(floating);
    EXPECT_EQ(written, QStringLiteral("<GuiComponentSettings Name=\"F\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                                      "<DockWidgetLocation>FloatingDockWidgetArea </DockWidgetLocation>"
                                      "</GuiComponentSettings>"));
    GuiComponentSettings read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetXmlString(written, false));
    EXPECT_EQ(read.GetDockWidgetLocation(), GuiComponentSettings::FloatingDockWidgetArea);
    EXPECT_TRUE(read == floating);

    QString withoutBlank = written;
    withoutBlank.replace(QStringLiteral("FloatingDockWidgetArea <"), QStringLiteral("FloatingDockWidgetArea<"));
    GuiComponentSettings lax;
    ASSERT_TRUE(lax.SetXmlString(withoutBlank, false));
    EXPECT_EQ(lax.GetDockWidgetLocation(), Location(-1));
    EXPECT_TRUE(lax.IsDockWidgetLocationSet());
    GuiComponentSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { strict.SetXmlString(withoutBlank, false); }), kLocationInvalid);
}

TEST(XmlRepresentation, UnsetAndInvalidMembersAreWrittenWithTheirCurrentValue)
{
    const GuiComponentSettings fresh;
    const QString written = WriteXml(fresh);
    EXPECT_EQ(written, QStringLiteral("<GuiComponentSettings Name=\"\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                                      "<DockWidgetLocation>NoDockWidgetArea</DockWidgetLocation>"
                                      "</GuiComponentSettings>"));
    GuiComponentSettings read;
    ASSERT_TRUE(read.SetXmlString(written, false));
    EXPECT_TRUE(read.IsNameSet());
    EXPECT_FALSE(read.GetName().isNull());
    EXPECT_TRUE(read.GetName().isEmpty());
    EXPECT_TRUE(read.IsGuiComponentUsageSet());
    EXPECT_TRUE(read.IsDockWidgetLocationSet());
    EXPECT_TRUE(read.HasData());

    EXPECT_EQ(WriteXml(TorviGuiModeSettings()),
              QStringLiteral("<TorviGuiModeSettings><OperationModeHandler>TX470ManagementComponent"
                             "</OperationModeHandler></TorviGuiModeSettings>"));
    EXPECT_EQ(WriteXml(DataOperationMode()), QStringLiteral("<DataOperationMode Name=\"\"/>"));
    EXPECT_EQ(WriteXml(Mode(QStringLiteral("Standard"))), QStringLiteral("<DataOperationMode Name=\"Standard\"/>"));

    // A value without a name is an empty text element.
    TorviGuiModeSettings root;
    root.SetOperationModeHandler(Handler(7));
    root.AppendDataOperationMode(Mode(QStringLiteral("Standard")));
    GuiComponentSettings component;
    component.SetGuiComponentUsage(Usage(2));
    component.SetDockWidgetLocation(Location(-1));
    const QString rootText = WriteXml(root);
    EXPECT_EQ(rootText, QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"Standard\"/>"
                                       "<OperationModeHandler></OperationModeHandler></TorviGuiModeSettings>"));
    EXPECT_EQ(WriteXml(component), QStringLiteral("<GuiComponentSettings Name=\"\"><GuiComponentUsage></GuiComponentUsage>"
                                                  "<DockWidgetLocation></DockWidgetLocation></GuiComponentSettings>"));

    TorviGuiModeSettings lax;
    ASSERT_TRUE(lax.SetXmlString(rootText, false));
    EXPECT_EQ(lax.GetOperationModeHandler(), Handler(-1));
    EXPECT_TRUE(lax.IsOperationModeHandlerSet());
    ASSERT_EQ(lax.GetDataOperationMode().size(), 1);
    EXPECT_EQ(ModeAt(lax, 0).GetName(), QStringLiteral("Standard"));
    TorviGuiModeSettings strict;
    strict.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { strict.SetXmlString(rootText, false); }), kHandlerInvalid);
}

TEST(XmlRepresentation, ValidationModeRefusesToWriteIncompleteTrees)
{
    // Writes into a string and reports the message; the text written so far
    // is left in *text.
    auto attempt = [](const IRGObject& object, QString* text) {
        QXmlStreamWriter writer(text);
        return MessageOf<OutOfRangeException>([&] { object.GetXml(writer); });
    };

    TorviGuiModeSettings root;
    root.AppendDataOperationMode(StandardMode());
    root.AppendDataOperationMode(DataOperationMode());
    EXPECT_EQ(WriteXml(root), QStringLiteral("<TorviGuiModeSettings>") + kStandardMode
                  + QStringLiteral("<DataOperationMode Name=\"\"/><OperationModeHandler>TX470ManagementComponent"
                                   "</OperationModeHandler></TorviGuiModeSettings>"));

    root.SetValidate(true);
    QString text;
    // The elements are checked first: the nameless second mode, before the
    // root's own missing handler, and before anything is written.
    EXPECT_EQ(attempt(root, &text), QStringLiteral("DataOperationMode: Please set Name properly."));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.GetXmlString(); }),
              QStringLiteral("DataOperationMode: Please set Name properly."));

    root.GetDataOperationMode().removeLast();
    EXPECT_EQ(attempt(root, &text), QStringLiteral("TorviGuiModeSettings: Please set OperationModeHandler properly."));
    EXPECT_TRUE(text.isEmpty());

    GuiComponentSettings incomplete;
    incomplete.SetName(QStringLiteral("c"));
    incomplete.SetGuiComponentUsage(GuiComponentSettings::AVAILABLE);
    root.GetDataOperationMode()[0].GetGuiComponentSettings().append(incomplete);
    root.SetOperationModeHandler(TorviGuiModeSettings::TX470ManagementComponent);
    EXPECT_EQ(attempt(root, &text), QStringLiteral("GuiComponentSettings: Please set DockWidgetLocation properly."));
    EXPECT_TRUE(text.isEmpty());

    // An object without data writes nothing: its check fails first.
    GuiComponentSettings empty;
    empty.SetValidate(true);
    EXPECT_EQ(attempt(empty, &text), QStringLiteral("GuiComponentSettings: Please set GuiComponentUsage properly."));
    EXPECT_TRUE(text.isEmpty());
    DataOperationMode nameless;
    nameless.SetValidate(true);
    EXPECT_EQ(attempt(nameless, &text), QStringLiteral("DataOperationMode: Please set Name properly."));
    EXPECT_TRUE(text.isEmpty());
}

TEST(XmlRepresentation, SetXmlStringRefusesBrokenDocuments)
{
    const QStringList broken = {
        QString(),
        QStringLiteral("not xml"),
        QStringLiteral("<TorviGuiModeSettings><OperationModeHandler>QLSManagementComponent</Operation>"
                       "</TorviGuiModeSettings>"),
        QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"a></TorviGuiModeSettings>"),
        kExample + QStringLiteral("<TorviGuiModeSettings/>"),
        QStringLiteral("<DataOperationMode Name=\"Standard\"/>"),
        QStringLiteral("<torviguimodesettings><OperationModeHandler>QLSManagementComponent</OperationModeHandler>"
                       "</torviguimodesettings>"),
    };
    for (const QString& text : broken) {
        SCOPED_TRACE(text.toStdString());
        TorviGuiModeSettings root;
        EXPECT_FALSE(root.SetXmlString(text, false));
    }
    // A foreign root element leaves the object untouched.
    TorviGuiModeSettings untouched;
    EXPECT_FALSE(untouched.SetXmlString(QStringLiteral("<DataOperationMode Name=\"Standard\"/>"), false));
    EXPECT_FALSE(untouched.AnyData());

    // Every prefix of the document: false in either mode, never an
    // exception, the object as it was.
    const QString declared = Example().GetXmlString();
    for (const QString& document : {kExample, declared}) {
        const int complete = document.trimmed().size();
        for (int length = 0; length < complete; ++length) {
            SCOPED_TRACE(length);
            const QString prefix = document.left(length);
            for (const bool validate : {false, true}) {
                TorviGuiModeSettings root = Example();
                root.SetValidate(validate);
                EXPECT_EQ(MessageOf<ReportException>([&] { EXPECT_FALSE(root.SetXmlString(prefix, false)); }),
                          kNothingThrown);
                EXPECT_TRUE(root == Example());
            }
        }
        TorviGuiModeSettings full;
        EXPECT_TRUE(full.SetXmlString(document.left(complete), false));
    }
}

TEST(XmlRepresentation, DocumentBrokenOffChangesNothingAndSaysWhere)
{
    // Wherever a document breaks off, in either mode: false, the object as
    // it was, and the reader's error with its place. In validation mode the
    // text or child the document breaks off in may be no value a setter or
    // an append accepts; the broken document is still what is reported.
    const auto at = [](const QString& marker, int extra = 0) {
        const int index = kExample.indexOf(marker);
        EXPECT_GE(index, 0) << marker.toStdString();
        return kExample.left(index + marker.size() + extra);
    };
    const QString premature = QStringLiteral("XML error at line 1, column %1: Premature end of document.");
    const struct {
        QString document;
        QString error;
    } cases[] = {
        {at(QStringLiteral(">DEFAULT_DIS")), premature.arg(125)},
        {at(QStringLiteral(">DEFAULT_DISPLAY")), premature.arg(129)},
        {at(QStringLiteral(">DEFAULT_DISPLAY"), 1), premature.arg(130)},
        {at(QStringLiteral("<DataOperationMode Name=\"Standard\"")), premature.arg(56)},
        {at(QStringLiteral("<DataOperationMode Name=\"Standard\">")), premature.arg(57)},
        {at(QStringLiteral("<OperationModeHandler>PMR830")), premature.arg(451)},
        {at(QStringLiteral("</OperationModeHandler>")), premature.arg(493)},
        {QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"X\"><GuiComponentSettings Name=\"C\">"
                        "<GuiComponentUsage>AVAILABLE</GuiComponentUsage>"),
         premature.arg(129)},
        {QStringLiteral("<TorviGuiModeSettings><OperationModeHandler>Bogus"), premature.arg(49)},
        {QStringLiteral("<TorviGuiModeSettings><DataOperationMode><Name>Sta"), premature.arg(50)},
        {QStringLiteral("<TorviGuiModeSettings><DataOperationMode><Name>Sta</Nome>"),
         QStringLiteral("XML error at line 1, column 57: Opening and ending tag mismatch.")},
    };
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QFile file(dir.filePath(QStringLiteral("cut.xml")));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.document.toStdString());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(c.document.toUtf8());
        file.close();
        for (const bool validate : {false, true}) {
            SCOPED_TRACE(validate);
            TorviGuiModeSettings root;
            root.SetValidate(validate);
            root.AppendDataOperationMode(Mode(QStringLiteral("Old")));
            const TorviGuiModeSettings before(root);
            EXPECT_EQ(MessageOf<ReportException>([&] { EXPECT_FALSE(root.SetXmlString(c.document, true)); }),
                      kNothingThrown);
            EXPECT_EQ(root.GetErrorString(), c.error);
            EXPECT_TRUE(root == before);
            EXPECT_EQ(MessageOf<ReportException>([&] { EXPECT_FALSE(root.LoadXml(file.fileName())); }),
                      kNothingThrown);
            EXPECT_EQ(root.GetErrorString(), c.error);
            EXPECT_TRUE(root == before);
        }
    }
}

TEST(XmlRepresentation, FilesRoundTrip)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    const TorviGuiModeSettings example = Example();
    ASSERT_TRUE(example.SaveXml(path));
    QFile saved(path);
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(saved.readAll(), (kDeclaration + kExample + QLatin1Char('\n')).toUtf8());
    saved.close();

    // LoadXml resets first: what the object held before is gone.
    TorviGuiModeSettings byName;
    byName.SetValidate(true);
    byName.AppendDataOperationMode(Mode(QStringLiteral("Old")));
    ASSERT_TRUE(byName.LoadXml(path));
    EXPECT_TRUE(byName == example);

    TorviGuiModeSettings byFile;
    byFile.AppendDataOperationMode(Mode(QStringLiteral("Old")));
    QFile file(path);
    ASSERT_TRUE(byFile.LoadXml(&file));
    EXPECT_TRUE(byFile == example);
    TorviGuiModeSettings byOpenFile;
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    ASSERT_TRUE(byOpenFile.LoadXml(&file));
    EXPECT_TRUE(byOpenFile == example);
    file.close();

    TorviGuiModeSettings missing;
    EXPECT_FALSE(missing.LoadXml(dir.filePath(QStringLiteral("none.xml"))));
    QFile missingFile(dir.filePath(QStringLiteral("none.xml")));
    EXPECT_FALSE(missing.LoadXml(&missingFile));
    EXPECT_FALSE(missing.LoadXml(static_cast<QFile*>(nullptr)));
}

TEST(XmlRepresentation, FailedSaveLeavesThePreviousFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("settings.xml"));
    ASSERT_TRUE(Example().SaveXml(path));
    auto contents = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
    };
    auto entries = [&dir] {
        return QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    };
    const QByteArray before = contents();
    const QStringList onlyFile = {QStringLiteral("settings.xml")};
    ASSERT_EQ(entries(), onlyFile);

    TorviGuiModeSettings incomplete;
    incomplete.SetValidate(true);
    incomplete.AppendDataOperationMode(StandardMode());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.SaveXml(path); }),
              QStringLiteral("TorviGuiModeSettings: Please set OperationModeHandler properly."));
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(entries(), onlyFile);

    const TorviGuiModeSettings example = Example();
    const QString nowhere = dir.filePath(QStringLiteral("missing/settings.xml"));
    EXPECT_FALSE(example.SaveXml(nowhere));
    EXPECT_EQ(example.GetErrorString(),
              QStringLiteral("cannot open for writing: No such file or directory"));
    EXPECT_EQ(contents(), before);
    EXPECT_EQ(entries(), onlyFile);

    // A good save replaces the file.
    incomplete.SetOperationModeHandler(TorviGuiModeSettings::VbkManagementComponent);
    ASSERT_TRUE(incomplete.SaveXml(path));
    EXPECT_EQ(contents(), incomplete.GetXmlString().toUtf8());
    EXPECT_NE(contents(), before);
    EXPECT_EQ(entries(), onlyFile);
}

TEST(XmlRepresentation, FlagAndLoggerOfReadElements)
{
    const auto logger = std::make_shared<Logger>();
    const auto other = std::make_shared<Logger>();
    const QString twoModes = QStringLiteral(
        "<TorviGuiModeSettings><DataOperationMode Name=\"A\"><GuiComponentSettings Name=\"a1\">"
        "<GuiComponentUsage>AVAILABLE</GuiComponentUsage><DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation>"
        "</GuiComponentSettings><GuiComponentSettings Name=\"a2\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
        "<DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings></DataOperationMode>"
        "<DataOperationMode Name=\"B\"><GuiComponentSettings Name=\"b1\"><GuiComponentUsage>AVAILABLE"
        "</GuiComponentUsage><DockWidgetLocation>TopDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
        "</DataOperationMode>%1</TorviGuiModeSettings>");

    auto expectMode = [](const DataOperationMode& mode, bool validate, const std::shared_ptr<Logger>& expected) {
        SCOPED_TRACE(mode.GetName().toStdString());
        EXPECT_EQ(mode.GetValidate(), validate);
        EXPECT_EQ(mode.GetLogger(), expected);
        for (const GuiComponentSettings& component : mode.GetGuiComponentSettings()) {
            EXPECT_EQ(component.GetValidate(), validate);
            EXPECT_EQ(component.GetLogger(), expected);
        }
    };

    for (bool validate : {false, true}) {
        SCOPED_TRACE(validate);
        // The modes are read with the root's flag and logger; each child
        // re-applies them to the elements appended before it. The document
        // ends with a mode: no child follows it, so nothing re-applies the
        // root's logger to it; as an appended copy it has none.
        TorviGuiModeSettings root;
        root.SetValidate(validate);
        root.SetLogger(logger);
        root.AppendDataOperationMode(Mode(QStringLiteral("Pre")));
        root.GetDataOperationMode()[0].SetLogger(other);
        ASSERT_TRUE(root.SetXmlString(twoModes.arg(QString()), false));
        ASSERT_EQ(root.GetDataOperationMode().size(), 2);
        expectMode(ModeAt(root, 0), validate, logger);
        expectMode(ModeAt(root, 1), validate, nullptr);
        EXPECT_EQ(root.GetLogger(), logger);

        // Another child after the last mode re-applies it everywhere.
        TorviGuiModeSettings withHandler;
        withHandler.SetValidate(validate);
        withHandler.SetLogger(logger);
        ASSERT_TRUE(withHandler.SetXmlString(
            twoModes.arg(QStringLiteral("<OperationModeHandler>TX470ManagementComponent</OperationModeHandler>")),
            false));
        ASSERT_EQ(withHandler.GetDataOperationMode().size(), 2);
        expectMode(ModeAt(withHandler, 0), validate, logger);
        expectMode(ModeAt(withHandler, 1), validate, logger);

        // Writing re-applies the root's logger to the whole tree.
        root.SetOperationModeHandler(TorviGuiModeSettings::QLSManagementComponent);
        root.GetXmlString();
        expectMode(ModeAt(root, 1), validate, logger);
    }

    // The same one level down: a mode read as a document of its own.
    DataOperationMode mode;
    mode.SetLogger(logger);
    ASSERT_TRUE(mode.SetXmlString(
        QStringLiteral("<DataOperationMode Name=\"M\"><GuiComponentSettings Name=\"c1\"/>"
                       "<GuiComponentSettings Name=\"c2\"/></DataOperationMode>"),
        false));
    ASSERT_EQ(mode.GetGuiComponentSettings().size(), 2);
    EXPECT_EQ(ComponentAt(mode, 0).GetLogger(), logger);
    EXPECT_EQ(ComponentAt(mode, 1).GetLogger(), nullptr);
}

// Every ProcessXmlStartElement re-applies the object's own flag and logger
// through its virtual operations before it looks at the child, whatever
// the child is, so a class that overrides them sees each re-application.
TEST(XmlRepresentation, EveryChildReappliesFlagAndLoggerThroughTheVirtualOperations)
{
    Noting<TorviGuiModeSettings> root;
    EXPECT_EQ(NotedRead(root, QStringLiteral("<TorviGuiModeSettings><DataOperationMode Name=\"M\"/><Extra><x/></Extra>"
                                             "<OperationModeHandler>VbkManagementComponent</OperationModeHandler>"
                                             "</TorviGuiModeSettings>")),
              ReappliedAt({QStringLiteral("DataOperationMode"), QStringLiteral("Extra"),
                           QStringLiteral("OperationModeHandler")}));
    EXPECT_EQ(root.GetOperationModeHandler(), TorviGuiModeSettings::VbkManagementComponent);
    ASSERT_EQ(root.GetDataOperationMode().size(), 1);
    EXPECT_EQ(root.GetDataOperationMode().at(0).GetLogger(), root.own);

    Noting<DataOperationMode> mode;
    EXPECT_EQ(NotedRead(mode, QStringLiteral("<DataOperationMode><GuiComponentSettings Name=\"c\"><GuiComponentUsage>"
                                             "AVAILABLE</GuiComponentUsage><DockWidgetLocation>TopDockWidgetArea"
                                             "</DockWidgetLocation></GuiComponentSettings><Name>M</Name><Extra/>"
                                             "</DataOperationMode>")),
              ReappliedAt({QStringLiteral("GuiComponentSettings"), QStringLiteral("Name"), QStringLiteral("Extra")}));
    EXPECT_EQ(mode.GetName(), QStringLiteral("M"));
    ASSERT_EQ(mode.GetGuiComponentSettings().size(), 1);
    EXPECT_EQ(mode.GetGuiComponentSettings().at(0).GetLogger(), mode.own);

    Noting<GuiComponentSettings> component;
    EXPECT_EQ(NotedRead(component, QStringLiteral("<GuiComponentSettings Name=\"c\"><DockWidgetLocation>"
                                                  "TopDockWidgetArea</DockWidgetLocation><Extra/><GuiComponentUsage>"
                                                  "DEFAULT_DISPLAY</GuiComponentUsage></GuiComponentSettings>")),
              ReappliedAt({QStringLiteral("DockWidgetLocation"), QStringLiteral("Extra"),
                           QStringLiteral("GuiComponentUsage")}));
    EXPECT_TRUE(component == Component(QStringLiteral("c"), GuiComponentSettings::DEFAULT_DISPLAY,
                                       GuiComponentSettings::TopDockWidgetArea));
}
