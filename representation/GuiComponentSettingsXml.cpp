#include "GuiComponentSettings.h"
#include "GuiComponentSettingsData.h"

#include "Validation.h"
#include "XmlSupport.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

// <GuiComponentSettings Name="...">
//   <GuiComponentUsage>name</GuiComponentUsage>
//   <DockWidgetLocation>name</DockWidgetLocation>
// </GuiComponentSettings>

namespace TORVIXML {

TORVIXML_XML_WRITE_ENTRY(GuiComponentSettings)

void GuiComponentSettings::WriteXmlElement(QXmlStreamWriter& writer) const
{
    InitData();
    writer.writeStartElement(GetObjectName());
    // Refused rather than written without the characters XML cannot hold.
    RequireXmlText(d->m_name.value, "Name");
    writer.writeAttribute(QStringLiteral("Name"), d->m_name.value);
    writer.writeTextElement(QStringLiteral("GuiComponentUsage"), GuiComponentUsageToName(d->m_guiComponentUsage.value));
    writer.writeTextElement(QStringLiteral("DockWidgetLocation"),
                            DockWidgetLocationToName(d->m_dockWidgetLocation.value));
    writer.writeEndElement();
}

void GuiComponentSettings::ProcessXml(QXmlStreamReader& reader)
{
    InitData();
    const QXmlStreamAttributes attributes = reader.attributes();
    if (attributes.hasAttribute(QLatin1String("Name")))
        SetName(attributes.value(QLatin1String("Name")).toString());
    IRGObject::ProcessXml(reader);
}

void GuiComponentSettings::ProcessXmlStartElement(QXmlStreamReader& reader)
{
    Validation::Reapply(*this);
    const auto name = reader.name();
    InitData();
    if (name == QLatin1String("GuiComponentUsage"))
        SetGuiComponentUsage(NameToGuiComponentUsage(GetTextValue(reader)));
    else if (name == QLatin1String("DockWidgetLocation"))
        SetDockWidgetLocation(NameToDockWidgetLocation(GetTextValue(reader)));
    else if (name == QLatin1String("Name"))
        SetName(Xml::NameText(GetTextValue(reader)));
    else
        SkipXmlElement(reader);
}

} // namespace TORVIXML
