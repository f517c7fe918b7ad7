// The translation service on its own, with the test catalogues "Probe" and
// "Second" (context "QObject") in the directories of tc/ in the build tree:
//   env/, named in TORVI_TRANSLATIONS_DIR: Probe_de "Hello" -> "Hallo (Umgebung)",
//       Probe_fr "Hello" -> "Bonjour (Umgebung)", Second_de "World" -> "Welt (Umgebung)";
//   translations/ beside the program: Probe_de "Hello" -> "Hallo (Programm)", Probe_de_AT -> "Servus (Programm)";
//   empty/ (none), damaged/ (a Probe_de.qm that is not a catalogue);
// and with the library (not linked) loaded and unloaded as a plug-in is.

#include <TorviXML/TranslationCenter.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>
#include <QTranslator>

#include <dlfcn.h>

#include <string>

namespace
{
QString g_initialLanguage;
int g_argc = 1;
char g_name[] = "translation_center_test";
char* g_argv[] = {g_name, nullptr};

TranslationCenter& Center() { return TranslationCenter::Instance(); }

// The test's directories by their names in the build tree, the library's
// own as "installed".
std::string Abbreviated(QString path)
{
    path.replace(QStringLiteral(TEST_CATALOGUES "/"), QString());
    return path.replace(QStringLiteral(LIBRARY_CATALOGUES), QStringLiteral("installed")).toStdString();
}

// What a program sees now: the two texts translated, and every registered
// module with the catalogue its translator was loaded from, for example
// "Hallo (Umgebung) World | Probe=env/Probe_de.qm Absent=-".
std::string State()
{
    QString state = QCoreApplication::translate("QObject", "Hello") + QLatin1Char(' ')
                    + QCoreApplication::translate("QObject", "World") + QStringLiteral(" |");
    for (const QString& module : Center().RegisteredModules()) {
        const QTranslator* translator = Center().Translator(module);
        state += QLatin1Char(' ') + module + QLatin1Char('=')
                 + (translator ? translator->filePath() : QStringLiteral("-"));
    }
    return Abbreviated(state);
}

class TranslationCenterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("TORVI_TRANSLATIONS_DIR", TEST_CATALOGUES "/env");
        Center().SetLanguage(QStringLiteral("de"));
    }

    void TearDown() override
    {
        for (int i = 0; i < 100 && !Center().RegisteredModules().isEmpty(); ++i)
            Center().Unregister(Center().RegisteredModules().constFirst());
        qunsetenv("TORVI_TRANSLATIONS_DIR");
    }
};

TEST_F(TranslationCenterTest, LanguageDefaultsToTheSystemLanguage)
{
    // main() runs the program under LC_ALL=de_DE.UTF-8.
    EXPECT_EQ(g_initialLanguage, QStringLiteral("de"));
    Center().SetLanguage(QStringLiteral("fr_CA"));
    EXPECT_EQ(Center().Language(), QStringLiteral("fr_CA"));
    Center().SetLanguage(QLatin1String("")); // empty, not null
    EXPECT_EQ(Center().Language(), QStringLiteral("de"));
}

TEST_F(TranslationCenterTest, CataloguesAreInstalledInEachApplicationAndGoWithIt)
{
    Center().Register(QStringLiteral("Probe"));
    EXPECT_EQ(State(), "Hello World | Probe=-");
    QPointer<const QTranslator> translator;
    {
        QCoreApplication app(g_argc, g_argv);
        translator = Center().Translator(QStringLiteral("Probe"));
        EXPECT_EQ(State(), "Hallo (Umgebung) World | Probe=env/Probe_de.qm");
    }
    EXPECT_TRUE(translator.isNull());
    EXPECT_EQ(State(), "Hello World | Probe=-");
    {
        QCoreApplication app(g_argc, g_argv);
        translator = Center().Translator(QStringLiteral("Probe"));
        EXPECT_EQ(State(), "Hallo (Umgebung) World | Probe=env/Probe_de.qm");
        Center().Unregister(QStringLiteral("Probe"));
        EXPECT_TRUE(translator.isNull());
        EXPECT_EQ(State(), "Hello World |");
    }
    // A later application gets its own clean-up.
    Center().Register(QStringLiteral("Probe"));
    {
        QCoreApplication app(g_argc, g_argv);
        translator = Center().Translator(QStringLiteral("Probe"));
        ASSERT_FALSE(translator.isNull());
    }
    EXPECT_TRUE(translator.isNull());
}

TEST_F(TranslationCenterTest, SearchesEnvironmentThenBesideTheProgramThenInstalled)
{
    QCoreApplication app(g_argc, g_argv);
    // The search path, then what a module registered now gets.
    const char* const steps[][2] = {
        {TEST_CATALOGUES "/env", "env translations installed: Hallo (Umgebung) World | Probe=env/Probe_de.qm"},
        {nullptr, "translations installed: Hallo (Programm) World | Probe=translations/Probe_de.qm"},
        {"", "translations installed: Hallo (Programm) World | Probe=translations/Probe_de.qm"},
        // Passed by: a directory without the catalogue, and a damaged one.
        {TEST_CATALOGUES "/empty",
         "empty translations installed: Hallo (Programm) World | Probe=translations/Probe_de.qm"},
        {TEST_CATALOGUES "/damaged",
         "damaged translations installed: Hallo (Programm) World | Probe=translations/Probe_de.qm"},
    };
    for (const auto& step : steps) {
        if (step[0])
            qputenv("TORVI_TRANSLATIONS_DIR", step[0]);
        else
            qunsetenv("TORVI_TRANSLATIONS_DIR");
        Center().Register(QStringLiteral("Probe"));
        EXPECT_EQ(Abbreviated(Center().SearchDirectories().join(QLatin1Char(' ')) + QStringLiteral(": ")) + State(),
                  step[1])
            << (step[0] ? step[0] : "unset");
        Center().Unregister(QStringLiteral("Probe"));
    }
}

TEST_F(TranslationCenterTest, ChangingTheLanguageReloadsEveryModule)
{
    QCoreApplication app(g_argc, g_argv);
    for (const char* module : {"Probe", "Absent", "Second"})
        Center().Register(QLatin1String(module));
    EXPECT_EQ(State(), "Hallo (Umgebung) Welt (Umgebung) | Probe=env/Probe_de.qm Absent=- Second=env/Second_de.qm");

    const char* const steps[][2] = {
        {"fr", "Bonjour (Umgebung) World | Probe=env/Probe_fr.qm Absent=- Second=-"},
        // A language with a territory falls back to the bare language, in
        // each directory before the next.
        {"de_AT", "Hallo (Umgebung) Welt (Umgebung) | Probe=env/Probe_de.qm Absent=- Second=env/Second_de.qm"},
        {"it", "Hello World | Probe=- Absent=- Second=-"},
        {"de-CH", "Hallo (Umgebung) Welt (Umgebung) | Probe=env/Probe_de.qm Absent=- Second=env/Second_de.qm"},
    };
    for (const auto& step : steps) {
        Center().SetLanguage(QLatin1String(step[0]));
        EXPECT_EQ(Center().Language(), QLatin1String(step[0]));
        EXPECT_EQ(State(), step[1]) << step[0];
    }
}

TEST_F(TranslationCenterTest, RegistrationsAreCounted)
{
    QCoreApplication app(g_argc, g_argv);
    Center().Register(QStringLiteral("Probe"));
    const QTranslator* translator = Center().Translator(QStringLiteral("Probe"));
    Center().Register(QStringLiteral("Probe"));
    EXPECT_EQ(Center().Translator(QStringLiteral("Probe")), translator); // not loaded again
    Center().Unregister(QStringLiteral("Probe"));
    EXPECT_EQ(State(), "Hallo (Umgebung) World | Probe=env/Probe_de.qm");
    Center().Unregister(QStringLiteral("Probe"));
    EXPECT_EQ(State(), "Hello World |");

    // Unregistering what is not registered is harmless; a new registration
    // after the last one went starts from one again.
    Center().Unregister(QStringLiteral("Probe"));
    Center().Unregister(QStringLiteral("Never"));
    Center().Register(QStringLiteral("Probe"));
    Center().Unregister(QStringLiteral("Probe"));
    EXPECT_EQ(State(), "Hello World |");
}
TEST_F(TranslationCenterTest, LibraryRegistersOnceWhenLoadedAndWithdrawsWhenUnloaded)
{
    QCoreApplication app(g_argc, g_argv);
    void* library = dlopen(TORVIXML_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(State(), "Hello World | TorviXML=installed/TorviXML_de.qm");
    // GuiComponentSettings::GetGUIDockWidgetLocations() answers from it.
    const auto locations = reinterpret_cast<QStringList (*)()>(
        dlsym(library, "_ZN8TORVIXML20GuiComponentSettings25GetGUIDockWidgetLocationsEv"));
    ASSERT_NE(locations, nullptr);
    EXPECT_EQ(locations().size(), 7);
    EXPECT_NE(locations().at(0), QLatin1String("LeftDockWidgetArea")) << "not translated";

    // A second registration outlives the library, which must not take the
    // name's characters with it.
    Center().Register(QStringLiteral("TorviXML"));
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(TORVIXML_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";
    EXPECT_EQ(State(), "Hello World | TorviXML=installed/TorviXML_de.qm");
    Center().Unregister(QStringLiteral("TorviXML"));
    EXPECT_EQ(State(), "Hello World |");
}
} // namespace

int main(int argc, char** argv)
{
    // The default language comes from the system locale; fix it before the
    // service is first used.
    qputenv("LC_ALL", "de_DE.UTF-8");
    g_initialLanguage = TranslationCenter::Instance().Language();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
