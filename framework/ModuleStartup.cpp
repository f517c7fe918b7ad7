// What the library does when the dynamic loader loads and unloads it.
//
// On Linux a shared library gets no loader entry point with attach and detach
// notifications; the runtime constructs the library's static objects when it
// is loaded (at program start or in dlopen) and destroys them when it is
// unloaded (at exit or in the dlclose that drops the last reference). The
// static registrar below plays the entry point: its constructor is the
// process attach, its destructor the process detach. There is no counterpart
// to the thread attach and detach notifications, and nothing to do for them.

#include "GuiComponentSettings.h"
#include "TorviGuiModeSettings.h"

#include <TorviXML/TranslationCenter.h>

#include <QString>

namespace
{
class ModuleRegistrar
{
public:
    ModuleRegistrar()
    {
        // The three name tables are function-local statics of these
        // functions; calling them builds the tables (if no earlier static
        // initialiser of the library has already done so) before the module
        // is registered.
        TORVIXML::TorviGuiModeSettings::GetOperationModeHandlers();
        TORVIXML::GuiComponentSettings::GetGuiComponentUsages();
        TORVIXML::GuiComponentSettings::GetDockWidgetLocations();

        TranslationCenter::Instance().Register(QStringLiteral("TorviXML"));
    }

    // Runs before the name tables are destroyed. Objects with static storage
    // duration are destroyed in the reverse order in which their construction
    // completed. Each table finishes its construction inside the constructor
    // above, that is before the registrar's own construction completes, so
    // the runtime destroys the registrar first and the tables after it. (The
    // compiler registers each object's destructor with __cxa_atexit at the
    // moment its construction completes, and exit or dlclose runs them
    // backwards.) This holds whatever the order of the translation units or
    // the link line, and also if a table was built even earlier: it then
    // completed still earlier and is destroyed still later.
    ~ModuleRegistrar()
    {
        TranslationCenter::Instance().Unregister(QStringLiteral("TorviXML"));
    }

    ModuleRegistrar(const ModuleRegistrar&) = delete;
    ModuleRegistrar& operator=(const ModuleRegistrar&) = delete;
};

const ModuleRegistrar s_moduleRegistrar;
} // namespace
