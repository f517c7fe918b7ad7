#include "DataOperationMode.h"
#include "DataOperationModeData.h"

#include "Validation.h"
#include "XmlSupport.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

// <DataOperationMode Name="...">
//   <GuiComponentSettings .../>*
// </DataOperationMode>
// On reading, the name may also come as a child element <Name>.

namespace TORVIXML {

TORVIXML_XML_WRITE_ENTRY(DataOperationMode)

void DataOperationMode::WriteXmlElement(QXmlStreamWriter& writer) const
{
    InitData();
    const bool prepared = Validation::ElementsPrepared(GetValidate(), IsGuiComponentSettingsSet());
    writer.writeStartElement(GetObjectName());
    // Refused rather than written without the characters XML cannot hold.
    RequireXmlText(d->m_name.value, "Name");
    writer.writeAttribute(QStringLiteral("Name"), d->m_name.value);
    for (const GuiComponentSettings& element : d->m_guiComponentSettings.list)
        prepared ? element.WriteXmlElement(writer) : element.GetXml(writer);
    writer.writeEndElement();
}

void DataOperationMode::ProcessXml(QXmlStreamReader& reader)
{
    InitData();
    const QXmlStreamAttributes attributes = reader.attributes();
    if (attributes.hasAttribute(QLatin1String("Name")))
        SetName(attributes.value(QLatin1String("Name")).toString());
    const Xml::ListWalk<GuiComponentSettings> walk(d->m_guiComponentSettings);
    IRGObject::ProcessXml(reader);
}

void DataOperationMode::ProcessXmlStartElement(QXmlStreamReader& reader)
{
    InitData();
    Validation::ReapplyWhileReading(*this, d->m_guiComponentSettings);
    const auto name = reader.name();
    GuiComponentSettings& work = d->m_guiComponentSettings.readElement;
    if (name == work.GetObjectName())
        Xml::ReadChild(*this, work, reader, [this](GuiComponentSettings& read) { AppendRead(std::move(read)); });
    else if (name == QLatin1String("Name"))
        SetName(Xml::NameText(GetTextValue(reader)));
    else
        SkipXmlElement(reader);
}

} // namespace TORVIXML
