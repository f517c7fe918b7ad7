// Observes the library's load and unload hooks from outside. This program
// does not link the library; it defines a recording TranslationCenter with
// the same exported symbols as the real service, so that the dlopen'ed
// library binds its calls to this one (the executable comes first in the
// global symbol lookup scope). Each call records what it was given and what
// the library's three name tables answer at that moment; the table functions
// are reached with dlsym under their mangled names.
//
// Asking a table builds it if it does not exist yet, so answering alone does
// not show that the library built its tables before registering. The program
// therefore also interposes __cxa_atexit, through which the library registers
// the destructor of each static object as its construction completes: if
// asking the tables inside Register makes the library register a destructor
// for an object of its own, a table was only built then.

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include <dlfcn.h>

#include <cstddef>

#include <string>
#include <vector>

class QTranslator;

class __attribute__((visibility("default"))) TranslationCenter
{
public:
    static TranslationCenter& Instance();
    void Register(const QString& module);
    void Unregister(const QString& module);
    // The rest of the service's interface, recorded as well so that any
    // other use at load or unload shows up.
    void SetLanguage(const QString& language);
    QString Language() const;
    QStringList RegisteredModules() const;
    QStringList SearchDirectories() const;
    const QTranslator* Translator(const QString& module) const;
};

namespace
{
using Table = std::vector<std::string>;
using ListFunction = QStringList (*)();

struct Call
{
    std::string operation;
    std::string argument;
    std::vector<Table> tables; // operation mode handlers, usages, locations
    std::string problem;
    std::size_t libraryObjectsBefore = 0; // library statics already constructed
};

// Objects whose destructors were registered with __cxa_atexit, in order.
// Plain data: the interposer runs during static initialisation too.
constexpr std::size_t kMaxExitObjects = 65536;
void* g_exitObjects[kMaxExitObjects];
std::size_t g_exitObjectCount = 0;

std::vector<Call> g_calls;
void* g_libraryAsSeenDuringLoad = nullptr;
ListFunction g_tableFunctions[3] = {};

const char* const kTableSymbols[3] = {
    "_ZN8TORVIXML20TorviGuiModeSettings24GetOperationModeHandlersEv", // TorviGuiModeSettings::GetOperationModeHandlers()
    "_ZN8TORVIXML20GuiComponentSettings21GetGuiComponentUsagesEv",    // GuiComponentSettings::GetGuiComponentUsages()
    "_ZN8TORVIXML20GuiComponentSettings22GetDockWidgetLocationsEv",   // GuiComponentSettings::GetDockWidgetLocations()
};

const std::vector<Table> kNameTables = {
    {"TX470ManagementComponent", "PMR830ManagementComponent", "QLSManagementComponent", "VbkManagementComponent"},
    {"AVAILABLE", "DEFAULT_DISPLAY"},
    {"LeftDockWidgetArea", "RightDockWidgetArea", "TopDockWidgetArea", "BottomDockWidgetArea",
     "CenterDockWidgetArea", "FloatingDockWidgetArea ", "NoDockWidgetArea"},
};

// Runs inside the library's static initialisation: dlopen has not returned
// yet, but the library is mapped and relocated, and a RTLD_NOLOAD open yields
// a handle to it (taking one reference, which the test drops again).
std::string ResolveTableFunctions()
{
    if (g_libraryAsSeenDuringLoad)
        return std::string();
    g_libraryAsSeenDuringLoad = dlopen(TORVIXML_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (!g_libraryAsSeenDuringLoad)
        return "library not found while loading";
    for (int i = 0; i < 3; ++i) {
        g_tableFunctions[i] = reinterpret_cast<ListFunction>(dlsym(g_libraryAsSeenDuringLoad, kTableSymbols[i]));
        if (!g_tableFunctions[i])
            return std::string("missing symbol ") + kTableSymbols[i];
    }
    return std::string();
}

bool InLibrary(const void* address, const void* libraryBase)
{
    Dl_info info;
    return dladdr(address, &info) != 0 && info.dli_fbase == libraryBase;
}

// Asks the tables and reports static objects of the library that got their
// destructors registered meanwhile, i.e. were constructed by the asking.
std::string TablesBuiltByAsking(std::size_t& libraryObjectsBefore)
{
    Dl_info info;
    if (!g_tableFunctions[0] || dladdr(reinterpret_cast<void*>(g_tableFunctions[0]), &info) == 0)
        return "library not found while loading";
    const std::size_t before = g_exitObjectCount;
    for (std::size_t i = 0; i < before && i < kMaxExitObjects; ++i)
        libraryObjectsBefore += InLibrary(g_exitObjects[i], info.dli_fbase) ? 1 : 0;
    for (ListFunction function : g_tableFunctions)
        function();
    for (std::size_t i = before; i < g_exitObjectCount && i < kMaxExitObjects; ++i) {
        if (InLibrary(g_exitObjects[i], info.dli_fbase))
            return "a name table was built only when asked for during Register";
    }
    return std::string();
}

std::vector<Table> AskTables()
{
    std::vector<Table> tables;
    for (ListFunction function : g_tableFunctions) {
        if (!function)
            return tables;
        Table table;
        for (const QString& name : function())
            table.push_back(name.toStdString());
        tables.push_back(table);
    }
    return tables;
}

void Record(const char* operation, const QString& argument = QString())
{
    Call call;
    call.operation = operation;
    call.argument = argument.toStdString();
    call.problem = ResolveTableFunctions();
    if (call.problem.empty() && call.operation == "Register")
        call.problem = TablesBuiltByAsking(call.libraryObjectsBefore);
    call.tables = AskTables();
    g_calls.push_back(call);
}
} // namespace

extern "C" __attribute__((visibility("default"))) int __cxa_atexit(void (*function)(void*), void* object,
                                                                    void* dsoHandle)
{
    using Real = int (*)(void (*)(void*), void*, void*);
    static const Real real = reinterpret_cast<Real>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    if (g_exitObjectCount < kMaxExitObjects)
        g_exitObjects[g_exitObjectCount] = object;
    ++g_exitObjectCount;
    return real(function, object, dsoHandle);
}

TranslationCenter& TranslationCenter::Instance()
{
    static TranslationCenter center;
    return center;
}

void TranslationCenter::Register(const QString& module) { Record("Register", module); }
void TranslationCenter::Unregister(const QString& module) { Record("Unregister", module); }
void TranslationCenter::SetLanguage(const QString& language) { Record("SetLanguage", language); }

QString TranslationCenter::Language() const
{
    Record("Language");
    return QString();
}

QStringList TranslationCenter::RegisteredModules() const
{
    Record("RegisteredModules");
    return QStringList();
}

QStringList TranslationCenter::SearchDirectories() const
{
    Record("SearchDirectories");
    return QStringList();
}

const QTranslator* TranslationCenter::Translator(const QString& module) const
{
    Record("Translator", module);
    return nullptr;
}

TEST(ModuleLoad, RegistersOnceAfterTheNameTablesAndUnregistersOnceBeforeThem)
{
    ASSERT_TRUE(g_calls.empty());

    void* library = dlopen(TORVIXML_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].operation, "Register");
    EXPECT_EQ(g_calls[0].argument, "TorviXML");
    EXPECT_EQ(g_calls[0].problem, "");
    EXPECT_EQ(g_calls[0].tables, kNameTables);
    // At least the three tables were constructed (and seen) before Register.
    EXPECT_GE(g_calls[0].libraryObjectsBefore, 3u);

    // Drop the reference taken inside Register; then ours is the only one.
    ASSERT_NE(g_libraryAsSeenDuringLoad, nullptr);
    EXPECT_EQ(dlclose(g_libraryAsSeenDuringLoad), 0);
    EXPECT_EQ(AskTables(), kNameTables);
    EXPECT_EQ(g_calls.size(), 1u);

    EXPECT_EQ(dlclose(library), 0);
    // The library is really gone, so its static destructors have run.
    void* stillLoaded = dlopen(TORVIXML_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
    EXPECT_EQ(stillLoaded, nullptr);
    if (stillLoaded)
        dlclose(stillLoaded);

    ASSERT_EQ(g_calls.size(), 2u);
    EXPECT_EQ(g_calls[1].operation, "Unregister");
    EXPECT_EQ(g_calls[1].argument, "TorviXML");
    EXPECT_EQ(g_calls[1].problem, "");
    EXPECT_EQ(g_calls[1].tables, kNameTables);
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
