// The translation service on its own, with the test catalogues "Probe" and
// "Second" (context "QObject"):
//   environment directory:  Probe_de.qm  "Hello" -> "Hallo (Umgebung)"
//                           Probe_fr.qm  "Hello" -> "Bonjour (Umgebung)"
//                           Second_de.qm "World" -> "Welt (Umgebung)"
//   translations/ beside the program: Probe_de.qm "Hello" -> "Hallo (Programm)"

#include <TorviXML/TranslationCenter.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>
#include <QTranslator>

#include <memory>
#include <ostream>

// Readable QString output in failure messages (found by argument lookup).
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace
{
QString g_initialLanguage;

const QString kEnvironmentDir = QStringLiteral(ENVIRONMENT_CATALOGUES);
const QString kApplicationDir = QStringLiteral(APPLICATION_CATALOGUES);
const QString kInstalledDir = QStringLiteral(INSTALLED_CATALOGUES);

QString Hello()
{
    return QCoreApplication::translate("QObject", "Hello");
}

QString World()
{
    return QCoreApplication::translate("QObject", "World");
}

QString CatalogueOf(const QString& module)
{
    const QTranslator* translator = TranslationCenter::Instance().Translator(module);
    return translator ? translator->filePath() : QStringLiteral("<none>");
}

class Application
{
public:
    Application() : m_app(new QCoreApplication(m_argc, m_argv)) {}

private:
    int m_argc = 1;
    char m_name[32] = "translation_center_test";
    char* m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_app;
};

class TranslationCenterTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        qputenv("TORVI_TRANSLATIONS_DIR", kEnvironmentDir.toLocal8Bit());
        TranslationCenter::Instance().SetLanguage(QStringLiteral("de"));
    }

    void TearDown() override
    {
        TranslationCenter& center = TranslationCenter::Instance();
        for (int i = 0; i < 100 && !center.RegisteredModules().isEmpty(); ++i)
            center.Unregister(center.RegisteredModules().constFirst());
        qunsetenv("TORVI_TRANSLATIONS_DIR");
    }
};

TEST_F(TranslationCenterTest, LanguageDefaultsToTheSystemLanguage)
{
    // main() runs the program under LC_ALL=de_DE.UTF-8.
    EXPECT_EQ(g_initialLanguage, QStringLiteral("de"));

    TranslationCenter& center = TranslationCenter::Instance();
    center.SetLanguage(QStringLiteral("fr_CA"));
    EXPECT_EQ(center.Language(), QStringLiteral("fr_CA"));
    center.SetLanguage(QString());
    EXPECT_EQ(center.Language(), QStringLiteral("de"));
}

TEST_F(TranslationCenterTest, ModuleRegisteredBeforeTheApplicationIsInstalledInEachApplication)
{
    TranslationCenter& center = TranslationCenter::Instance();
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(center.RegisteredModules(), QStringList{QStringLiteral("Probe")});
    EXPECT_EQ(center.Translator(QStringLiteral("Probe")), nullptr);
    EXPECT_EQ(Hello(), QStringLiteral("Hello"));

    QPointer<const QTranslator> first;
    {
        Application app;
        first = center.Translator(QStringLiteral("Probe"));
        ASSERT_FALSE(first.isNull());
        EXPECT_EQ(first->filePath(), kEnvironmentDir + QStringLiteral("/Probe_de.qm"));
        EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));
    }
    // The translator goes with the application, the registration stays.
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(center.Translator(QStringLiteral("Probe")), nullptr);
    EXPECT_EQ(center.RegisteredModules(), QStringList{QStringLiteral("Probe")});
    EXPECT_EQ(Hello(), QStringLiteral("Hello"));

    {
        Application app;
        QPointer<const QTranslator> second = center.Translator(QStringLiteral("Probe"));
        ASSERT_FALSE(second.isNull());
        EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));

        center.Unregister(QStringLiteral("Probe"));
        EXPECT_TRUE(second.isNull());
        EXPECT_EQ(Hello(), QStringLiteral("Hello"));
        EXPECT_TRUE(center.RegisteredModules().isEmpty());
    }

    // A later application gets its own clean-up, and unregistering after
    // the application has gone is harmless.
    center.Register(QStringLiteral("Probe"));
    QPointer<const QTranslator> third;
    {
        Application app;
        third = center.Translator(QStringLiteral("Probe"));
        EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));
    }
    EXPECT_TRUE(third.isNull());
    center.Unregister(QStringLiteral("Probe"));
    EXPECT_TRUE(center.RegisteredModules().isEmpty());
}

TEST_F(TranslationCenterTest, SearchesEnvironmentThenBesideTheProgramThenInstalled)
{
    Application app;
    TranslationCenter& center = TranslationCenter::Instance();
    EXPECT_EQ(QDir(QCoreApplication::applicationDirPath() + QStringLiteral("/translations")),
              QDir(kApplicationDir));
    const QString besideProgram = QCoreApplication::applicationDirPath() + QStringLiteral("/translations");

    EXPECT_EQ(center.SearchDirectories(), (QStringList{kEnvironmentDir, besideProgram, kInstalledDir}));
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Probe")), kEnvironmentDir + QStringLiteral("/Probe_de.qm"));
    center.Unregister(QStringLiteral("Probe"));

    qunsetenv("TORVI_TRANSLATIONS_DIR");
    EXPECT_EQ(center.SearchDirectories(), (QStringList{besideProgram, kInstalledDir}));
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Programm)"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Probe")), besideProgram + QStringLiteral("/Probe_de.qm"));
    center.Unregister(QStringLiteral("Probe"));

    // An empty variable counts as unset.
    qputenv("TORVI_TRANSLATIONS_DIR", QByteArray());
    EXPECT_EQ(center.SearchDirectories(), (QStringList{besideProgram, kInstalledDir}));

    // A directory without the catalogue, or with a damaged one, is passed by.
    QTemporaryDir scratch;
    ASSERT_TRUE(scratch.isValid());
    qputenv("TORVI_TRANSLATIONS_DIR", scratch.path().toLocal8Bit());
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Probe")), besideProgram + QStringLiteral("/Probe_de.qm"));
    center.Unregister(QStringLiteral("Probe"));

    QFile damaged(scratch.filePath(QStringLiteral("Probe_de.qm")));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("this is not a catalogue");
    damaged.close();
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Programm)"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Probe")), besideProgram + QStringLiteral("/Probe_de.qm"));
}

TEST_F(TranslationCenterTest, ChangingTheLanguageReloadsEveryModule)
{
    Application app;
    TranslationCenter& center = TranslationCenter::Instance();
    center.Register(QStringLiteral("Probe"));
    center.Register(QStringLiteral("Second"));
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));
    EXPECT_EQ(World(), QStringLiteral("Welt (Umgebung)"));

    center.SetLanguage(QStringLiteral("fr"));
    EXPECT_EQ(center.Language(), QStringLiteral("fr"));
    EXPECT_EQ(Hello(), QStringLiteral("Bonjour (Umgebung)"));
    EXPECT_EQ(World(), QStringLiteral("World")); // there is no Second_fr.qm
    EXPECT_EQ(CatalogueOf(QStringLiteral("Probe")), kEnvironmentDir + QStringLiteral("/Probe_fr.qm"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Second")), QStringLiteral("<none>"));

    // A language with territory falls back to the bare language.
    center.SetLanguage(QStringLiteral("de_AT"));
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));
    EXPECT_EQ(World(), QStringLiteral("Welt (Umgebung)"));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Second")), kEnvironmentDir + QStringLiteral("/Second_de.qm"));

    center.SetLanguage(QStringLiteral("it"));
    EXPECT_EQ(Hello(), QStringLiteral("Hello"));
    EXPECT_EQ(World(), QStringLiteral("World"));
    EXPECT_EQ(center.RegisteredModules(), (QStringList{QStringLiteral("Probe"), QStringLiteral("Second")}));
}

TEST_F(TranslationCenterTest, MissingCatalogueLeavesTextsUntranslated)
{
    Application app;
    TranslationCenter& center = TranslationCenter::Instance();
    center.Register(QStringLiteral("Absent"));
    center.Register(QStringLiteral("Second"));
    EXPECT_EQ(center.RegisteredModules(), (QStringList{QStringLiteral("Absent"), QStringLiteral("Second")}));
    EXPECT_EQ(CatalogueOf(QStringLiteral("Absent")), QStringLiteral("<none>"));
    EXPECT_EQ(Hello(), QStringLiteral("Hello"));
    EXPECT_EQ(World(), QStringLiteral("Welt (Umgebung)"));
}

TEST_F(TranslationCenterTest, RegistrationsAreCounted)
{
    Application app;
    TranslationCenter& center = TranslationCenter::Instance();
    center.Register(QStringLiteral("Probe"));
    const QTranslator* translator = center.Translator(QStringLiteral("Probe"));
    center.Register(QStringLiteral("Probe"));
    EXPECT_EQ(center.Translator(QStringLiteral("Probe")), translator);
    EXPECT_EQ(center.RegisteredModules(), QStringList{QStringLiteral("Probe")});

    center.Unregister(QStringLiteral("Probe"));
    EXPECT_EQ(center.RegisteredModules(), QStringList{QStringLiteral("Probe")});
    EXPECT_EQ(Hello(), QStringLiteral("Hallo (Umgebung)"));

    center.Unregister(QStringLiteral("Probe"));
    EXPECT_TRUE(center.RegisteredModules().isEmpty());
    EXPECT_EQ(Hello(), QStringLiteral("Hello"));

    center.Unregister(QStringLiteral("Probe"));
    center.Unregister(QStringLiteral("Never"));
    EXPECT_TRUE(center.RegisteredModules().isEmpty());

    // A new registration after the last one went starts from one again.
    center.Register(QStringLiteral("Probe"));
    center.Unregister(QStringLiteral("Probe"));
    EXPECT_TRUE(center.RegisteredModules().isEmpty());
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
