#include "TranslationCenter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTranslator>

#include <dlfcn.h>

// Lifetimes
// ---------
// The service object is never destroyed (see Instance()). Its translators,
// however, never outlive the application object they are installed in: the
// first installation into an application schedules a Qt post routine, which
// QCoreApplication's destructor runs while the application still exists; it
// removes and deletes every translator. The modules stay registered, and when
// the next application object is constructed the start-up routine at the end
// of this file installs their catalogues again. Translators are never given a
// QObject parent, so exactly one party (this service) deletes them.
//
// The start-up routine and the post routine are function pointers into this
// library that Qt keeps in global lists without any way to withdraw the
// start-up routine. The library is therefore linked with "-z nodelete": it
// stays mapped after dlclose, and so do the service object and its routines.
//
// Threads
// -------
// The service takes no lock. It is meant to be used from the thread that owns
// the application object, and from the loader while it loads or unloads
// modules (which the loader serialises).

namespace
{
QString SystemLanguage()
{
    // "de_DE" -> "de"; "C" stays "C" (for which no catalogue exists).
    return QLocale::system().name().section(QLatin1Char('_'), 0, 0);
}

// The installed catalogues lie at a fixed place relative to the directory
// this library was loaded from (lib/ -> share/TorviXML/translations), so
// they are found wherever the package was installed or moved to, and in the
// build tree, which has the same layout.
QString InstalledCatalogueDirectory()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&InstalledCatalogueDirectory), &info) == 0 || !info.dli_fname)
        return QString();
    const QString library = QFileInfo(QFile::decodeName(info.dli_fname)).canonicalFilePath();
    if (library.isEmpty())
        return QString();
    return QDir::cleanPath(QFileInfo(library).absolutePath() + QLatin1Char('/')
                           + QStringLiteral(TORVIXML_TRANSLATIONS_FROM_LIBDIR));
}

// The language itself first, then, for "de_AT" or "de-AT", the bare language.
QStringList LanguageCandidates(const QString& language)
{
    QStringList candidates;
    if (language.isEmpty())
        return candidates;
    candidates.append(language);
    int separator = language.indexOf(QLatin1Char('_'));
    const int dash = language.indexOf(QLatin1Char('-'));
    if (separator < 0 || (dash >= 0 && dash < separator))
        separator = dash;
    if (separator > 0)
        candidates.append(language.left(separator));
    return candidates;
}
} // namespace

// Entry points for Qt's application start-up and clean-up routines, which
// need plain functions without arguments.
struct TranslationCenterHooks
{
    static void ApplicationStarted() { TranslationCenter::Instance().LoadAll(); }

    static void ApplicationFinishing()
    {
        TranslationCenter& center = TranslationCenter::Instance();
        // Qt drops a post routine once it has run; the next application
        // object gets a new one when its first catalogue is installed.
        center.m_cleanupScheduled = false;
        center.DropAll();
    }
};

TranslationCenter& TranslationCenter::Instance()
{
    // Allocated once and never deleted: modules call Unregister from their
    // static destructors, and the runtime gives no order between those and
    // the destructor of a function-local static defined here.
    static TranslationCenter* const instance = new TranslationCenter;
    return *instance;
}

TranslationCenter::TranslationCenter()
    : m_language(SystemLanguage())
{
}

void TranslationCenter::Register(const QString& module)
{
    const int index = IndexOf(module);
    if (index >= 0) {
        ++m_modules[index].registrations;
        return;
    }
    Module entry;
    // A deep copy: the caller's string may be a QStringLiteral whose
    // characters live in the caller's library, which may be unloaded while
    // this service keeps the name.
    entry.name = QString(module.unicode(), module.size());
    entry.registrations = 1;
    m_modules.append(entry);
    Load(m_modules.last());
}

void TranslationCenter::Unregister(const QString& module)
{
    const int index = IndexOf(module);
    if (index < 0)
        return;
    if (--m_modules[index].registrations > 0)
        return;
    const QString name = m_modules[index].name;
    Drop(m_modules[index]);
    // Removing the translator notifies the application synchronously; look
    // the entry up again in case a handler changed the registrations.
    const int stillThere = IndexOf(name);
    if (stillThere >= 0 && m_modules[stillThere].registrations <= 0)
        m_modules.remove(stillThere);
}

void TranslationCenter::SetLanguage(const QString& language)
{
    m_language = language.isEmpty() ? SystemLanguage() : QString(language.unicode(), language.size());
    LoadAll();
}

QString TranslationCenter::Language() const
{
    return m_language;
}

QStringList TranslationCenter::RegisteredModules() const
{
    QStringList names;
    names.reserve(m_modules.size());
    for (const Module& entry : m_modules)
        names.append(entry.name);
    return names;
}

QStringList TranslationCenter::SearchDirectories() const
{
    QStringList directories;
    const QString fromEnvironment = qEnvironmentVariable("TORVI_TRANSLATIONS_DIR");
    if (!fromEnvironment.isEmpty())
        directories.append(QDir::cleanPath(fromEnvironment));
    if (QCoreApplication::instance())
        directories.append(QCoreApplication::applicationDirPath() + QStringLiteral("/translations"));
    const QString installed = InstalledCatalogueDirectory();
    if (!installed.isEmpty())
        directories.append(installed);
    return directories;
}

const QTranslator* TranslationCenter::Translator(const QString& module) const
{
    const int index = IndexOf(module);
    return index < 0 ? nullptr : m_modules[index].translator;
}

int TranslationCenter::IndexOf(const QString& module) const
{
    for (int i = 0; i < m_modules.size(); ++i) {
        if (m_modules[i].name == module)
            return i;
    }
    return -1;
}

void TranslationCenter::Load(Module& module)
{
    Drop(module);
    // Without an application there is nothing to install into; the start-up
    // routine loads the catalogue once the application is constructed.
    if (!QCoreApplication::instance())
        return;

    const QStringList languages = LanguageCandidates(m_language);
    const QStringList directories = SearchDirectories();
    for (const QString& directory : directories) {
        for (const QString& language : languages) {
            const QString base = directory + QLatin1Char('/') + module.name + QLatin1Char('_') + language;
            const QString file = base + QStringLiteral(".qm");
            const QFileInfo info(file);
            if (!info.isFile() || !info.isReadable())
                continue;
            auto* translator = new QTranslator;
            // QTranslator::load() would also try shorter names ("TorviXML.qm",
            // "TorviXML"); only the exact file checked above is accepted.
            if (!translator->load(base, QString(), QString(), QStringLiteral(".qm"))
                || QFileInfo(translator->filePath()) != info) {
                delete translator; // unreadable or damaged: try the next place
                continue;
            }
            module.translator = translator;
            if (!m_cleanupScheduled) {
                qAddPostRoutine(&TranslationCenterHooks::ApplicationFinishing);
                m_cleanupScheduled = true;
            }
            // Installing sends a LanguageChange event synchronously, and its
            // handlers may register further modules, which can move the entry
            // "module" refers to; it is not touched afterwards.
            QCoreApplication::installTranslator(translator);
            return;
        }
    }
}

void TranslationCenter::Drop(Module& module)
{
    QTranslator* translator = module.translator;
    if (!translator)
        return;
    module.translator = nullptr;
    if (QCoreApplication::instance())
        QCoreApplication::removeTranslator(translator);
    delete translator;
}

// Indexes rather than iterators: installing or removing a translator notifies
// the application synchronously, and a handler may change the registrations.
void TranslationCenter::LoadAll()
{
    for (int i = 0; i < m_modules.size(); ++i)
        Load(m_modules[i]);
}

void TranslationCenter::DropAll()
{
    for (int i = 0; i < m_modules.size(); ++i)
        Drop(m_modules[i]);
}

// Runs in the constructor of every QCoreApplication (or subclass) object,
// including one that already exists when this library is loaded.
static void installRegisteredCatalogues()
{
    TranslationCenterHooks::ApplicationStarted();
}
Q_COREAPP_STARTUP_FUNCTION(installRegisteredCatalogues)
