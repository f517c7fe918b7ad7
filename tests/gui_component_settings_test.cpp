// GuiComponentSettings as a value: lifecycle, the accessor families of its
// three members, defaults and invalid values, comparison, copy and
// assignment, the enumeration conversions and its failures.

#include <TorviXML/TorviXML.h>

#include <gtest/gtest.h>

#include "TestSupport.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <utility>
#include <vector>

using REPORTGENERATOR::Logger;
using TORVIXML::TorviGuiModeSettings;
using G = TORVIXML::GuiComponentSettings;
using namespace TestSupport;


namespace {



// "usage|dock|name", each followed by '*' when the member is set; a null
// name shows as <null>, any other in quotes.
std::string Members(const G& s)
{
    const auto mark = [](bool set) { return set ? "*" : ""; };
    const QString name = s.GetName();
    return std::to_string(s.GetGuiComponentUsage()) + mark(s.IsGuiComponentUsageSet()) + "|"
        + std::to_string(s.GetDockWidgetLocation()) + mark(s.IsDockWidgetLocationSet()) + "|"
        + (name.isNull() ? "<null>" : "'" + name.toStdString() + "'") + mark(s.IsNameSet());
}

// "default usage|default dock|default name|invalid usage|invalid dock".
std::string Extras(const G& s)
{
    const QString name = s.GetDefaultName();
    return std::to_string(s.GetDefaultGuiComponentUsage()) + "|" + std::to_string(s.GetDefaultDockWidgetLocation())
        + "|" + (name.isNull() ? "<null>" : name.toStdString()) + "|"
        + std::to_string(s.GetInvalidGuiComponentUsage()) + "|" + std::to_string(s.GetInvalidDockWidgetLocation());
}

class ClassIdProbe : public G
{
public:
    ClassIdProbe() = default;
    explicit ClassIdProbe(const G& other) : G(other) {}
    qint64 StoredClassId() const { return m_classId; }
};

G Complete(const char* name, G::GuiComponentUsage usage, G::DockWidgetLocation dock)
{
    G s;
    s.SetName(Q(name));
    s.SetGuiComponentUsage(usage);
    s.SetDockWidgetLocation(dock);
    return s;
}

const QString UsageMessage = Q("enum is not valid (classname=GuiComponentSettings,membername=m_guiComponentUsage)");
const QString DockMessage = Q("enum is not valid (classname=GuiComponentSettings,membername=m_dockWidgetLocation)");
const QString NameMessage = Q("GuiComponentSettings: Please set Name properly.");

} // namespace

TEST(GuiComponentSettingsLifecycle, NewObjectStaysUninitialisedThroughTestsAndResets)
{
    G s;
    EXPECT_EQ(s.GetObjectName(), Q("GuiComponentSettings"));
    EXPECT_EQ(G::GetId(), -1436546027);
    EXPECT_EQ(G::id, -1436546027);
    EXPECT_EQ(ClassIdProbe().StoredClassId(), -1436546027);
    s.Reset();
    s.ResetGuiComponentUsage();
    s.ResetDockWidgetLocation();
    s.ResetName();
    EXPECT_FALSE(s.IsValidName(QString()));
    EXPECT_TRUE(s.IsValidName(Q("")));
    EXPECT_FALSE(s.HasData() || s.AnyData() || s.IsGuiComponentUsageSet() || s.IsDockWidgetLocationSet()
                 || s.IsNameSet());
    // A known name is found in the table without touching the object.
    EXPECT_EQ(s.NameToDockWidgetLocation(Q("TopDockWidgetArea")), G::TopDockWidgetArea);
    EXPECT_FALSE(s.IsInitialized());
}

TEST(GuiComponentSettingsLifecycle, EveryReadInitialisesWithoutMarkingAnythingSet)
{
    const std::vector<std::pair<const char*, std::function<void(const G&)>>> reads = {
        {"GetGuiComponentUsage", [](const G& s) { s.GetGuiComponentUsage(); }},
        {"IsValidGuiComponentUsage", [](const G& s) { s.IsValidGuiComponentUsage(G::AVAILABLE); }},
        {"GetGuiComponentUsageAsString", [](const G& s) { s.GetGuiComponentUsageAsString(); }},
        {"GetDefaultDockWidgetLocation", [](const G& s) { s.GetDefaultDockWidgetLocation(); }},
        {"DockWidgetLocationToName", [](const G& s) { s.DockWidgetLocationToName(G::TopDockWidgetArea); }},
        {"NameToDockWidgetLocation(unknown)", [](const G& s) { s.NameToDockWidgetLocation(Q("x")); }},
        {"GetName", [](const G& s) { s.GetName(); }},
    };
    for (const auto& [what, read] : reads) {
        SCOPED_TRACE(what);
        G s;
        read(s);
        EXPECT_TRUE(s.IsInitialized());
        EXPECT_FALSE(s.HasData() || s.AnyData());
        EXPECT_EQ(Members(s), "0|6|<null>");
        EXPECT_EQ(Extras(s), "0|6|<null>|-1|-1");
        EXPECT_EQ(s.GetGuiComponentUsageAsString(), Q("AVAILABLE"));
        EXPECT_EQ(s.GetDockWidgetLocationAsString(), Q("NoDockWidgetArea"));
    }
}

TEST(GuiComponentSettingsAccessors, EnumerationMembers)
{
    G s;
    s.SetGuiComponentUsage(G::DEFAULT_DISPLAY);
    s.SetDockWidgetLocation(G::FloatingDockWidgetArea);
    EXPECT_EQ(Members(s), "1*|5*|<null>");
    EXPECT_EQ(s.GetGuiComponentUsageAsString(), Q("DEFAULT_DISPLAY"));
    EXPECT_EQ(s.GetDockWidgetLocationAsString(), Q("FloatingDockWidgetArea "));
    EXPECT_TRUE(s.AnyData());
    EXPECT_FALSE(s.HasData());

    // New defaults change neither value nor flag; the member resets use them.
    s.SetDefaultGuiComponentUsage(G::DEFAULT_DISPLAY);
    s.SetDefaultDockWidgetLocation(G::TopDockWidgetArea);
    s.SetInvalidGuiComponentUsage(G::GuiComponentUsage(5));
    s.SetInvalidDockWidgetLocation(G::DockWidgetLocation(42));
    EXPECT_EQ(Members(s), "1*|5*|<null>");
    EXPECT_EQ(Extras(s), "1|2|<null>|5|42");
    s.ResetGuiComponentUsage();
    s.ResetDockWidgetLocation();
    EXPECT_EQ(Members(s), "1|2|<null>");
    EXPECT_FALSE(s.AnyData());

    EXPECT_FALSE(s.IsValidGuiComponentUsage(G::GuiComponentUsage(5))
                 || s.IsValidGuiComponentUsage(G::GuiComponentUsage(-1))
                 || s.IsValidDockWidgetLocation(G::DockWidgetLocation(7)));
    EXPECT_TRUE(s.IsValidGuiComponentUsage(G::DEFAULT_DISPLAY) && s.IsValidDockWidgetLocation(G::NoDockWidgetArea));

    // Outside validation mode anything is stored and marked set.
    s.SetGuiComponentUsage(G::GuiComponentUsage(2));
    s.SetDockWidgetLocation(G::DockWidgetLocation(-1));
    EXPECT_EQ(Members(s), "2*|-1*|<null>");
    EXPECT_TRUE(s.GetGuiComponentUsageAsString().isNull());
    EXPECT_TRUE(s.GetDockWidgetLocationAsString().isNull());

    // In validation mode the value is refused and nothing changes.
    s.SetGuiComponentUsage(G::AVAILABLE);
    s.SetDockWidgetLocation(G::RightDockWidgetArea);
    s.SetValidate(true);
    for (const int v : {-1, 2})
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { s.SetGuiComponentUsage(G::GuiComponentUsage(v)); }),
                  UsageMessage);
    for (const int v : {-1, 7})
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { s.SetDockWidgetLocation(G::DockWidgetLocation(v)); }),
                  DockMessage);
    EXPECT_EQ(Members(s), "0*|1*|<null>");

    G fresh;
    fresh.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { fresh.SetDockWidgetLocation(G::DockWidgetLocation(7)); }),
              DockMessage);
    EXPECT_TRUE(fresh.IsInitialized());
    EXPECT_EQ(Members(fresh), "0|6|<null>");
}

TEST(GuiComponentSettingsAccessors, NameMember)
{
    G s;
    s.SetDefaultName(Q("Fallback"));
    s.SetName(Q("Overview"));
    EXPECT_EQ(Members(s), "0|6|'Overview'*");
    EXPECT_TRUE(s.AnyData());
    // A reset name becomes null, not the default.
    s.ResetName();
    EXPECT_EQ(Members(s), "0|6|<null>");
    EXPECT_EQ(s.GetDefaultName(), Q("Fallback"));

    s.SetValidate(true);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { s.SetName(QString()); }), NameMessage);
    EXPECT_EQ(Members(s), "0|6|<null>");
    s.SetName(Q("Kept"));
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { s.SetName(QString()); }), NameMessage);
    EXPECT_EQ(Members(s), "0|6|'Kept'*");
    s.SetName(Q(""));
    EXPECT_EQ(Members(s), "0|6|''*");

    // Outside validation mode a null name is stored and marked set, but is no data.
    G off = Complete("x", G::AVAILABLE, G::LeftDockWidgetArea);
    EXPECT_TRUE(off.HasData());
    off.SetName(QString());
    EXPECT_EQ(Members(off), "0*|0*|<null>*");
    EXPECT_FALSE(off.HasData());
}

TEST(GuiComponentSettingsLifecycle, ResetAndResetToDefault)
{
    // Reset clears the flags and restores the current defaults, which survive.
    G s = Complete("Overview", G::AVAILABLE, G::LeftDockWidgetArea);
    s.SetDefaultGuiComponentUsage(G::DEFAULT_DISPLAY);
    s.SetInvalidDockWidgetLocation(G::DockWidgetLocation(9));
    s.Reset();
    EXPECT_TRUE(s.IsInitialized());
    EXPECT_EQ(Members(s), "1|6|<null>");
    EXPECT_EQ(Extras(s), "1|6|<null>|-1|9");

    G r;
    r.ResetToDefault();
    EXPECT_EQ(Members(r), "0*|6*|<null>");
    EXPECT_FALSE(r.HasData());
    EXPECT_TRUE(r.AnyData());
    r.SetName(Q("Overview"));
    EXPECT_TRUE(r.HasData());

    r.SetDefaultName(Q("Fallback"));
    r.SetDefaultDockWidgetLocation(G::TopDockWidgetArea);
    r.ResetToDefault();
    EXPECT_EQ(Members(r), "0*|2*|'Fallback'*");
    r.SetDefaultName(QString());
    r.ResetToDefault();
    EXPECT_EQ(Members(r), "0*|2*|<null>");

    // Out-of-range defaults are skipped silently even in validation mode and
    // leave the member unset, holding the default.
    G v;
    v.SetValidate(true);
    v.SetName(Q("Overview"));
    v.SetDefaultGuiComponentUsage(G::GuiComponentUsage(2));
    v.SetDefaultDockWidgetLocation(G::DockWidgetLocation(-1));
    EXPECT_NO_THROW(v.ResetToDefault());
    EXPECT_EQ(Members(v), "2|-1|<null>");
    EXPECT_FALSE(v.AnyData());
}

TEST(GuiComponentSettingsValue, EqualityByTheScalarRule)
{
    G a;
    G b;
    EXPECT_TRUE(a == b);
    b.GetName();
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_FALSE(a.IsInitialized());

    // Set versus unset with the same value.
    b.SetGuiComponentUsage(G::AVAILABLE);
    EXPECT_EQ(a.GetGuiComponentUsage(), b.GetGuiComponentUsage());
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(b == a);

    G x = Complete("Overview", G::AVAILABLE, G::LeftDockWidgetArea);
    G y = Complete("Overview", G::AVAILABLE, G::RightDockWidgetArea);
    EXPECT_FALSE(x == y);
    y.SetDockWidgetLocation(G::LeftDockWidgetArea);
    EXPECT_TRUE(x == y);
    y.SetName(Q("overview"));
    EXPECT_FALSE(x == y);
    y.SetName(Q("Overview"));

    // Unset values, defaults, invalid values, flags and loggers do not count.
    x.ResetGuiComponentUsage();
    y.SetDefaultGuiComponentUsage(G::DEFAULT_DISPLAY);
    y.ResetGuiComponentUsage();
    y.SetInvalidDockWidgetLocation(G::DockWidgetLocation(3));
    y.SetValidate(true);
    y.SetLogger(std::make_shared<Logger>());
    EXPECT_TRUE(x == y);

    // Null and empty names are equal strings.
    G nullName;
    G emptyName;
    nullName.SetName(QString());
    emptyName.SetName(Q(""));
    EXPECT_TRUE(nullName == emptyName);
}

TEST(GuiComponentSettingsValue, CopyConstructorTakesFlagAndTypeButNotLogger)
{
    G source = Complete("Overview", G::DEFAULT_DISPLAY, G::LeftDockWidgetArea);
    source.SetDefaultName(Q("Fallback"));
    source.SetValidate(true);
    source.SetLogger(std::make_shared<Logger>());
    source.REPORTGENERATOR::IRGObject::SetObjectType(REPORTGENERATOR::ContainerObject);

    ClassIdProbe copy(source);
    EXPECT_TRUE(copy == source);
    EXPECT_EQ(Extras(copy), "0|6|Fallback|-1|-1");
    EXPECT_TRUE(copy.GetValidate());
    EXPECT_EQ(copy.GetLogger(), nullptr);
    EXPECT_EQ(copy.GetObjectType(), REPORTGENERATOR::ContainerObject);
    EXPECT_EQ(copy.GetObjectName(), Q("GuiComponentSettings"));
    EXPECT_EQ(copy.StoredClassId(), -1436546027);

    copy.SetName(Q("Changed"));
    source.SetGuiComponentUsage(G::AVAILABLE);
    EXPECT_EQ(Members(source), "0*|0*|'Overview'*");
    EXPECT_EQ(Members(copy), "1*|0*|'Changed'*");

    // SetObjectType does nothing on a settings object.
    copy.SetObjectType(REPORTGENERATOR::ReportObject);
    EXPECT_EQ(copy.GetObjectType(), REPORTGENERATOR::ContainerObject);
    G plain;
    plain.SetObjectType(REPORTGENERATOR::SettingsObject);
    EXPECT_EQ(plain.GetObjectType(), REPORTGENERATOR::UndefinedObject);
    EXPECT_FALSE(G(plain).IsInitialized());
}

TEST(GuiComponentSettingsValue, AssignmentSharesDataOnlyAndSharingNeverShows)
{
    G source = Complete("Overview", G::DEFAULT_DISPLAY, G::LeftDockWidgetArea);
    source.SetInvalidGuiComponentUsage(G::GuiComponentUsage(8));
    const auto targetLogger = std::make_shared<Logger>();
    G target;
    target.SetValidate(true);
    target.SetLogger(targetLogger);
    target.SetDefaultName(Q("Old"));

    target = source;
    EXPECT_TRUE(target == source);
    EXPECT_EQ(Extras(target), "0|6|<null>|8|-1");
    EXPECT_TRUE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), targetLogger);
    EXPECT_FALSE(source.GetValidate());
    EXPECT_EQ(source.GetLogger(), nullptr);

    // A change on either side after sharing stays on that side.
    source.SetName(Q("Source"));
    EXPECT_EQ(Members(target), "1*|0*|'Overview'*");
    target = source;
    target.SetDockWidgetLocation(G::CenterDockWidgetArea);
    target.SetDefaultName(Q("Mine"));
    EXPECT_EQ(Members(source), "1*|0*|'Source'*");
    EXPECT_TRUE(source.GetDefaultName().isNull());
    target = source;
    target.Reset();
    EXPECT_TRUE(source.HasData());

    // The target's own flag rules what it accepts afterwards.
    target = source;
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { target.SetName(QString()); }), NameMessage);
    source.SetName(QString());
    EXPECT_EQ(Members(target), "1*|0*|'Source'*");

    // Assigning an object that is not initialised de-initialises the target.
    const G empty;
    target = empty;
    EXPECT_FALSE(target.IsInitialized());
    EXPECT_TRUE(target.GetValidate());
}

TEST(GuiComponentSettingsValue, AssignmentFromTemporaryKeepsTargetsFlagAndLogger)
{
    const auto logger = std::make_shared<Logger>();
    G target;
    target.SetValidate(true);
    target.SetLogger(logger);
    target = Complete("Overview", G::AVAILABLE, G::TopDockWidgetArea);
    EXPECT_EQ(Members(target), "0*|2*|'Overview'*");
    EXPECT_TRUE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), logger);
    target = G();
    EXPECT_FALSE(target.IsInitialized());
    EXPECT_TRUE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), logger);
}

TEST(GuiComponentSettingsEnumerations, ConversionsBetweenValuesAndNames)
{
    G s;
    EXPECT_EQ(s.NameToDockWidgetLocation(Q("FloatingDockWidgetArea ")), G::FloatingDockWidgetArea);
    for (const char* unknown : {"FloatingDockWidgetArea", " LeftDockWidgetArea", "nodockwidgetarea"})
        EXPECT_EQ(s.NameToDockWidgetLocation(Q(unknown)), -1) << unknown;
    EXPECT_EQ(s.NameToGuiComponentUsage(Q("available")), -1);
    EXPECT_EQ(s.NameToGuiComponentUsage(Q("")), -1);
    EXPECT_EQ(s.NameToGuiComponentUsage(QString()), -1);
    EXPECT_EQ(s.DockWidgetLocationToName(G::FloatingDockWidgetArea).size(), 23);
    EXPECT_EQ(s.GuiComponentUsageToName(G::DEFAULT_DISPLAY), Q("DEFAULT_DISPLAY"));
    EXPECT_TRUE(s.DockWidgetLocationToName(G::DockWidgetLocation(7)).isNull());
    EXPECT_TRUE(s.GuiComponentUsageToName(G::GuiComponentUsage(-1)).isNull());

    // The unknown-name answer is the object's own invalid value.
    s.SetInvalidGuiComponentUsage(G::GuiComponentUsage(7));
    EXPECT_EQ(s.NameToGuiComponentUsage(Q("available")), 7);
    EXPECT_EQ(s.NameToGuiComponentUsage(Q("DEFAULT_DISPLAY")), G::DEFAULT_DISPLAY);
    EXPECT_EQ(G().NameToGuiComponentUsage(Q("available")), -1);
}

TEST(GuiComponentSettingsEnumerations, NameAndDisplayListsWithoutTranslator)
{
    const QStringList usages = {Q("AVAILABLE"), Q("DEFAULT_DISPLAY")};
    const QStringList docks = {Q("LeftDockWidgetArea"),   Q("RightDockWidgetArea"),     Q("TopDockWidgetArea"),
                               Q("BottomDockWidgetArea"), Q("CenterDockWidgetArea"),    Q("FloatingDockWidgetArea "),
                               Q("NoDockWidgetArea")};
    const QStringList handlers = {Q("TX470ManagementComponent"), Q("PMR830ManagementComponent"),
                                  Q("QLSManagementComponent"), Q("VbkManagementComponent")};
    EXPECT_EQ(G::GetGuiComponentUsages(), usages);
    EXPECT_EQ(G::GetDockWidgetLocations(), docks);
    EXPECT_EQ(TorviGuiModeSettings::GetOperationModeHandlers(), handlers);
    EXPECT_EQ(G::GetGUIGuiComponentUsages(), usages);
    EXPECT_EQ(G::GetGUIDockWidgetLocations(), docks);
    EXPECT_EQ(TorviGuiModeSettings::GetGUIOperationModeHandlers(), handlers);

    // Changing a returned list leaves the table alone.
    QStringList changed = G::GetDockWidgetLocations();
    changed[5] = Q("Floating");
    EXPECT_EQ(G::GetDockWidgetLocations(), docks);
}

TEST(GuiComponentSettingsValidation, CheckReportsTheFirstIncompleteMember)
{
    const QString usage = Q("GuiComponentSettings: Please set GuiComponentUsage properly.");
    const QString dock = Q("GuiComponentSettings: Please set DockWidgetLocation properly.");
    for (const bool flag : {false, true}) {
        SCOPED_TRACE(flag ? "Check(true)" : "Check(false)");
        G s;
        const auto check = [&] { return MessageOf<OutOfRangeException>([&] { s.Check(flag); }); };
        EXPECT_EQ(check(), usage);
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { s.Check(); }), usage);
        s.SetGuiComponentUsage(G::GuiComponentUsage(2));
        EXPECT_EQ(check(), usage);
        s.SetGuiComponentUsage(G::DEFAULT_DISPLAY);
        EXPECT_EQ(check(), dock);
        s.SetDockWidgetLocation(G::DockWidgetLocation(7));
        EXPECT_EQ(check(), dock);
        s.SetDockWidgetLocation(G::NoDockWidgetArea);
        EXPECT_EQ(check(), NameMessage);
        s.SetName(QString());
        EXPECT_EQ(check(), NameMessage);
        s.SetName(Q(""));
        EXPECT_NO_THROW(s.Check(flag));
        EXPECT_NO_THROW(s.Check());
    }
}

TEST(GuiComponentSettingsValidation, FailuresAreReportExceptionsNotStdExceptions)
{
    G s;
    s.SetValidate(true);
    const Catches name = CatchesOf([&] { s.SetName(QString()); });
    EXPECT_FALSE(name.asStdException);
    EXPECT_EQ(name.asReportException, NameMessage);
    EXPECT_EQ(CatchesOf([&] { s.SetDockWidgetLocation(G::DockWidgetLocation(9)); }).asRGExceptionByValue,
              DockMessage);
}
