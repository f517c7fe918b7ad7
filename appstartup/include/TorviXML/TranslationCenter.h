#ifndef TORVIXML_TRANSLATIONCENTER_H
#define TORVIXML_TRANSLATIONCENTER_H

// The application's translation service: every module (shared library or
// program part) registers its translation catalogue here under a module key,
// and the service keeps the catalogues of all registered modules installed in
// the running QCoreApplication, in the language chosen for the application.
//
// The class lives in the global namespace, as the host application's start-up
// library has always declared it; modules link against its symbols by name.

#include "torvixmlappstartup_export.h"

#include <QString>
#include <QStringList>
#include <QVector>

class QTranslator;

class TORVIXMLAPPSTARTUP_EXPORT TranslationCenter
{
public:
    // The process-wide service. It is created on first use and deliberately
    // never destroyed, so that modules may still unregister from static
    // destructors at process exit or while being unloaded, whatever the order
    // in which the runtime tears down the other static objects.
    static TranslationCenter& Instance();

    // Registers a module. Its catalogue "<module>_<language>.qm" is looked up
    // in the directories of SearchDirectories() (the first directory holding
    // a catalogue that loads wins) and installed into the application. A
    // language with a territory ("de_AT") falls back to the bare language
    // ("de") in each directory. Registration works before the application
    // object exists: the catalogue is then installed while the application is
    // being constructed, and again for every later application object.
    // A missing catalogue is not an error; the module's texts stay
    // untranslated.
    //
    // Registrations are reference counted: registering a module twice needs
    // two Unregister calls before its catalogue is removed, so two parties that
    // register the same module key do not pull the catalogue from under each
    // other.
    void Register(const QString& module);

    // Drops one registration of the module. When the last one goes, the
    // module's translator is removed from the application and deleted.
    // Unregistering a module that is not registered does nothing.
    void Unregister(const QString& module);

    // Selects the language ("de", "de_AT", ...) and reloads the catalogue of
    // every registered module in that language. An empty string selects the
    // system language again. The initial language is the language part of
    // QLocale::system().name(), e.g. "de" for "de_DE".
    void SetLanguage(const QString& language);
    QString Language() const;

    // The registered module keys in the order of their first registration.
    QStringList RegisteredModules() const;

    // The directories searched for catalogues, in search order: the directory
    // named by the environment variable TORVI_TRANSLATIONS_DIR (if set and not
    // empty), "translations" beside the application executable (only while an
    // application object exists) and the installed translations directory,
    // share/TorviXML/translations (share/TorviXMLQt6/... for Qt 6) of the
    // prefix this library was loaded from.
    QStringList SearchDirectories() const;

    // The translator currently installed for a module, or nullptr when the
    // module is not registered, has no catalogue in the current language or
    // no application object exists. QTranslator::filePath() tells which
    // catalogue file was loaded.
    const QTranslator* Translator(const QString& module) const;

    TranslationCenter(const TranslationCenter&) = delete;
    TranslationCenter& operator=(const TranslationCenter&) = delete;

private:
    friend struct TranslationCenterHooks;

    struct Module
    {
        QString name;
        int registrations = 0;
        QTranslator* translator = nullptr;
    };

    TranslationCenter();
    ~TranslationCenter() = delete;

    int IndexOf(const QString& module) const;
    void Load(Module& module);
    void Drop(Module& module);
    void LoadAll();
    void DropAll();

    QString m_language;
    QVector<Module> m_modules;
    bool m_cleanupScheduled = false;
};

#endif // TORVIXML_TRANSLATIONCENTER_H
