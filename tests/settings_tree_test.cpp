// The settings tree: DataOperationMode and TorviGuiModeSettings with their
// lists, default elements, comparison, the completeness check, the hand-down
// of the validation flag and the logger, and the value semantics of a whole
// tree.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <functional>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using REPORTGENERATOR::IRGObject;
using REPORTGENERATOR::Logger;
using G = TORVIXML::GuiComponentSettings;
using M = TORVIXML::DataOperationMode;
using R = TORVIXML::TorviGuiModeSettings;
using namespace TestSupport;
namespace {
const QString kUsageInvalid = EnumInvalid("GuiComponentSettings", "m_guiComponentUsage");
const QString kLocationInvalid = EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation");
const QString kHandlerInvalid = EnumInvalid("TorviGuiModeSettings", "m_operationModeHandler");
}
using std::as_const;


namespace {


const QString Passes = kNothingThrown;


std::string Text(const QString& s)
{
    return s.isNull() ? "<null>" : "'" + s.toStdString() + "'";
}

// 'name'*[component names]* for a mode, handler*{modes}* for a root; '*'
// marks a set member. Reads through const access only.
std::string Outline(const M& m)
{
    std::string out = Text(m.GetName()) + (m.IsNameSet() ? "*[" : "[");
    for (const G& g : m.GetGuiComponentSettings())
        out += (out.back() == '[' ? "" : ",") + Text(g.GetName());
    return out + (m.IsGuiComponentSettingsSet() ? "]*" : "]");
}

std::string Outline(const R& r)
{
    std::string out = std::to_string(r.GetOperationModeHandler()) + (r.IsOperationModeHandlerSet() ? "*{" : "{");
    for (const M& m : r.GetDataOperationMode())
        out += (out.back() == '{' ? "" : ";") + Outline(m);
    return out + (r.IsDataOperationModeSet() ? "}*" : "}");
}

G Component(const char* name, G::GuiComponentUsage usage = G::AVAILABLE,
            G::DockWidgetLocation dock = G::LeftDockWidgetArea)
{
    G s;
    s.SetName(Q(name));
    s.SetGuiComponentUsage(usage);
    s.SetDockWidgetLocation(dock);
    return s;
}

// A null name leaves the name unset. Appends run outside validation mode.
M Mode(const char* name, std::initializer_list<G> components = {})
{
    M m;
    if (name)
        m.SetName(Q(name));
    for (const G& c : components)
        m.AppendGuiComponentSettings(c);
    return m;
}

constexpr int NoHandler = -100;

R Root(int handler, std::initializer_list<M> modes = {})
{
    R r;
    if (handler != NoHandler)
        r.SetOperationModeHandler(R::OperationModeHandler(handler));
    for (const M& m : modes)
        r.AppendDataOperationMode(m);
    return r;
}

R TwoModeTree()
{
    return Root(R::PMR830ManagementComponent,
                {Mode("Standard", {Component("Overview", G::DEFAULT_DISPLAY),
                                   Component("Details", G::AVAILABLE, G::FloatingDockWidgetArea)}),
                 Mode("Service", {Component("Log", G::AVAILABLE, G::BottomDockWidgetArea)})});
}
const std::string TwoModeOutline = "1*{'Standard'*['Overview','Details']*;'Service'*['Log']*}*";

// TwoModeTree with a default element at every level.
R TreeWithDefaults()
{
    R r = TwoModeTree();
    for (M& m : r.GetDataOperationMode())
        m.SetDefaultGuiComponentSettings(Component("Default"));
    M defaultMode = Mode("DefaultMode", {Component("Inner")});
    defaultMode.SetDefaultGuiComponentSettings(Component("DefaultOfDefault"));
    r.SetDefaultDataOperationMode(defaultMode);
    return r;
}

// Every list element below the root, modes before their components.
std::vector<const IRGObject*> Elements(const R& root)
{
    std::vector<const IRGObject*> all;
    for (const M& m : root.GetDataOperationMode()) {
        all.push_back(&m);
        for (const G& g : m.GetGuiComponentSettings())
            all.push_back(&g);
    }
    return all;
}

std::vector<const IRGObject*> DefaultElements(const R& root)
{
    const M& defaultMode = root.GetDefaultDataOperationMode();
    std::vector<const IRGObject*> all{&defaultMode, &defaultMode.GetDefaultGuiComponentSettings(),
                                      &defaultMode.GetGuiComponentSettings()[0]};
    for (const M& m : root.GetDataOperationMode())
        all.push_back(&m.GetDefaultGuiComponentSettings());
    return all;
}

// Gives every list element below the root a flag and logger of its own.
void Disturb(R& root, bool validate, const std::shared_ptr<Logger>& logger)
{
    for (M& m : root.GetDataOperationMode()) {
        m.SetValidate(validate);
        m.SetLogger(logger);
        for (G& g : m.GetGuiComponentSettings()) {
            g.SetValidate(validate);
            g.SetLogger(logger);
        }
    }
}

void ExpectAll(const std::vector<const IRGObject*>& objects, bool validate, const std::shared_ptr<Logger>& logger)
{
    for (size_t i = 0; i < objects.size(); ++i) {
        EXPECT_EQ(objects[i]->GetValidate(), validate) << "element " << i;
        EXPECT_EQ(objects[i]->GetLogger().get(), logger.get()) << "element " << i;
    }
}

const QString AppendComponentMessage =
    Q("DataOperationMode: Tried to append not completely defined or invalid item GuiComponentSettings.");
const QString AppendModeMessage =
    Q("TorviGuiModeSettings: Tried to append not completely defined or invalid item DataOperationMode.");
const QString ModeNameMessage = Q("DataOperationMode: Please set Name properly.");
const QString HandlerMessage = Q("TorviGuiModeSettings: Please set OperationModeHandler properly.");

} // namespace

TEST(DataOperationModeList, GettersSettersAndTheSetFlag)
{
    M fresh;
    fresh.ResetGuiComponentSettings();
    fresh.Reset();
    EXPECT_FALSE(fresh.IsInitialized());
    EXPECT_EQ(fresh.GetObjectName(), Q("DataOperationMode"));

    M m;
    EXPECT_EQ(Outline(m), "<null>[]");
    EXPECT_TRUE(m.IsInitialized());
    m.GetGuiComponentSettings();
    EXPECT_EQ(Outline(m), "<null>[]*");
    EXPECT_FALSE(m.AnyData() || m.HasData());

    // Neither the in-place change nor the list setter examines elements.
    m.SetValidate(true);
    m.GetGuiComponentSettings().append(G());
    EXPECT_EQ(Outline(m), "<null>[<null>]*");
    EXPECT_TRUE(m.AnyData());
    EXPECT_FALSE(m.HasData());
    m.ResetGuiComponentSettings();
    EXPECT_EQ(Outline(m), "<null>[]");
    m.SetGuiComponentSettings({G(), Component("A")});
    EXPECT_FALSE(as_const(m).GetGuiComponentSettings()[0].IsInitialized());
    EXPECT_EQ(Outline(m), "<null>[<null>,'A']*");

    // The name counts for HasData, the list only for AnyData.
    M unnamed = Mode(nullptr, {Component("A")});
    EXPECT_FALSE(unnamed.HasData());
    EXPECT_TRUE(unnamed.AnyData());
    M named = Mode("Standard", {Component("A")});
    named.ResetGuiComponentSettings();
    EXPECT_EQ(Outline(named), "'Standard'*[]");
    EXPECT_TRUE(named.HasData() && named.AnyData());
    named.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { named.SetName(QString()); }), ModeNameMessage);
    named.SetName(Q(""));
    EXPECT_TRUE(named.HasData());
}

TEST(DataOperationModeList, AppendRefusesElementsWithoutDataInValidationMode)
{
    G noName = Component("X");
    noName.ResetName();
    G noUsage = Component("X");
    noUsage.ResetGuiComponentUsage();
    G noDock = Component("X");
    noDock.ResetDockWidgetLocation();
    G nullName = Component("X");
    nullName.SetName(QString());

    M m;
    m.SetValidate(true);
    for (const G* incomplete : {&noName, &noUsage, &noDock, &nullName})
        EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { m.AppendGuiComponentSettings(*incomplete); }),
                  AppendComponentMessage);
    EXPECT_EQ(Outline(m), "<null>[]");
    m.AppendGuiComponentSettings(Component("Overview"));
    m.AppendGuiComponentSettings(Component("Details"));
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { m.AppendGuiComponentSettings(G()); }),
              AppendComponentMessage);
    EXPECT_EQ(Outline(m), "<null>['Overview','Details']*");

    // The list holds a copy made by the copy constructor: the element's own
    // flag, no logger, and no connection to the original afterwards.
    G source = Component("Log");
    source.SetValidate(true);
    source.SetLogger(std::make_shared<Logger>());
    M off;
    off.AppendGuiComponentSettings(source);
    source.SetName(Q("Changed"));
    const G& stored = as_const(off).GetGuiComponentSettings()[0];
    EXPECT_TRUE(stored.GetValidate());
    EXPECT_EQ(stored.GetLogger(), nullptr);
    off.GetGuiComponentSettings()[0].SetDockWidgetLocation(G::TopDockWidgetArea);
    EXPECT_EQ(source.GetDockWidgetLocation(), G::LeftDockWidgetArea);
    EXPECT_EQ(Outline(off), "<null>['Log']*");

    // Outside validation mode anything is appended.
    off.AppendGuiComponentSettings(G());
    off.AppendGuiComponentSettings(noDock);
    EXPECT_EQ(Outline(off), "<null>['Log',<null>,'X']*");
}

TEST(TorviGuiModeSettingsList, GettersSettersAndAppend)
{
    R fresh;
    fresh.ResetDataOperationMode();
    EXPECT_FALSE(fresh.IsInitialized());
    R r;
    EXPECT_EQ(Outline(r), "0{}");
    r.GetDataOperationMode();
    EXPECT_EQ(Outline(r), "0{}*");
    EXPECT_FALSE(r.AnyData());

    R v;
    v.SetValidate(true);
    const M nameless = Mode(nullptr, {Component("A")});
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { v.AppendDataOperationMode(nameless); }),
              AppendModeMessage);
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { v.AppendDataOperationMode(M()); }),
              AppendModeMessage);
    EXPECT_EQ(Outline(v), "0{}");
    v.AppendDataOperationMode(Mode("Standard"));
    v.SetDataOperationMode(QVector<M>{as_const(v).GetDataOperationMode()[0], nameless});
    v.GetDataOperationMode().append(M());
    EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { v.AppendDataOperationMode(nameless); }),
              AppendModeMessage);
    EXPECT_EQ(Outline(v), "0{'Standard'*[];<null>['A']*;<null>[]}*");

    // The handler alone decides HasData.
    EXPECT_FALSE(v.HasData());
    EXPECT_TRUE(v.AnyData());
    v.SetOperationModeHandler(R::TX470ManagementComponent);
    v.ResetDataOperationMode();
    EXPECT_EQ(Outline(v), "0*{}");
    EXPECT_TRUE(v.HasData());

    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { v.SetOperationModeHandler(R::OperationModeHandler(4)); }),
              Q("enum is not valid (classname=TorviGuiModeSettings,membername=m_operationModeHandler)"));
    EXPECT_EQ(Outline(v), "0*{}");

    R lax;
    lax.AppendDataOperationMode(M());
    EXPECT_EQ(Outline(lax), "0{<null>[]}*");
}

TEST(SettingsTreeDefaults, DefaultElementsAreOnlyStoredAndReturned)
{
    M m;
    EXPECT_FALSE(m.GetDefaultGuiComponentSettings().IsInitialized());
    G x = Component("Overview");
    x.SetValidate(true);
    m.SetDefaultGuiComponentSettings(x);
    EXPECT_TRUE(m.GetDefaultGuiComponentSettings() == x);
    EXPECT_FALSE(m.GetDefaultGuiComponentSettings().GetValidate());
    x.SetName(Q("Changed"));
    EXPECT_EQ(m.GetDefaultGuiComponentSettings().GetName(), Q("Overview"));

    m.SetName(Q("Standard"));
    m.AppendGuiComponentSettings(Component("A"));
    m.ResetToDefault();
    EXPECT_EQ(Outline(m), "<null>[]");
    m.SetDefaultName(Q("Standard"));
    m.ResetToDefault();
    EXPECT_EQ(Outline(m), "'Standard'*[]");

    // Neither compared nor checked, however invalid.
    G bad;
    bad.SetDockWidgetLocation(G::DockWidgetLocation(9));
    m.SetDefaultGuiComponentSettings(bad);
    EXPECT_NO_THROW(m.Check());
    EXPECT_TRUE(m == Mode("Standard"));

    R r;
    EXPECT_FALSE(r.GetDefaultDataOperationMode().IsInitialized());
    M defaultMode = Mode(nullptr, {bad});
    r.SetDefaultDataOperationMode(defaultMode);
    defaultMode.SetName(Q("Late"));
    EXPECT_EQ(Outline(r.GetDefaultDataOperationMode()), "<null>[<null>]*");
    r.AppendDataOperationMode(Mode("Standard"));
    r.ResetToDefault();
    EXPECT_EQ(Outline(r), "0*{}");
    EXPECT_NO_THROW(r.Check());
    R plain;
    plain.ResetToDefault();
    EXPECT_TRUE(r == plain);
}

TEST(SettingsTreeValue, EqualityComparesListsPairwiseInOrder)
{
    const G a = Component("A");
    const G b = Component("B", G::DEFAULT_DISPLAY);
    EXPECT_TRUE(Mode("Standard", {a, b}) == Mode("Standard", {a, b}));
    EXPECT_TRUE(Mode("Standard", {a, b}) != Mode("Standard", {b, a}));
    EXPECT_TRUE(Mode("Standard", {a, b}) != Mode("Standard", {a}));
    EXPECT_TRUE(Mode("Standard", {a, b}) != Mode("Service", {a, b}));
    EXPECT_TRUE(Mode("Standard", {a, b}) != Mode(nullptr, {a, b}));

    // A new mode equals an initialised empty one, whose list set flag does
    // not count, and is initialised by the comparison.
    M fresh;
    M touched;
    touched.GetGuiComponentSettings();
    EXPECT_TRUE(fresh == touched);
    EXPECT_TRUE(fresh.IsInitialized());
    M other;
    EXPECT_TRUE(M() == other);
    EXPECT_FALSE(other.IsInitialized());

    const R left = TwoModeTree();
    R right = TwoModeTree();
    EXPECT_TRUE(left == right);
    right.SetDataOperationMode({left.GetDataOperationMode()[1], left.GetDataOperationMode()[0]});
    EXPECT_TRUE(left != right);
    right = TwoModeTree();
    right.GetDataOperationMode()[0].GetGuiComponentSettings()[1].SetDockWidgetLocation(G::TopDockWidgetArea);
    EXPECT_TRUE(left != right);

    R handlerRead;
    handlerRead.GetOperationModeHandler();
    EXPECT_TRUE(Root(R::TX470ManagementComponent) != handlerRead);
    EXPECT_TRUE(R() == handlerRead);
}

TEST(SettingsTreeScenario, TypicalRequestBuiltInCode)
{
    R settings;
    settings.SetValidate(true);
    settings.SetOperationModeHandler(R::PMR830ManagementComponent);
    M standard;
    standard.SetName(Q("Standard"));
    standard.AppendGuiComponentSettings(Component("Overview", G::DEFAULT_DISPLAY, G::LeftDockWidgetArea));
    standard.AppendGuiComponentSettings(Component("Details", G::AVAILABLE, G::FloatingDockWidgetArea));
    settings.AppendDataOperationMode(standard);
    EXPECT_EQ(Outline(settings), "1*{'Standard'*['Overview','Details']*}*");
    EXPECT_NO_THROW(settings.Check());

    const QString xml = settings.GetXmlString();
    const int body = xml.indexOf(Q("?>"));
    ASSERT_GE(body, 0) << xml.toStdString();
    EXPECT_EQ(xml.mid(body + 2).trimmed(),
              Q("<TorviGuiModeSettings><DataOperationMode Name=\"Standard\"><GuiComponentSettings Name=\"Overview\">"
                "<GuiComponentUsage>DEFAULT_DISPLAY</GuiComponentUsage><DockWidgetLocation>LeftDockWidgetArea"
                "</DockWidgetLocation></GuiComponentSettings><GuiComponentSettings Name=\"Details\">"
                "<GuiComponentUsage>AVAILABLE</GuiComponentUsage><DockWidgetLocation>FloatingDockWidgetArea "
                "</DockWidgetLocation></GuiComponentSettings></DataOperationMode><OperationModeHandler>"
                "PMR830ManagementComponent</OperationModeHandler></TorviGuiModeSettings>"));
    R read;
    read.SetValidate(true);
    ASSERT_TRUE(read.SetXmlString(xml, true));
    EXPECT_TRUE(read == settings);

    QByteArray bytes = settings.GetBinaryRepresentationAsQByteArray();
    R fromBinary;
    fromBinary.SetValidate(true);
    ASSERT_TRUE(fromBinary.SetBinaryRepresentation(bytes));
    EXPECT_TRUE(fromBinary == settings);
}

TEST(SettingsTreeValidation, CheckWalksDepthFirstAndReportsTheFirstFailure)
{
    G noDock = Component("X");
    noDock.ResetDockWidgetLocation();
    G noName = Component("X");
    noName.ResetName();
    G bad;
    bad.SetGuiComponentUsage(G::GuiComponentUsage(5));
    M withBadDefault = Mode("", {Component("")});
    withBadDefault.SetDefaultGuiComponentSettings(bad);
    R touched = Root(0);
    touched.GetDataOperationMode();
    R badDefault = Root(0, {withBadDefault});
    badDefault.SetDefaultDataOperationMode(Mode(nullptr, {bad}));

    const std::vector<std::tuple<const char*, R, QString>> cases = {
        {"new root", R(), HandlerMessage},
        {"handler and no list", Root(0), Passes},
        {"handler and touched empty list", touched, Passes},
        {"handler out of range", Root(4), HandlerMessage},
        {"first mode unnamed, handler unset", Root(NoHandler, {Mode(nullptr), Mode("B")}), ModeNameMessage},
        {"second mode unnamed", Root(0, {Mode("A", {Component("X")}), Mode(nullptr)}), ModeNameMessage},
        {"component before its mode's name", Root(NoHandler, {Mode(nullptr, {noDock})}),
         Q("GuiComponentSettings: Please set DockWidgetLocation properly.")},
        {"last component of first mode before second mode",
         Root(0, {Mode("A", {Component("Y"), noName}), Mode(nullptr)}),
         Q("GuiComponentSettings: Please set Name properly.")},
        {"empty names and invalid default elements", badDefault, Passes},
    };
    for (const auto& [what, built, message] : cases) {
        for (const bool validate : {false, true}) {
            SCOPED_TRACE(std::string(what) + (validate ? ", validation on" : ", validation off"));
            const R root(built);
            root.SetValidate(validate);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.Check(); }), message);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.Check(false); }), message);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.Check(true); }), message);
            EXPECT_TRUE(root == built);
        }
    }
}

TEST(SettingsTreeHandDown, SetValidateAndSetLoggerReachEveryDepth)
{
    R root = TreeWithDefaults();
    const auto stray = std::make_shared<Logger>();
    Disturb(root, false, stray);

    root.SetValidate(true);
    ASSERT_EQ(Elements(root).size(), 5u);
    ExpectAll(Elements(root), true, stray);
    const auto logger = std::make_shared<Logger>();
    root.SetLogger(logger);
    ExpectAll(Elements(root), true, logger);
    ExpectAll(DefaultElements(root), false, nullptr);
    root.SetValidate(false);
    ExpectAll(Elements(root), false, logger);
}

TEST(SettingsTreeHandDown, ChecksAndProloguesReapplyTheRootsFlagAndLogger)
{
    const std::vector<std::pair<const char*, std::function<void(const R&)>>> triggers = {
        {"Check()", [](const R& r) { r.Check(); }},
        {"Check(true)", [](const R& r) { r.Check(true); }},
        {"GetXmlString", [](const R& r) { EXPECT_FALSE(r.GetXmlString().isEmpty()); }},
        {"GetBinaryRepresentationAsQByteArray",
         [](const R& r) { EXPECT_FALSE(r.GetBinaryRepresentationAsQByteArray().isEmpty()); }},
    };
    for (const auto& [what, trigger] : triggers) {
        for (const bool validate : {true, false}) {
            SCOPED_TRACE(std::string(what) + (validate ? ", validation on" : ", validation off"));
            R root = TreeWithDefaults();
            const auto logger = std::make_shared<Logger>();
            root.SetValidate(validate);
            root.SetLogger(logger);
            Disturb(root, !validate, std::make_shared<Logger>());
            trigger(root);
            ExpectAll(Elements(root), validate, logger);
            ExpectAll(DefaultElements(root), false, nullptr);
        }
    }
}

TEST(SettingsTreeHandDown, SetValidateOnRootWithoutRecordChangesOnlyTheRoot)
{
    R root;
    const auto logger = std::make_shared<Logger>();
    root.SetValidate(true);
    root.SetLogger(logger);
    EXPECT_FALSE(root.IsInitialized());
    root.AppendDataOperationMode(Mode("Standard", {Component("A")}));
    ExpectAll(Elements(root), false, nullptr);
    root.SetOperationModeHandler(R::TX470ManagementComponent);
    root.Check();
    ExpectAll(Elements(root), true, logger);
}

TEST(SettingsTreeValue, CopyingTheRootCopiesTheWholeSubtree)
{
    R original = TwoModeTree();
    R copy(original);
    EXPECT_TRUE(copy == original);
    copy.GetDataOperationMode()[0].GetGuiComponentSettings()[1].SetName(Q("Changed"));
    copy.GetDataOperationMode()[1].SetName(Q("Renamed"));
    copy.GetDataOperationMode()[0].GetGuiComponentSettings().append(Component("Extra"));
    EXPECT_EQ(Outline(copy), "1*{'Standard'*['Overview','Changed','Extra']*;'Renamed'*['Log']*}*");
    EXPECT_EQ(Outline(original), TwoModeOutline);
    EXPECT_TRUE(original == TwoModeTree());

    R copy2(original);
    original.GetDataOperationMode()[0].GetGuiComponentSettings()[0].SetGuiComponentUsage(G::AVAILABLE);
    original.AppendDataOperationMode(Mode("Third"));
    EXPECT_TRUE(copy2 == TwoModeTree());
}

TEST(SettingsTreeValue, AssignmentSharesThenDetachesAtEveryDepth)
{
    R source = TwoModeTree();
    const auto sourceLogger = std::make_shared<Logger>();
    R target;
    const auto targetLogger = std::make_shared<Logger>();
    target.SetValidate(true);
    target.SetLogger(targetLogger);

    target = source;
    EXPECT_TRUE(target == source);
    EXPECT_TRUE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), targetLogger);
    target.GetDataOperationMode()[0].GetGuiComponentSettings()[0].SetName(Q("T"));
    EXPECT_EQ(Outline(source), TwoModeOutline);
    target = source;
    source.GetDataOperationMode()[1].SetName(Q("S"));
    EXPECT_EQ(Outline(target), TwoModeOutline);

    // A const operation on the target hands its flag and logger down its own
    // tree only.
    source.SetLogger(sourceLogger);
    target = source;
    as_const(target).Check();
    ExpectAll(Elements(target), true, targetLogger);
    ExpectAll(Elements(source), false, sourceLogger);

    const R empty;
    target = empty;
    EXPECT_FALSE(target.IsInitialized());
    EXPECT_TRUE(target.GetValidate());
}

TEST(SettingsTreeValue, CopyConstructorCarriesTheFlagDownButNoLogger)
{
    R source = TwoModeTree();
    const auto logger = std::make_shared<Logger>();
    source.SetValidate(true);
    source.SetLogger(logger);
    source.GetDataOperationMode()[1].SetValidate(false);
    source.GetDataOperationMode()[0].GetGuiComponentSettings()[0].SetValidate(false);

    const R copy(source);
    EXPECT_TRUE(copy.GetValidate());
    EXPECT_EQ(copy.GetLogger(), nullptr);
    ExpectAll(Elements(copy), true, nullptr);
    EXPECT_FALSE(as_const(source).GetDataOperationMode()[1].GetValidate());
    EXPECT_EQ(as_const(source).GetDataOperationMode()[1].GetLogger(), logger);

    source.SetValidate(false);
    source.GetDataOperationMode()[0].SetValidate(true);
    ExpectAll(Elements(R(source)), false, nullptr);
}

// Check() looks at a list only while it is marked set. A list that holds
// elements without being marked set (filled through a reference kept from
// the non-const getter after the list was reset) is not checked by its
// owner, so each of its elements still runs its own write prologue: in
// validation mode an incomplete one stops the write with its own message,
// and a complete one is written.
TEST(SettingsTreeValidation, ElementsOfAnUnsetListAreCheckedWhenWritten)
{
    // Both lists end up holding one element each while marked unset.
    const auto build = [](const G& component) {
        R root = Root(0);
        QVector<M>& modes = root.GetDataOperationMode();
        root.ResetDataOperationMode();
        M mode = Mode("M");
        QVector<G>& components = mode.GetGuiComponentSettings();
        mode.ResetGuiComponentSettings();
        components.append(component);
        modes.append(mode);
        root.SetValidate(true);
        return root;
    };

    G unnamed = Component("X");
    unnamed.ResetName();
    const R incomplete = build(unnamed);
    ASSERT_FALSE(incomplete.IsDataOperationModeSet());
    ASSERT_FALSE(incomplete.GetDataOperationMode()[0].IsGuiComponentSettingsSet());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.Check(); }), Passes);
    const QString componentMessage = Q("GuiComponentSettings: Please set Name properly.");
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetXmlString(); }), componentMessage);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetBinaryRepresentationAsQByteArray(); }),
              componentMessage);

    const R complete = build(Component("X"));
    EXPECT_EQ(complete.GetXmlString(),
              Q("<?xml version=\"1.0\" encoding=\"UTF-8\"?><TorviGuiModeSettings><DataOperationMode Name=\"M\">"
                "<GuiComponentSettings Name=\"X\"><GuiComponentUsage>AVAILABLE</GuiComponentUsage>"
                "<DockWidgetLocation>LeftDockWidgetArea</DockWidgetLocation></GuiComponentSettings>"
                "</DataOperationMode><OperationModeHandler>TX470ManagementComponent</OperationModeHandler>"
                "</TorviGuiModeSettings>\n"));
    EXPECT_EQ(complete.GetBinaryRepresentationAsQByteArray().size(), 153);
}

// Taking a private copy of a shared record is invisible: the elements of
// both lists keep the flags and loggers they had, whichever object is used
// first. A list handed to the setter arrives as it was, loggers included,
// and stays independent of the caller's.
TEST(SettingsTreeValue, PrivateCopiesOfASharedRecordKeepEveryElementsLogger)
{
    const auto logger = std::make_shared<Logger>();
    R source = TwoModeTree();
    source.SetLogger(logger);
    R target;
    target = source;
    EXPECT_TRUE(as_const(source).IsOperationModeHandlerSet()); // the source detaches first
    ExpectAll(Elements(source), false, logger);
    ExpectAll(Elements(target), false, logger);
    EXPECT_EQ(target.GetLogger(), nullptr);

    M mode = Mode("M", {Component("A")});
    mode.SetLogger(logger);
    M other;
    other = mode;
    EXPECT_EQ(as_const(other).GetGuiComponentSettings()[0].GetLogger(), logger);
    EXPECT_EQ(as_const(mode).GetGuiComponentSettings()[0].GetLogger(), logger);

    const auto own = std::make_shared<Logger>();
    QVector<M> modes(1);
    modes[0].SetName(Q("Own"));
    modes[0].SetValidate(true);
    modes[0].SetLogger(own);
    R root;
    root.SetDataOperationMode(modes);
    EXPECT_EQ(as_const(root).GetDataOperationMode()[0].GetLogger(), own);
    EXPECT_TRUE(as_const(root).GetDataOperationMode()[0].GetValidate());
    root.GetDataOperationMode()[0].SetName(Q("Changed"));
    EXPECT_EQ(modes[0].GetName(), Q("Own"));
}

TEST(TorviGuiModeSettingsHandler, AccessorsDefaultsConversionsAndFailures)
{
    R fresh;
    EXPECT_EQ(fresh.GetOperationModeHandlerAsString(), Q("TX470ManagementComponent"));
    EXPECT_TRUE(fresh.IsInitialized());
    EXPECT_FALSE(fresh.IsOperationModeHandlerSet());
    EXPECT_FALSE(fresh.HasData());
    EXPECT_EQ(fresh.GetInvalidOperationModeHandler(), -1);
    EXPECT_EQ(fresh.GetDefaultOperationModeHandler(), 0);
    EXPECT_TRUE(fresh.OperationModeHandlerToName(R::OperationModeHandler(4)).isNull());
    EXPECT_TRUE(fresh.OperationModeHandlerToName(R::OperationModeHandler(-1)).isNull());
    EXPECT_EQ(fresh.OperationModeHandlerToName(R::VbkManagementComponent), Q("VbkManagementComponent"));
    EXPECT_EQ(fresh.NameToOperationModeHandler(Q("QLSManagementComponent")), R::QLSManagementComponent);
    EXPECT_EQ(fresh.NameToOperationModeHandler(Q("qlsmanagementcomponent")), -1);
    EXPECT_EQ(fresh.NameToOperationModeHandler(Q("QLSManagementComponent ")), -1);
    fresh.SetInvalidOperationModeHandler(R::OperationModeHandler(42));
    EXPECT_EQ(fresh.NameToOperationModeHandler(QString()), 42);
    EXPECT_FALSE(fresh.IsValidOperationModeHandler(R::OperationModeHandler(42)));
    EXPECT_EQ(R::GetOperationModeHandlers(),
              QStringList({Q("TX470ManagementComponent"), Q("PMR830ManagementComponent"),
                           Q("QLSManagementComponent"), Q("VbkManagementComponent")}));

    R validated;
    validated.SetValidate(true);
    for (int bad : {-1, 4}) {
        EXPECT_EQ(MessageOf<OutOfRangeException>(
                      [&] { validated.SetOperationModeHandler(R::OperationModeHandler(bad)); }),
                  kHandlerInvalid);
        EXPECT_FALSE(validated.IsOperationModeHandlerSet());
        EXPECT_EQ(validated.GetOperationModeHandler(), 0);
    }
    validated.SetOperationModeHandler(R::VbkManagementComponent);
    EXPECT_TRUE(validated.IsOperationModeHandlerSet());
    EXPECT_EQ(validated.GetOperationModeHandlerAsString(), Q("VbkManagementComponent"));

    R lax;
    lax.SetOperationModeHandler(R::OperationModeHandler(4));
    EXPECT_TRUE(lax.IsOperationModeHandlerSet());
    EXPECT_TRUE(lax.HasData());
    EXPECT_TRUE(lax.GetOperationModeHandlerAsString().isNull());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { lax.Check(); }), HandlerMessage);

    R withDefault = TwoModeTree();
    withDefault.SetDefaultOperationModeHandler(R::QLSManagementComponent);
    withDefault.ResetToDefault();
    EXPECT_EQ(Outline(withDefault), "2*{}");
    withDefault.SetDefaultOperationModeHandler(R::OperationModeHandler(7));
    withDefault.ResetToDefault();
    EXPECT_EQ(Outline(withDefault), "7{}");
}

TEST(SettingsTreeIdentity, ClassIdsNamesTypesAndExceptionClasses)
{
    EXPECT_EQ(M::id, -447125075);
    EXPECT_EQ(M::GetId(), -447125075);
    EXPECT_EQ(R::id, 232099450);
    EXPECT_EQ(R::GetId(), 232099450);
    const M mode = Mode("M");
    const R root = Root(0, {mode});
    EXPECT_EQ(M(mode).GetObjectName(), Q("DataOperationMode"));
    EXPECT_EQ(R(root).GetObjectName(), Q("TorviGuiModeSettings"));
    // A copy keeps the class id, with which its whole documents start.
    EXPECT_EQ(M(mode).GetBinaryRepresentationAsQByteArray().left(4), Int(kModeId));
    EXPECT_EQ(R(root).GetBinaryRepresentationAsQByteArray().left(4), Int(kRootId));
    EXPECT_EQ(G(Component("C")).GetBinaryRepresentationAsQByteArray().left(4), Int(kComponentId));

    M typedMode;
    R typedRoot;
    const auto before = typedMode.GetObjectType();
    typedMode.SetObjectType(REPORTGENERATOR::ReportObject);
    typedRoot.SetObjectType(REPORTGENERATOR::ContainerObject);
    EXPECT_EQ(typedMode.GetObjectType(), before);
    EXPECT_EQ(typedRoot.GetObjectType(), R().GetObjectType());

    M incomplete;
    R validated;
    validated.SetValidate(true);
    const Catches append = CatchesOf([&] { validated.AppendDataOperationMode(incomplete); });
    EXPECT_FALSE(append.asStdException);
    EXPECT_EQ(append.asReportException, AppendModeMessage);
    EXPECT_EQ(append.asRGExceptionByValue, AppendModeMessage);
    EXPECT_FALSE(validated.IsDataOperationModeSet());
}

// The description of the classes that tools read: every member with its
// kind, bit, XML form, binary member id, write order and names, as the
// stored forms show them.
TEST(SettingsTreeIdentity, SettingsClassesDescribeEveryMember)
{
    const auto line = [](const TORVIXML::ClassDescription& cls) {
        static const char* const kinds[] = {"enum", "string", "list"};
        static const char* const forms[] = {"attribute", "text element", "child elements"};
        QString text = cls.name + QStringLiteral(" %1:").arg(cls.id);
        for (const TORVIXML::MemberDescription& m : cls.members) {
            text += QStringLiteral(" %1 %2 bit %3, %4, id %5, written %6")
                        .arg(m.name, QLatin1String(kinds[m.kind]))
                        .arg(m.bit)
                        .arg(QLatin1String(forms[m.xmlForm]))
                        .arg(m.binaryId)
                        .arg(m.writeOrder);
            if (!m.enumerationNames.isEmpty())
                text += QStringLiteral(" [") + m.enumerationNames.join(QLatin1Char('|')) + QLatin1Char(']');
            text += QLatin1Char(';');
        }
        return text;
    };
    const QVector<TORVIXML::ClassDescription> classes = TORVIXML::SettingsClasses();
    ASSERT_EQ(classes.size(), 3);
    EXPECT_EQ(line(classes[0]),
              QStringLiteral("TorviGuiModeSettings %1: DataOperationMode list bit 0, child elements, id %2, written 0;"
                             " OperationModeHandler enum bit 1, text element, id %3, written 1 [TX470ManagementComponent"
                             "|PMR830ManagementComponent|QLSManagementComponent|VbkManagementComponent];")
                  .arg(kRootId)
                  .arg(kModeListId)
                  .arg(kHandlerId));
    EXPECT_EQ(line(classes[1]),
              QStringLiteral("DataOperationMode %1: GuiComponentSettings list bit 0, child elements, id %2, written 1;"
                             " Name string bit 1, attribute, id %3, written 0;")
                  .arg(kModeId)
                  .arg(kComponentListId)
                  .arg(kNameId));
    EXPECT_EQ(line(classes[2]),
              QStringLiteral("GuiComponentSettings %1: GuiComponentUsage enum bit 0, text element, id %2, written 1"
                             " [AVAILABLE|DEFAULT_DISPLAY]; DockWidgetLocation enum bit 1, text element, id %3, written 2"
                             " [LeftDockWidgetArea|RightDockWidgetArea|TopDockWidgetArea|BottomDockWidgetArea"
                             "|CenterDockWidgetArea|FloatingDockWidgetArea |NoDockWidgetArea]; Name string bit 2,"
                             " attribute, id %4, written 0;")
                  .arg(kComponentId)
                  .arg(kUsageId)
                  .arg(kLocationId)
                  .arg(kNameId));
}

// Moving hands the whole object over, flag and logger included, and leaves
// the source as a new object of its class; move assignment keeps the
// target's flag and logger like the copy assignment.
TEST(SettingsTreeValue, MovesHandOverTheWholeObject)
{
    const auto logger = std::make_shared<Logger>();
    R source = TwoModeTree();
    source.SetValidate(true);
    source.SetLogger(logger);
    R moved(std::move(source));
    EXPECT_EQ(Outline(moved), TwoModeOutline);
    EXPECT_TRUE(moved.GetValidate());
    EXPECT_EQ(moved.GetLogger(), logger);
    ExpectAll(Elements(moved), true, logger);
    EXPECT_FALSE(source.IsInitialized());
    EXPECT_EQ(source.GetObjectName(), Q("TorviGuiModeSettings"));
    source.SetOperationModeHandler(R::QLSManagementComponent);
    EXPECT_EQ(Outline(source), "2*{}");

    R target;
    target = std::move(moved);
    EXPECT_EQ(Outline(target), TwoModeOutline);
    EXPECT_FALSE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), nullptr);
}
