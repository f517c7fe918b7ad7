// The display lists of the three enumerations with the library's own German
// catalogue, which the library registers with the translation service when it
// is loaded. The service finds the catalogue relative to the library, in the
// build tree as when installed.

#include "GuiComponentSettings.h"
#include "TorviGuiModeSettings.h"

#include <TorviXML/TranslationCenter.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>

#include <memory>
#include <ostream>

// Readable QString output in failure messages (found by argument lookup).
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

using TORVIXML::GuiComponentSettings;
using TORVIXML::TorviGuiModeSettings;

namespace
{
const QString kModule = QStringLiteral("TorviXML");

const QStringList kHandlerNames = {
    QStringLiteral("TX470ManagementComponent"), QStringLiteral("PMR830ManagementComponent"),
    QStringLiteral("QLSManagementComponent"), QStringLiteral("VbkManagementComponent")};
const QStringList kUsageNames = {QStringLiteral("AVAILABLE"), QStringLiteral("DEFAULT_DISPLAY")};
const QStringList kLocationNames = {
    QStringLiteral("LeftDockWidgetArea"), QStringLiteral("RightDockWidgetArea"),
    QStringLiteral("TopDockWidgetArea"), QStringLiteral("BottomDockWidgetArea"),
    QStringLiteral("CenterDockWidgetArea"), QStringLiteral("FloatingDockWidgetArea "),
    QStringLiteral("NoDockWidgetArea")};

const QStringList kGermanHandlers = {
    QStringLiteral("TX470-Verwaltungskomponente"), QStringLiteral("PMR830-Verwaltungskomponente"),
    QStringLiteral("QLS-Verwaltungskomponente"), QStringLiteral("Vbk-Verwaltungskomponente")};
const QStringList kGermanUsages = {QString::fromUtf8("Verf\xC3\xBC" "gbar"), QStringLiteral("Standardanzeige")};
const QStringList kGermanLocations = {
    QStringLiteral("Linker Andockbereich"), QStringLiteral("Rechter Andockbereich"),
    QStringLiteral("Oberer Andockbereich"), QStringLiteral("Unterer Andockbereich"),
    QStringLiteral("Mittlerer Andockbereich"), QStringLiteral("Schwebendes Fenster"),
    QStringLiteral("Kein Andockbereich")};

class Application
{
public:
    Application() : m_app(new QCoreApplication(m_argc, m_argv)) {}

private:
    int m_argc = 1;
    char m_name[32] = "display_names_test";
    char* m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_app;
};

void ExpectUntranslated()
{
    EXPECT_EQ(TorviGuiModeSettings::GetGUIOperationModeHandlers(), kHandlerNames);
    EXPECT_EQ(GuiComponentSettings::GetGUIGuiComponentUsages(), kUsageNames);
    EXPECT_EQ(GuiComponentSettings::GetGUIDockWidgetLocations(), kLocationNames);
}

void ExpectGerman()
{
    EXPECT_EQ(TorviGuiModeSettings::GetGUIOperationModeHandlers(), kGermanHandlers);
    EXPECT_EQ(GuiComponentSettings::GetGUIGuiComponentUsages(), kGermanUsages);
    EXPECT_EQ(GuiComponentSettings::GetGUIDockWidgetLocations(), kGermanLocations);
}

TEST(DisplayNames, LibraryRegistersItsCatalogueAtLoad)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    TranslationCenter& center = TranslationCenter::Instance();
    EXPECT_EQ(center.RegisteredModules(), QStringList{kModule});
    EXPECT_EQ(center.Translator(kModule), nullptr);
    EXPECT_EQ(TorviGuiModeSettings::GetOperationModeHandlers(), kHandlerNames);
    EXPECT_EQ(GuiComponentSettings::GetGuiComponentUsages(), kUsageNames);
    EXPECT_EQ(GuiComponentSettings::GetDockWidgetLocations(), kLocationNames);
    ExpectUntranslated();

    center.SetLanguage(QStringLiteral("de"));
    Application app;
    const QTranslator* translator = center.Translator(kModule);
    ASSERT_NE(translator, nullptr);
    EXPECT_EQ(translator->filePath(), QStringLiteral(LIBRARY_CATALOGUES "/TorviXML_de.qm"));
    ExpectGerman();
}

TEST(DisplayNames, GermanNamesFollowTheCatalogue)
{
    TranslationCenter& center = TranslationCenter::Instance();
    center.SetLanguage(QStringLiteral("de"));
    {
        Application app;
        ExpectGerman();
        // Every value has its own display name, distinct from its stored name.
        for (int k = 0; k < kLocationNames.size(); ++k)
            EXPECT_NE(kGermanLocations[k], kLocationNames[k]);
        for (int k = 0; k < kUsageNames.size(); ++k)
            EXPECT_NE(kGermanUsages[k], kUsageNames[k]);
        for (int k = 0; k < kHandlerNames.size(); ++k)
            EXPECT_NE(kGermanHandlers[k], kHandlerNames[k]);

        center.Unregister(kModule);
        EXPECT_TRUE(center.RegisteredModules().isEmpty());
        ExpectUntranslated();

        center.Register(kModule);
        ExpectGerman();

        center.SetLanguage(QStringLiteral("fr"));
        ExpectUntranslated();
        center.SetLanguage(QStringLiteral("de_CH"));
        ExpectGerman();
    }
    // Without an application there is no translator.
    ExpectUntranslated();
    EXPECT_EQ(center.RegisteredModules(), QStringList{kModule});
}

// Answers every lookup with the arguments it was given, so that the context,
// source text, disambiguation and count of a translation call can be seen.
class EchoTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override
    {
        return QStringLiteral("%1|%2|%3|%4")
            .arg(QString::fromUtf8(context), QString::fromUtf8(sourceText),
                 disambiguation ? QString::fromUtf8(disambiguation) : QStringLiteral("<none>"))
            .arg(n);
    }
    bool isEmpty() const override { return false; }
};

TEST(DisplayNames, TranslationFunctionsUseTheirClassContext)
{
    Application app;
    EchoTranslator echo;
    ASSERT_TRUE(QCoreApplication::installTranslator(&echo));
    const QString component = QStringLiteral("TORVIXML::GuiComponentSettings|");
    const QString root = QStringLiteral("TORVIXML::TorviGuiModeSettings|");
    EXPECT_EQ(GuiComponentSettings::tr("Dock", nullptr), component + QStringLiteral("Dock|<none>|-1"));
    EXPECT_EQ(GuiComponentSettings::tr("Dock", "menu", 3), component + QStringLiteral("Dock|menu|3"));
    EXPECT_EQ(GuiComponentSettings::trUtf8("Gr\xC3\xB6\xC3\x9F" "e", "x"),
              component + QString::fromUtf8("Gr\xC3\xB6\xC3\x9F" "e|x|-1"));
    EXPECT_EQ(GuiComponentSettings::trUtf8("Dock", nullptr, 0), component + QStringLiteral("Dock|<none>|0"));
    EXPECT_EQ(TorviGuiModeSettings::tr("Mode", "title"), root + QStringLiteral("Mode|title|-1"));
    EXPECT_EQ(TorviGuiModeSettings::tr("Mode", nullptr, 2), root + QStringLiteral("Mode|<none>|2"));
    EXPECT_EQ(TorviGuiModeSettings::trUtf8("Mode", "t"), root + QStringLiteral("Mode|t|-1"));
    EXPECT_EQ(TorviGuiModeSettings::trUtf8("Mode", "t", 1), root + QStringLiteral("Mode|t|1"));
    // The display lists translate in the context "QObject", the names as they
    // are stored, the trailing blank included.
    EXPECT_EQ(GuiComponentSettings::GetGUIDockWidgetLocations()[5],
              QStringLiteral("QObject|FloatingDockWidgetArea |<none>|-1"));
    EXPECT_EQ(TorviGuiModeSettings::GetGUIOperationModeHandlers()[0],
              QStringLiteral("QObject|TX470ManagementComponent|<none>|-1"));
    QCoreApplication::removeTranslator(&echo);
}
} // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
