// torvixml-editor: edits GUI-mode settings documents (XML, binary and
// compressed binary) with choosers for the enumerations and a preview of
// each mode's main window.

#include "EditorWindow.h"

#include <TorviXML/TorviXML.h>
#include <TorviXML/TranslationCenter.h>

#include <QApplication>
#include <QCommandLineParser>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("torvixml-editor"));
    QApplication::setApplicationVersion(QStringLiteral(TORVIXML_VERSION_STRING));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Edits TorviXML GUI-mode settings documents."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption langOption(
        QStringLiteral("lang"), QStringLiteral("Use language <LANG> (e.g. de) instead of the system's."),
        QStringLiteral("LANG"));
    parser.addOption(langOption);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Settings document to open."),
                                 QStringLiteral("[FILE]"));
    parser.process(app);

    TORVIXML::Editor::EditorWindow::registerTranslations();
    if (parser.isSet(langOption))
        TranslationCenter::Instance().SetLanguage(parser.value(langOption));

    TORVIXML::Editor::EditorWindow window;
    if (!parser.positionalArguments().isEmpty())
        window.openFile(parser.positionalArguments().constFirst());
    window.show();
    return app.exec();
}
