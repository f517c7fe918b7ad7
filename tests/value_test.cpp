// The three settings classes as values, and every member's accessors.
//
// Typed tests run the same checks over each class (identity, lifecycle,
// copying, assignment, moves, comparison, the completeness check and its
// exceptions) and over each accessor family (enumerations, names, lists).
// The tests at the end cover what only a tree shows: the hand-down of the
// validation flag and the logger, depth-first checks and detaching.

#include "TestSupport.h"

#include <QDateTime>
#include <QStringList>

#include <climits>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

using namespace TestSupport;
using REPORTGENERATOR::IRGObject;
using REPORTGENERATOR::Logger;
using std::as_const;

namespace {

// ---- the classes --------------------------------------------------------

template <typename T>
struct Class;

template <>
struct Class<G> {
    static constexpr qint64 id = kComponentId;
    static constexpr const char* name = "GuiComponentSettings";
    static G Full() { return Component("Overview", G::DEFAULT_DISPLAY, G::FloatingDockWidgetArea); }
    static void Change(G& g) { g.SetName(Q("Changed")); }
    // The member Check() names first on a new object, and objects that hold
    // some data but not enough for HasData().
    static constexpr const char* firstMissing = "GuiComponentUsage";
    static std::vector<G> Partial()
    {
        std::vector<G> partial(3, Full());
        partial[0].SetName(QString());
        partial[1].ResetDockWidgetLocation();
        partial[2].ResetGuiComponentUsage();
        return {partial[0], partial[1], partial[2], Component(nullptr)};
    }
    using Refusal = OutOfRangeException;
    static void Refused(G& g) { g.SetDockWidgetLocation(G::DockWidgetLocation(7)); }
    static QString RefusedMessage() { return EnumInvalid("GuiComponentSettings", "m_dockWidgetLocation"); }
};

template <>
struct Class<M> {
    static constexpr qint64 id = kModeId;
    static constexpr const char* name = "DataOperationMode";
    static M Full() { return Mode("Standard", {Component("Overview")}); }
    static void Change(M& m) { m.GetGuiComponentSettings()[0].SetName(Q("Changed")); }
    static constexpr const char* firstMissing = "Name";
    static std::vector<M> Partial() { return {Mode(nullptr, {Component("A")})}; }
    using Refusal = IncompleteDefinitionException;
    static void Refused(M& m) { m.AppendGuiComponentSettings(G()); }
    static QString RefusedMessage() { return IncompleteAppend("DataOperationMode", "GuiComponentSettings"); }
};

template <>
struct Class<R> {
    static constexpr qint64 id = kRootId;
    static constexpr const char* name = "TorviGuiModeSettings";
    static R Full() { return Example(); }
    static void Change(R& r) { r.GetDataOperationMode()[0].GetGuiComponentSettings()[1].SetName(Q("Changed")); }
    static constexpr const char* firstMissing = "OperationModeHandler";
    static std::vector<R> Partial() { return {Root(kNoHandler, {Mode("A")})}; }
    using Refusal = IncompleteDefinitionException;
    static void Refused(R& r) { r.AppendDataOperationMode(M()); }
    static QString RefusedMessage() { return IncompleteAppend("TorviGuiModeSettings", "DataOperationMode"); }
};

template <typename T>
class ClassIdProbe : public T
{
public:
    using T::T;
    explicit ClassIdProbe(const T& other) : T(other) {}
    qint64 StoredClassId() const { return this->m_classId; }
};

template <typename T>
class SettingsValue : public ::testing::Test {};
using SettingsClassTypes = ::testing::Types<G, M, R>;
TYPED_TEST_SUITE(SettingsValue, SettingsClassTypes);

TYPED_TEST(SettingsValue, IdentityIsKeptByCopiesAndTheObjectTypeIsFixed)
{
    using C = Class<TypeParam>;
    EXPECT_EQ(TypeParam::id, C::id);
    EXPECT_EQ(TypeParam::GetId(), C::id);
    const TypeParam full = C::Full();
    const ClassIdProbe<TypeParam> copy(full);
    EXPECT_EQ(copy.StoredClassId(), C::id);
    EXPECT_EQ(copy.GetObjectName(), Q(C::name));
    EXPECT_EQ(TypeParam(full).GetBinaryRepresentationAsQByteArray().left(4), Int(qint32(C::id)));
    EXPECT_FALSE(TypeParam().MergeRGObject(full)); // settings are never merged

    TypeParam typed;
    const auto before = typed.GetObjectType();
    typed.SetObjectType(REPORTGENERATOR::ReportObject);
    EXPECT_EQ(typed.GetObjectType(), before);
    // The copy constructor takes the type that the base holds.
    typed.IRGObject::SetObjectType(REPORTGENERATOR::ContainerObject);
    EXPECT_EQ(TypeParam(typed).GetObjectType(), REPORTGENERATOR::ContainerObject);
}

TYPED_TEST(SettingsValue, NewObjectsStayUninitialisedUntilRead)
{
    TypeParam fresh;
    fresh.Reset();
    EXPECT_FALSE(fresh.IsInitialized());
    EXPECT_FALSE(TypeParam(fresh).IsInitialized());
    EXPECT_TRUE(fresh == TypeParam());
    EXPECT_FALSE(fresh.HasData() || fresh.AnyData());
    EXPECT_EQ(Outline(TypeParam()), Outline(fresh));

    const TypeParam full = Class<TypeParam>::Full();
    EXPECT_TRUE(full.HasData() && full.AnyData());
    for (const TypeParam& partial : Class<TypeParam>::Partial()) {
        SCOPED_TRACE(Outline(partial));
        EXPECT_FALSE(partial.HasData());
        EXPECT_TRUE(partial.AnyData());
    }
    TypeParam reset = full;
    reset.Reset();
    EXPECT_TRUE(reset.IsInitialized());
    EXPECT_FALSE(reset.AnyData());
    EXPECT_TRUE(reset == TypeParam());
}

TYPED_TEST(SettingsValue, CopiesTakeTheFlagButNoLoggerAndStayIndependent)
{
    TypeParam source = Class<TypeParam>::Full();
    source.SetValidate(true);
    source.SetLogger(std::make_shared<Logger>());
    TypeParam copy(source);
    EXPECT_TRUE(copy == source);
    EXPECT_TRUE(copy.GetValidate());
    EXPECT_EQ(copy.GetLogger(), nullptr);
    Class<TypeParam>::Change(copy);
    EXPECT_TRUE(copy != source);
    EXPECT_TRUE(source == Class<TypeParam>::Full());
}

TYPED_TEST(SettingsValue, AssignmentKeepsTheTargetsFlagAndLogger)
{
    const auto logger = std::make_shared<Logger>();
    for (const bool fromTemporary : {false, true}) {
        SCOPED_TRACE(fromTemporary ? "from a temporary" : "from an lvalue");
        TypeParam source = Class<TypeParam>::Full();
        TypeParam target;
        target.SetValidate(true);
        target.SetLogger(logger);
        if (fromTemporary)
            target = Class<TypeParam>::Full();
        else
            target = source;
        EXPECT_TRUE(target == source);
        EXPECT_TRUE(target.GetValidate());
        EXPECT_EQ(target.GetLogger(), logger);
        EXPECT_FALSE(source.GetValidate());
        // A change on either side after sharing stays on that side.
        Class<TypeParam>::Change(target);
        EXPECT_TRUE(source == Class<TypeParam>::Full());
        target = source;
        Class<TypeParam>::Change(source);
        EXPECT_TRUE(target == Class<TypeParam>::Full());
        // The target's own flag rules what it accepts afterwards.
        EXPECT_EQ(MessageOf<typename Class<TypeParam>::Refusal>([&] { Class<TypeParam>::Refused(target); }),
                  Class<TypeParam>::RefusedMessage());
        // An object that is not initialised de-initialises the target.
        target = TypeParam();
        EXPECT_FALSE(target.IsInitialized());
        EXPECT_TRUE(target.GetValidate());
        EXPECT_EQ(target.GetLogger(), logger);
    }
}

TYPED_TEST(SettingsValue, MovesHandOverTheObjectAndMoveAssignmentKeepsTheTargetsFlag)
{
    const auto logger = std::make_shared<Logger>();
    TypeParam source = Class<TypeParam>::Full();
    source.SetValidate(true);
    source.SetLogger(logger);
    TypeParam moved(std::move(source));
    EXPECT_TRUE(moved == Class<TypeParam>::Full());
    EXPECT_TRUE(moved.GetValidate());
    EXPECT_EQ(moved.GetLogger(), logger);
    EXPECT_FALSE(source.IsInitialized()); // NOLINT(bugprone-use-after-move): a new object
    EXPECT_EQ(source.GetObjectName(), Q(Class<TypeParam>::name));

    TypeParam target;
    target = std::move(moved);
    EXPECT_TRUE(target == Class<TypeParam>::Full());
    EXPECT_FALSE(target.GetValidate());
    EXPECT_EQ(target.GetLogger(), nullptr);
}

TYPED_TEST(SettingsValue, CheckNamesTheFirstMissingMemberAndFailuresAreReportExceptions)
{
    using C = Class<TypeParam>;
    for (const bool flag : {false, true}) {
        const TypeParam fresh;
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { fresh.Check(flag); }), PleaseSet(C::name, C::firstMissing));
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { C::Full().Check(flag); }), kNothingThrown);
    }
    TypeParam validated;
    validated.SetValidate(true);
    const Catches caught = CatchesOf([&] { C::Refused(validated); });
    EXPECT_FALSE(caught.asStdException);
    EXPECT_EQ(caught.asReportException, C::RefusedMessage());
    EXPECT_EQ(caught.asRGExceptionByValue, C::RefusedMessage());
    EXPECT_TRUE(validated == TypeParam());
}

// ---- enumeration members --------------------------------------------------

// The accessors of one enumeration member.
template <typename O, typename V>
struct Enumeration {
    const char* field;
    QStringList (*names)();
    QStringList (*guiNames)();
    bool (O::*isSet)() const;
    void (O::*reset)();
    void (O::*setInvalid)(const V&);
    const V& (O::*getInvalid)() const;
    void (O::*setDefault)(const V&);
    bool (O::*isValid)(const V&) const;
    const V& (O::*getDefault)() const;
    const V& (O::*get)() const;
    QString (O::*asString)() const;
    void (O::*set)(const V&);
    QString (O::*toName)(const V&) const;
    V (O::*nameTo)(const QString&) const;
};

const Enumeration<G, G::GuiComponentUsage> kUsage{
    "m_guiComponentUsage", &G::GetGuiComponentUsages, &G::GetGUIGuiComponentUsages, &G::IsGuiComponentUsageSet,
    &G::ResetGuiComponentUsage, &G::SetInvalidGuiComponentUsage, &G::GetInvalidGuiComponentUsage,
    &G::SetDefaultGuiComponentUsage, &G::IsValidGuiComponentUsage, &G::GetDefaultGuiComponentUsage,
    &G::GetGuiComponentUsage, &G::GetGuiComponentUsageAsString, &G::SetGuiComponentUsage,
    &G::GuiComponentUsageToName, &G::NameToGuiComponentUsage};
const Enumeration<G, G::DockWidgetLocation> kDock{
    "m_dockWidgetLocation", &G::GetDockWidgetLocations, &G::GetGUIDockWidgetLocations, &G::IsDockWidgetLocationSet,
    &G::ResetDockWidgetLocation, &G::SetInvalidDockWidgetLocation, &G::GetInvalidDockWidgetLocation,
    &G::SetDefaultDockWidgetLocation, &G::IsValidDockWidgetLocation, &G::GetDefaultDockWidgetLocation,
    &G::GetDockWidgetLocation, &G::GetDockWidgetLocationAsString, &G::SetDockWidgetLocation,
    &G::DockWidgetLocationToName, &G::NameToDockWidgetLocation};
const Enumeration<R, R::OperationModeHandler> kHandler{
    "m_operationModeHandler", &R::GetOperationModeHandlers, &R::GetGUIOperationModeHandlers,
    &R::IsOperationModeHandlerSet, &R::ResetOperationModeHandler, &R::SetInvalidOperationModeHandler,
    &R::GetInvalidOperationModeHandler, &R::SetDefaultOperationModeHandler, &R::IsValidOperationModeHandler,
    &R::GetDefaultOperationModeHandler, &R::GetOperationModeHandler, &R::GetOperationModeHandlerAsString,
    &R::SetOperationModeHandler, &R::OperationModeHandlerToName, &R::NameToOperationModeHandler};

// The names themselves are pinned by the class descriptions' golden file.
template <typename O, typename V>
void CheckEnumeration(const Enumeration<O, V>& e)
{
    const O o;
    const QStringList names = e.names();
    const int count = names.size();
    EXPECT_EQ(e.guiNames(), names); // no translator installed
    for (int v = 0; v < count; ++v) {
        EXPECT_EQ((o.*e.toName)(V(v)), names[v]);
        EXPECT_EQ((o.*e.nameTo)(names[v]), v);
        EXPECT_TRUE((o.*e.isValid)(V(v)));
        QStringList variants{names[v].toLower(), QLatin1Char(' ') + names[v], names[v].trimmed() + Q("x")};
        if (names[v].trimmed() != names[v])
            variants << names[v].trimmed();
        for (const QString& variant : variants)
            EXPECT_EQ((o.*e.nameTo)(variant), -1) << variant.toStdString();
    }
    for (const int bad : {-1, count, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE((o.*e.isValid)(V(bad)));
        EXPECT_TRUE((o.*e.toName)(V(bad)).isNull());
    }
    EXPECT_EQ((o.*e.nameTo)(QString()), -1);
    // Finding a known name leaves a new object alone; every other read
    // initialises it without marking anything set.
    const O untouched, named;
    (untouched.*e.nameTo)(names[0]);
    (named.*e.toName)(V(0));
    EXPECT_FALSE(untouched.IsInitialized());
    EXPECT_TRUE(named.IsInitialized());
    EXPECT_TRUE(o.IsInitialized());
    EXPECT_FALSE(o.AnyData());
    // The unknown-name answer is the object's own invalid value.
    O own;
    (own.*e.setInvalid)(V(42));
    EXPECT_EQ((own.*e.getInvalid)(), 42);
    EXPECT_EQ((own.*e.nameTo)(Q("unknown")), 42);
    EXPECT_FALSE((own.*e.isValid)(V(42)));
    // A returned list is a copy.
    QStringList changed = e.names();
    changed[0] = Q("Changed");
    EXPECT_EQ(e.names(), names);

    // Setters, resets and defaults.
    O s;
    EXPECT_EQ((s.*e.get)(), (s.*e.getDefault)());
    EXPECT_EQ((s.*e.getInvalid)(), -1);
    EXPECT_FALSE((s.*e.isSet)());
    EXPECT_EQ((s.*e.asString)(), names[(s.*e.getDefault)()]);
    (s.*e.set)(V(count - 1));
    EXPECT_EQ((s.*e.get)(), count - 1);
    EXPECT_TRUE((s.*e.isSet)());
    EXPECT_EQ((s.*e.asString)(), names[count - 1]);
    // A new default changes neither value nor flag; the member reset uses it.
    (s.*e.setDefault)(V(1));
    EXPECT_EQ((s.*e.getDefault)(), 1);
    EXPECT_EQ((s.*e.get)(), count - 1);
    (s.*e.reset)();
    EXPECT_EQ((s.*e.get)(), 1);
    EXPECT_FALSE((s.*e.isSet)());
    s.ResetToDefault();
    EXPECT_EQ((s.*e.get)(), 1);
    EXPECT_TRUE((s.*e.isSet)());
    // Outside validation mode anything is stored and marked set.
    (s.*e.set)(V(count));
    EXPECT_EQ((s.*e.get)(), count);
    EXPECT_TRUE((s.*e.asString)().isNull());
    // In validation mode a value out of range is refused and nothing changes.
    (s.*e.set)(V(0));
    s.SetValidate(true);
    for (const int bad : {-1, count}) {
        EXPECT_EQ(MessageOf<OutOfRangeException>([&] { (s.*e.set)(V(bad)); }), EnumInvalid(Class<O>::name, e.field));
        EXPECT_EQ((s.*e.get)(), 0);
    }
    // Out-of-range defaults are skipped silently, even in validation mode,
    // and leave the member unset.
    O v;
    v.SetValidate(true);
    (v.*e.setDefault)(V(count));
    EXPECT_NO_THROW(v.ResetToDefault());
    EXPECT_EQ((v.*e.get)(), count);
    EXPECT_FALSE((v.*e.isSet)());
}

TEST(EnumerationMember, GuiComponentUsage)
{
    CheckEnumeration(kUsage);
}
TEST(EnumerationMember, DockWidgetLocation)
{
    CheckEnumeration(kDock);
}
TEST(EnumerationMember, OperationModeHandler)
{
    CheckEnumeration(kHandler);
}

// ---- names ------------------------------------------------------------------

template <typename T>
class NameMember : public ::testing::Test {};
using NameOwners = ::testing::Types<G, M>;
TYPED_TEST_SUITE(NameMember, NameOwners);

TYPED_TEST(NameMember, NullIsNoNameAndResetsGiveNullNotTheDefault)
{
    const char* cls = Class<TypeParam>::name;
    TypeParam o;
    EXPECT_FALSE(o.IsValidName(QString()));
    EXPECT_TRUE(o.IsValidName(Q("")));
    EXPECT_TRUE(o.GetDefaultName().isNull());
    o.SetDefaultName(Q("Fallback"));
    o.SetName(Q("Overview"));
    EXPECT_EQ(o.GetName(), Q("Overview"));
    EXPECT_TRUE(o.IsNameSet());
    o.ResetName();
    EXPECT_TRUE(o.GetName().isNull());
    EXPECT_FALSE(o.IsNameSet());
    EXPECT_EQ(o.GetDefaultName(), Q("Fallback"));
    o.ResetToDefault();
    EXPECT_EQ(o.GetName(), Q("Fallback"));
    EXPECT_TRUE(o.IsNameSet());
    o.SetDefaultName(QString());
    o.ResetToDefault();
    EXPECT_FALSE(o.IsNameSet());

    // Outside validation mode a null name is stored and marked set; a check
    // still asks for a name.
    o.SetName(QString());
    EXPECT_TRUE(o.IsNameSet());
    EXPECT_TRUE(o.GetName().isNull());
    TypeParam nameless = Class<TypeParam>::Full();
    nameless.SetName(QString());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { nameless.Check(); }), PleaseSet(cls, "Name"));
    o.SetValidate(true);
    o.SetName(Q("Kept"));
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { o.SetName(QString()); }), PleaseSet(cls, "Name"));
    EXPECT_EQ(o.GetName(), Q("Kept"));
    o.SetName(Q(""));
    EXPECT_TRUE(o.GetName().isEmpty() && !o.GetName().isNull());

    // Null and empty names compare equal.
    TypeParam nullName;
    TypeParam emptyName;
    nullName.SetName(QString());
    emptyName.SetName(Q(""));
    EXPECT_TRUE(nullName == emptyName);
    EXPECT_TRUE(nullName != TypeParam()); // set against unset
}

// ---- lists ------------------------------------------------------------------

struct Components {
    using Owner = M;
    using Element = G;
    static QVector<G>& Get(M& o) { return o.GetGuiComponentSettings(); }
    static const QVector<G>& Get(const M& o) { return o.GetGuiComponentSettings(); }
    static void Set(M& o, const QVector<G>& v) { o.SetGuiComponentSettings(v); }
    static void Append(M& o, const G& e) { o.AppendGuiComponentSettings(e); }
    static bool IsSet(const M& o) { return o.IsGuiComponentSettingsSet(); }
    static void Reset(M& o) { o.ResetGuiComponentSettings(); }
    static void SetDefault(M& o, const G& e) { o.SetDefaultGuiComponentSettings(e); }
    static const G& GetDefault(const M& o) { return o.GetDefaultGuiComponentSettings(); }
    static bool IsValid(const M& o, const G& e) { return o.IsValidGuiComponentSettings(e); }
    static bool IsValidList(const M& o, const QVector<G>& v) { return o.IsValidGuiComponentSettings(v); }
    static G Full() { return Class<G>::Full(); }
    static std::vector<G> Incomplete() { return Class<G>::Partial(); }
    static QString Message() { return IncompleteAppend("DataOperationMode", "GuiComponentSettings"); }
};

struct Modes {
    using Owner = R;
    using Element = M;
    static QVector<M>& Get(R& o) { return o.GetDataOperationMode(); }
    static const QVector<M>& Get(const R& o) { return o.GetDataOperationMode(); }
    static void Set(R& o, const QVector<M>& v) { o.SetDataOperationMode(v); }
    static void Append(R& o, const M& e) { o.AppendDataOperationMode(e); }
    static bool IsSet(const R& o) { return o.IsDataOperationModeSet(); }
    static void Reset(R& o) { o.ResetDataOperationMode(); }
    static void SetDefault(R& o, const M& e) { o.SetDefaultDataOperationMode(e); }
    static const M& GetDefault(const R& o) { return o.GetDefaultDataOperationMode(); }
    static bool IsValid(const R& o, const M& e) { return o.IsValidDataOperationMode(e); }
    static bool IsValidList(const R& o, const QVector<M>& v) { return o.IsValidDataOperationMode(v); }
    static M Full() { return Class<M>::Full(); }
    static std::vector<M> Incomplete() { return {Mode(nullptr, {Component("A")}), M()}; }
    static QString Message() { return IncompleteAppend("TorviGuiModeSettings", "DataOperationMode"); }
};

template <typename L>
class ListMember : public ::testing::Test {};
using ListMembers = ::testing::Types<Components, Modes>;
TYPED_TEST_SUITE(ListMember, ListMembers);

TYPED_TEST(ListMember, GettersSettersAppendAndTheSetFlag)
{
    using L = TypeParam;
    using E = typename L::Element;
    typename L::Owner o;
    EXPECT_TRUE(as_const(L::Get(as_const(o))).isEmpty());
    EXPECT_FALSE(L::IsSet(o));
    L::Get(o); // the non-const getter marks the list set
    EXPECT_TRUE(L::IsSet(o));
    EXPECT_FALSE(o.AnyData()); // an empty list is no data
    L::Reset(o);
    EXPECT_FALSE(L::IsSet(o));

    // Neither the setter nor the in-place change examines elements.
    o.SetValidate(true);
    L::Set(o, {E(), L::Full()});
    EXPECT_TRUE(L::IsSet(o));
    EXPECT_FALSE(L::Get(as_const(o))[0].IsInitialized());
    L::Get(o).append(E());
    EXPECT_EQ(L::Get(as_const(o)).size(), 3);
    EXPECT_TRUE(o.AnyData());

    // In validation mode an append refuses incomplete elements, which the
    // list's validity test, as for every list, does not look at.
    typename L::Owner v;
    v.SetValidate(true);
    for (const E& incomplete : L::Incomplete()) {
        EXPECT_TRUE(L::IsValid(v, incomplete));
        EXPECT_EQ(MessageOf<IncompleteDefinitionException>([&] { L::Append(v, incomplete); }), L::Message());
    }
    EXPECT_FALSE(L::IsSet(v));
    EXPECT_TRUE(L::IsValidList(v, {L::Incomplete()[0]}));

    L::Append(v, L::Full());
    EXPECT_TRUE(L::IsSet(v));

    // The list holds a copy made by the copy constructor: the element's own
    // flag, no logger, no connection to the original.
    E source = L::Full();
    source.SetValidate(true);
    source.SetLogger(std::make_shared<Logger>());
    typename L::Owner lax;
    L::Append(lax, source);
    Class<E>::Change(source);
    const E& stored = L::Get(as_const(lax))[0];
    EXPECT_TRUE(stored == L::Full());
    EXPECT_TRUE(stored.GetValidate());
    EXPECT_EQ(stored.GetLogger(), nullptr);

    // Outside validation mode anything is appended, in order.
    for (const E& incomplete : L::Incomplete())
        L::Append(lax, incomplete);
    EXPECT_EQ(L::Get(as_const(lax)).size(), int(L::Incomplete().size()) + 1);
    EXPECT_TRUE(L::Get(as_const(lax))[1] == L::Incomplete()[0]);

    // A list handed to the setter keeps its elements' loggers and flags.
    QVector<E> list{L::Full()};
    const auto own = std::make_shared<Logger>();
    list[0].SetLogger(own);
    list[0].SetValidate(true);
    typename L::Owner set;
    L::Set(set, list);
    EXPECT_EQ(L::Get(as_const(set))[0].GetLogger(), own);
    EXPECT_TRUE(L::Get(as_const(set))[0].GetValidate());
    Class<E>::Change(L::Get(set)[0]);
    EXPECT_TRUE(list[0] == L::Full());
}

TYPED_TEST(ListMember, DefaultElementsAreOnlyStoredAndReturned)
{
    using L = TypeParam;
    using E = typename L::Element;
    typename L::Owner o;
    EXPECT_FALSE(L::GetDefault(o).IsInitialized());
    E element = L::Incomplete()[0];
    element.SetValidate(true);
    L::SetDefault(o, element);
    EXPECT_TRUE(L::GetDefault(o) == element);
    EXPECT_FALSE(L::GetDefault(o).GetValidate());
    Class<E>::Change(element);
    EXPECT_TRUE(L::GetDefault(o) == L::Incomplete()[0]);

    // Not compared, not checked, not used by ResetToDefault.
    typename L::Owner full = Class<typename L::Owner>::Full();
    typename L::Owner withDefault = full;
    L::SetDefault(withDefault, L::Incomplete()[0]);
    EXPECT_TRUE(withDefault == full);
    EXPECT_NO_THROW(withDefault.Check());
    withDefault.ResetToDefault();
    EXPECT_TRUE(L::Get(as_const(withDefault)).isEmpty());
    EXPECT_FALSE(L::IsSet(withDefault));
}

TEST(BaseValidity, EveryTypeHasItsInvalidValue)
{
    const G o;
    const IRGObject& base = o;
    int i = 0;
    unsigned int u = 0;
    long long ll = 0;
    float f = 0;
    double d = 0;
    QString s = Q("");
    base.SetInvalid(i), base.SetInvalid(u), base.SetInvalid(ll), base.SetInvalid(f), base.SetInvalid(d);
    base.SetInvalid(s);
    EXPECT_TRUE(i == INT_MIN && u == UINT_MAX && ll == LLONG_MIN && std::isnan(f) && std::isnan(d) && s.isNull());
    EXPECT_FALSE(base.IsValid(i) || base.IsValid(u) || base.IsValid(ll) || base.IsValid(f) || base.IsValid(d)
                 || base.IsValid(s) || base.IsValid(QDateTime()));
    EXPECT_TRUE(base.IsValid(i + 1) && base.IsValid(u - 1) && base.IsValid(ll + 1) && base.IsValid(0.0f)
                && base.IsValid(0.0) && base.IsValid(Q("")) && base.IsValid(false)
                && base.IsValid(QDateTime::fromMSecsSinceEpoch(0)));
}

// ---- trees ------------------------------------------------------------------

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

void ExpectAll(const std::vector<const IRGObject*>& objects, bool validate, const Logger* logger)
{
    for (size_t i = 0; i < objects.size(); ++i) {
        EXPECT_EQ(objects[i]->GetValidate(), validate) << "element " << i;
        EXPECT_EQ(objects[i]->GetLogger().get(), logger) << "element " << i;
    }
}

// TwoModes() with a default element at every level and every element
// carrying a flag and logger of its own.
R Disturbed(bool validate)
{
    R r = TwoModes();
    for (M& m : r.GetDataOperationMode())
        m.SetDefaultGuiComponentSettings(Component("Default"));
    r.SetDefaultDataOperationMode(Mode("DefaultMode", {Component("Inner")}));
    const auto stray = std::make_shared<Logger>();
    for (M& m : r.GetDataOperationMode()) {
        m.SetValidate(validate);
        m.SetLogger(stray);
        for (G& g : m.GetGuiComponentSettings()) {
            g.SetValidate(validate);
            g.SetLogger(stray);
        }
    }
    return r;
}

std::vector<const IRGObject*> DefaultElements(const R& root)
{
    const M& defaultMode = root.GetDefaultDataOperationMode();
    std::vector<const IRGObject*> all{&defaultMode, &defaultMode.GetGuiComponentSettings()[0]};
    for (const M& m : root.GetDataOperationMode())
        all.push_back(&m.GetDefaultGuiComponentSettings());
    return all;
}

TEST(SettingsTree, FlagAndLoggerAreHandedDownToEveryListElementButNoDefault)
{
    const std::vector<std::pair<const char*, std::function<void(R&, bool, const std::shared_ptr<Logger>&)>>> ways = {
        {"SetValidate, SetLogger",
         [](R& r, bool v, const std::shared_ptr<Logger>& l) {
             r.SetValidate(v);
             r.SetLogger(l);
         }},
        {"Check()", [](R& r, bool, const std::shared_ptr<Logger>&) { as_const(r).Check(); }},
        {"Check(true)", [](R& r, bool, const std::shared_ptr<Logger>&) { as_const(r).Check(true); }},
        {"GetXmlString", [](R& r, bool, const std::shared_ptr<Logger>&) { r.GetXmlString(); }},
        {"GetBinaryRepresentation",
         [](R& r, bool, const std::shared_ptr<Logger>&) { r.GetBinaryRepresentationAsQByteArray(); }},
    };
    for (const auto& [what, handDown] : ways) {
        for (const bool validate : {true, false}) {
            SCOPED_TRACE(std::string(what) + (validate ? ", validation on" : ", validation off"));
            R root = Disturbed(!validate);
            const auto logger = std::make_shared<Logger>();
            // The root's own flag and logger are set without a hand-down first.
            root.IRGObject::SetValidate(validate);
            root.IRGObject::SetLogger(logger);
            handDown(root, validate, logger);
            ASSERT_EQ(Elements(root).size(), 5u);
            ExpectAll(Elements(root), validate, logger.get());
            ExpectAll(DefaultElements(root), false, nullptr);
        }
    }
    // A root without a record hands nothing down until it has one.
    R root;
    const auto logger = std::make_shared<Logger>();
    root.SetValidate(true);
    root.SetLogger(logger);
    root.AppendDataOperationMode(Mode("Standard", {Component("A")}));
    ExpectAll(Elements(root), false, nullptr);
    root.SetOperationModeHandler(R::TX470ManagementComponent);
    root.Check();
    ExpectAll(Elements(root), true, logger.get());
}

TEST(SettingsTree, CopiesCarryTheFlagDownButNoLoggerAndSharingNeverShows)
{
    const auto logger = std::make_shared<Logger>();
    R source = TwoModes();
    source.SetValidate(true);
    source.SetLogger(logger);
    source.GetDataOperationMode()[1].SetValidate(false);
    const R copy(source);
    ExpectAll(Elements(copy), true, nullptr);
    EXPECT_FALSE(as_const(source).GetDataOperationMode()[1].GetValidate());
    EXPECT_EQ(as_const(source).GetDataOperationMode()[1].GetLogger(), logger);

    // After an assignment both trees keep every element's logger, whichever
    // is used first; a const operation on the target hands its own flag and
    // logger down its own tree only.
    source.SetValidate(true);
    R target;
    const auto targetLogger = std::make_shared<Logger>();
    target.SetValidate(false);
    target.SetLogger(targetLogger);
    target = source;
    ExpectAll(Elements(source), true, logger.get());
    EXPECT_EQ(as_const(target).GetDataOperationMode()[1].GetLogger(), logger);
    as_const(target).Check();
    ExpectAll(Elements(target), false, targetLogger.get());
    ExpectAll(Elements(source), true, logger.get());

    // Changes at any depth detach.
    R deep(source);
    deep.GetDataOperationMode()[1].GetGuiComponentSettings().append(Component("Extra"));
    deep.GetDataOperationMode()[0].SetName(Q("Renamed"));
    EXPECT_TRUE(source == TwoModes());
    EXPECT_EQ(Outline(deep), "1*{'Renamed'*['Overview'*(1*,0*),'Details'*(0*,5*)]*;'Service'*['Log'*(0*,3*),"
                             "'Extra'*(0*,0*)]*}*");
}

TEST(SettingsTree, EqualityComparesListsPairwiseInOrder)
{
    const G a = Component("A");
    const G b = Component("B", G::DEFAULT_DISPLAY);
    EXPECT_TRUE(Mode("S", {a, b}) == Mode("S", {a, b}));
    EXPECT_TRUE(Mode("S", {a, b}) != Mode("S", {b, a}));
    EXPECT_TRUE(Mode("S", {a, b}) != Mode("S", {a}));
    EXPECT_TRUE(Mode("S", {a}) != Mode("S", {a, b}));
    EXPECT_TRUE(Mode("S", {a, b}) != Mode("T", {a, b}));
    R reordered = TwoModes();
    std::swap(reordered.GetDataOperationMode()[0], reordered.GetDataOperationMode()[1]);
    EXPECT_TRUE(reordered != TwoModes());
    R deeper = TwoModes();
    deeper.GetDataOperationMode()[1].GetGuiComponentSettings()[0].SetDockWidgetLocation(G::TopDockWidgetArea);
    EXPECT_TRUE(deeper != TwoModes());
    // An unset list equals a set empty one; unset values, defaults, invalid
    // values, flags and loggers do not count.
    M touched;
    touched.GetGuiComponentSettings();
    EXPECT_TRUE(M() == touched);
    G x = Component("X");
    G y = Component("X");
    y.SetDefaultGuiComponentUsage(G::DEFAULT_DISPLAY);
    y.SetInvalidDockWidgetLocation(G::DockWidgetLocation(3));
    y.SetValidate(true);
    y.SetLogger(std::make_shared<Logger>());
    EXPECT_TRUE(x == y);
    x.ResetGuiComponentUsage();
    EXPECT_TRUE(x != y);
    y.ResetGuiComponentUsage();
    EXPECT_TRUE(x == y);
}

// Check() walks depth first and reports the first failure, whatever the flag.
TEST(SettingsTree, CheckWalksDepthFirst)
{
    G noDock = Component("X");
    noDock.ResetDockWidgetLocation();
    G noName = Component("X");
    noName.ResetName();
    G bad;
    bad.SetGuiComponentUsage(G::GuiComponentUsage(5));
    M withBadDefault = Mode("", {Component("")});
    withBadDefault.SetDefaultGuiComponentSettings(bad);
    R badDefault = Root(0, {withBadDefault});
    badDefault.SetDefaultDataOperationMode(Mode(nullptr, {bad}));
    const QString handler = PleaseSet("TorviGuiModeSettings", "OperationModeHandler");
    const QString modeName = PleaseSet("DataOperationMode", "Name");
    const std::vector<std::tuple<const char*, R, QString>> cases = {
        {"handler out of range", Root(4), handler},
        {"first mode unnamed, handler unset", Root(kNoHandler, {Mode(nullptr), Mode("B")}), modeName},
        {"second mode unnamed", Root(0, {Mode("A", {Component("X")}), Mode(nullptr)}), modeName},
        {"component before its mode's name", Root(kNoHandler, {Mode(nullptr, {noDock})}),
         PleaseSet("GuiComponentSettings", "DockWidgetLocation")},
        {"last component before the next mode", Root(0, {Mode("A", {Component("Y"), noName}), Mode(nullptr)}),
         PleaseSet("GuiComponentSettings", "Name")},
        {"usage out of range", Root(0, {Mode("A", {bad})}), PleaseSet("GuiComponentSettings", "GuiComponentUsage")},
        {"empty names and invalid default elements", badDefault, kNothingThrown},
    };
    for (const auto& [what, built, message] : cases) {
        for (const bool validate : {false, true}) {
            SCOPED_TRACE(std::string(what) + (validate ? ", validation on" : ", validation off"));
            const R root(built);
            root.SetValidate(validate);
            EXPECT_EQ(MessageOf<OutOfRangeException>([&] { root.Check(); }), message);
            EXPECT_TRUE(root == built);
        }
    }
}

// A list that holds elements without being marked set (filled through a
// reference kept from the non-const getter after the list was reset) is
// not checked by its owner, but each element's write prologue still checks
// it in validation mode.
TEST(SettingsTree, ElementsOfAnUnsetListAreCheckedWhenWritten)
{
    const auto build = [](const char* componentName) {
        R root = Root(0);
        QVector<M>& modes = root.GetDataOperationMode();
        root.ResetDataOperationMode();
        M mode = Mode("M");
        QVector<G>& components = mode.GetGuiComponentSettings();
        mode.ResetGuiComponentSettings();
        components.append(Component(componentName));
        modes.append(mode);
        root.SetValidate(true);
        return root;
    };
    const R incomplete = build(nullptr);
    ASSERT_FALSE(incomplete.IsDataOperationModeSet() || incomplete.GetDataOperationMode()[0].IsGuiComponentSettingsSet());
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.Check(); }), kNothingThrown);
    const QString message = PleaseSet("GuiComponentSettings", "Name");
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetXmlString(); }), message);
    EXPECT_EQ(MessageOf<OutOfRangeException>([&] { incomplete.GetBinaryRepresentationAsQByteArray(); }), message);
    const R complete = build("A");
    EXPECT_EQ(complete.GetXmlString(), Small().GetXmlString());
    EXPECT_EQ(complete.GetBinaryRepresentationAsQByteArray(), Small().GetBinaryRepresentationAsQByteArray());
}

// The description of the classes that tools read: every member with its
// kind, bit, XML form, binary member id, write order and names.
TEST(SettingsTree, SettingsClassesDescribeEveryMember)
{
    static const char* const kinds[] = {"enum", "string", "list"};
    static const char* const forms[] = {"attribute", "text element", "child elements"};
    QByteArray text;
    for (const TORVIXML::ClassDescription& cls : TORVIXML::SettingsClasses()) {
        text += cls.name.toUtf8() + ' ' + QByteArray::number(cls.id) + '\n';
        for (const TORVIXML::MemberDescription& m : cls.members) {
            text += QStringLiteral("  %1: %2, bit %3, %4, id %5, written %6\n")
                        .arg(m.name, QLatin1String(kinds[m.kind]))
                        .arg(m.bit)
                        .arg(QLatin1String(forms[m.xmlForm]))
                        .arg(m.binaryId)
                        .arg(m.writeOrder)
                        .toUtf8();
            for (const QString& name : m.enumerationNames)
                text += "    \"" + name.toUtf8() + "\"\n";
        }
    }
    EXPECT_TRUE(MatchesGolden(QStringLiteral("settings-classes.txt"), text));
}

} // namespace
