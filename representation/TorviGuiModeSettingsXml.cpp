#include "TorviGuiModeSettings.h"
#include "TorviGuiModeSettingsData.h"

#include "Validation.h"
#include "XmlSupport.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

// <TorviGuiModeSettings>
//   <DataOperationMode .../>*
//   <OperationModeHandler>name</OperationModeHandler>
// </TorviGuiModeSettings>

namespace TORVIXML {

TORVIXML_XML_WRITE_ENTRY(TorviGuiModeSettings)

void TorviGuiModeSettings::WriteXmlElement(QXmlStreamWriter& writer) const
{
    InitData();
    const bool prepared = Validation::ElementsPrepared(GetValidate(), IsDataOperationModeSet());
    writer.writeStartElement(GetObjectName());
    for (const DataOperationMode& element : d->m_dataOperationMode.list)
        prepared ? element.WriteXmlElement(writer) : element.GetXml(writer);
    writer.writeTextElement(QStringLiteral("OperationModeHandler"),
                            OperationModeHandlerToName(d->m_operationModeHandler.value));
    writer.writeEndElement();
}

void TorviGuiModeSettings::ProcessXml(QXmlStreamReader& reader)
{
    InitData();
    // The root element has no attributes of its own.
    const Xml::ListWalk<DataOperationMode> walk(d->m_dataOperationMode);
    IRGObject::ProcessXml(reader);
}

void TorviGuiModeSettings::ProcessXmlStartElement(QXmlStreamReader& reader)
{
    InitData();
    Validation::ReapplyWhileReading(*this, d->m_dataOperationMode);
    const auto name = reader.name();
    DataOperationMode& work = d->m_dataOperationMode.readElement;
    if (name == work.GetObjectName())
        Xml::ReadChild(*this, work, reader, [this](DataOperationMode& read) { AppendRead(std::move(read)); });
    else if (name == QLatin1String("OperationModeHandler"))
        SetOperationModeHandler(NameToOperationModeHandler(GetTextValue(reader)));
    else
        SkipXmlElement(reader);
}

} // namespace TORVIXML
