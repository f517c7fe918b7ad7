// The tool of a build without the GUI parts (TORVIXML_BUILD_GUI off): a
// QCoreApplication for every command, and no preview.

#include "Commands.h"
#include "ToolSupport.h"

namespace TorviTool {

std::unique_ptr<QCoreApplication> createApplication(int& argc, char** argv)
{
    return std::make_unique<QCoreApplication>(argc, argv);
}

int runPreview(const QStringList&)
{
    return usageError(QString(),
                      QStringLiteral("this torvixml was built without the preview (TORVIXML_BUILD_GUI=OFF)"));
}

} // namespace TorviTool
