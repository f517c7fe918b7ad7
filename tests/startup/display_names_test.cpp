// The display lists of the three enumerations with the library's own German
// catalogue, which the library registers with the translation service when it
// is loaded. The service finds the catalogue relative to the library, in the
// build tree as when installed. The expected names are those of
// tests/data/names-de.txt, what `torvixml names --lang de` prints.

#include "GuiComponentSettings.h"
#include "TorviGuiModeSettings.h"

#include <TorviXML/TranslationCenter.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QTranslator>

#include <array>
#include <string>

using namespace TORVIXML;

namespace
{
int g_argc = 1;
char g_name[] = "display_names_test";
char* g_argv[] = {g_name, nullptr};

// The names of the operation mode handlers, the component usages and the
// dock widget locations, a line each.
std::string Lines(const std::array<QStringList, 3>& lists)
{
    QStringList lines;
    for (const QStringList& list : lists)
        lines.append(list.join(QLatin1Char('|')));
    return lines.join(QLatin1Char('\n')).toStdString();
}

std::string StoredNames()
{
    return Lines({TorviGuiModeSettings::GetOperationModeHandlers(), GuiComponentSettings::GetGuiComponentUsages(),
                  GuiComponentSettings::GetDockWidgetLocations()});
}

std::string DisplayNames()
{
    return Lines({TorviGuiModeSettings::GetGUIOperationModeHandlers(), GuiComponentSettings::GetGUIGuiComponentUsages(),
                  GuiComponentSettings::GetGUIDockWidgetLocations()});
}

// The stored names ([0]) and the German names ([1]) from names-de.txt: a
// heading line per enumeration, then a line per value.
std::array<std::string, 2> NamesFromFile()
{
    std::array<std::array<QStringList, 3>, 2> names;
    QFile file(QStringLiteral(TEST_DATA_DIR "/names-de.txt"));
    file.open(QIODevice::ReadOnly);
    int table = -1;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        const QStringList fields = line.split(QLatin1Char('"')); // number, stored, blanks, German
        table += line.isEmpty() || line.startsWith(QLatin1Char(' ')) ? 0 : 1;
        for (int column = 0; fields.size() == 5 && table >= 0 && table < 3 && column < 2; ++column)
            names[column][table].append(fields.at(2 * column + 1));
    }
    return {Lines(names[0]), Lines(names[1])};
}

TEST(DisplayNames, LibraryRegistersItsCatalogueAtLoad)
{
    const std::array<std::string, 2> expected = NamesFromFile();
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    TranslationCenter& center = TranslationCenter::Instance();
    EXPECT_EQ(center.RegisteredModules().join(QLatin1Char(' ')).toStdString(), "TorviXML");
    EXPECT_EQ(StoredNames(), expected[0]);
    EXPECT_EQ(DisplayNames(), expected[0]);

    center.SetLanguage(QStringLiteral("de"));
    QCoreApplication app(g_argc, g_argv);
    const QTranslator* translator = center.Translator(QStringLiteral("TorviXML"));
    ASSERT_NE(translator, nullptr);
    EXPECT_EQ(translator->filePath().toStdString(), LIBRARY_CATALOGUES "/TorviXML_de.qm");
    EXPECT_EQ(DisplayNames(), expected[1]);
    EXPECT_EQ(StoredNames(), expected[0]);

    // Registered once: one withdrawal ends the registration.
    center.Unregister(QStringLiteral("TorviXML"));
    EXPECT_TRUE(center.RegisteredModules().isEmpty());
    EXPECT_EQ(DisplayNames(), expected[0]);
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
    QCoreApplication app(g_argc, g_argv);
    EchoTranslator translator;
    ASSERT_TRUE(QCoreApplication::installTranslator(&translator));
    const auto echo = [](const QString& text) { return text.toStdString(); };
    EXPECT_EQ(echo(GuiComponentSettings::tr("Dock", "menu", 3)), "TORVIXML::GuiComponentSettings|Dock|menu|3");
    EXPECT_EQ(echo(GuiComponentSettings::trUtf8("Gr\xC3\xB6\xC3\x9F" "e", "x", 2)),
              "TORVIXML::GuiComponentSettings|Gr\xC3\xB6\xC3\x9F" "e|x|2");
    EXPECT_EQ(echo(GuiComponentSettings::trUtf8("Dock")), "TORVIXML::GuiComponentSettings|Dock|<none>|-1");
    EXPECT_EQ(echo(TorviGuiModeSettings::tr("Mode", "title")), "TORVIXML::TorviGuiModeSettings|Mode|title|-1");
    EXPECT_EQ(echo(TorviGuiModeSettings::trUtf8("Mode", "t", 1)), "TORVIXML::TorviGuiModeSettings|Mode|t|1");
    EXPECT_EQ(echo(TorviGuiModeSettings::trUtf8("Mode")), "TORVIXML::TorviGuiModeSettings|Mode|<none>|-1");
    // The display lists translate in the context "QObject", the names as they
    // are stored, the trailing blank included.
    EXPECT_EQ(echo(GuiComponentSettings::GetGUIDockWidgetLocations().value(5)),
              "QObject|FloatingDockWidgetArea |<none>|-1");
    EXPECT_EQ(echo(TorviGuiModeSettings::GetGUIOperationModeHandlers().value(0)),
              "QObject|TX470ManagementComponent|<none>|-1");
    QCoreApplication::removeTranslator(&translator);
}
} // namespace
