// Registers the model's catalogue (its column headers and tool tips) with the
// application's translation service while the library is loaded, as the
// settings library does for the display names.

#include <TorviXML/TranslationCenter.h>

#include <QString>

namespace
{
struct ModelCatalogue
{
    ModelCatalogue() { TranslationCenter::Instance().Register(QStringLiteral("TorviXMLModel")); }
    ~ModelCatalogue() { TranslationCenter::Instance().Unregister(QStringLiteral("TorviXMLModel")); }
    ModelCatalogue(const ModelCatalogue&) = delete;
    ModelCatalogue& operator=(const ModelCatalogue&) = delete;
};

const ModelCatalogue s_modelCatalogue;
} // namespace
