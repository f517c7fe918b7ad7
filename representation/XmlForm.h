#ifndef TORVIXML_REPRESENTATION_XMLFORM_H
#define TORVIXML_REPRESENTATION_XMLFORM_H

// GetXml(), ProcessXml() and ProcessXmlStartElement() of every settings
// class, over its member table: an object is an element named by its
// object name; each scalar member an attribute or a text element named as
// the member (its row's XML form), each list element a child element.

#include "IRGObject.h"

#include "MemberState.h"
#include "MemberTable.h"
#include "Validation.h"
#include "WriteWalk.h"

#include <QLatin1String>
#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <utility>

namespace TORVIXML {
namespace Xml {

/// The write walk's sink for the XML form.
class ElementSink
{
public:
    explicit ElementSink(QXmlStreamWriter& writer)
        : m_writer(writer)
    {
    }

    int Begin(const REPORTGENERATOR::IRGObject& object)
    {
        m_writer.writeStartElement(object.GetObjectName());
        return 0;
    }
    void End(int) { m_writer.writeEndElement(); }

    /// An enumeration is written as the name of its value (empty for a
    /// value without a name), a string as it is.
    template <typename Class, typename Data, typename E>
    void Scalar(const Class&, const Framework::EnumMember<Data, E>& row, E value)
    {
        Put(Framework::MemberName<Class>(row.bit), row.xml, row.names().Name(value));
    }
    template <typename Class, typename Data>
    void Scalar(const Class& object, const Framework::TextMember<Data>& row, const QString& value)
    {
        // Refused rather than written without the characters XML cannot hold.
        object.RequireXmlText(value, row.name);
        Put(Framework::MemberName<Class>(row.bit), row.xml, value);
    }

    /// The elements go straight into the owner's element.
    template <typename Row>
    int BeginList(const Row&, int)
    {
        return 0;
    }
    void EndList(int) {}

private:
    void Put(const QString& name, Framework::XmlForm form, const QString& text)
    {
        if (form == Framework::XmlForm::Attribute)
            m_writer.writeAttribute(name, text);
        else
            m_writer.writeTextElement(name, text);
    }

    QXmlStreamWriter& m_writer;
};

/// GetXml(): the write prologue, then the element.
template <typename Class>
void Write(const Class& object, QXmlStreamWriter& writer)
{
    if (!Validation::WritePrologue(object))
        return;
    ElementSink sink(writer);
    Representation::WriteMembers(object, sink);
}

/// A scalar member from text: an enumeration through its name, a string as
/// it is.
template <typename Class, typename Data, typename E>
void SetFromText(Class& object, const Framework::EnumMember<Data, E>& row, const QString& text)
{
    Framework::Set(object, row, Framework::FromName(object, row, text));
}
template <typename Class, typename Data>
void SetFromText(Class& object, const Framework::TextMember<Data>& row, const QString& text)
{
    Framework::Set(object, row, text);
}

/// The text of a member's element: an empty text is a value (an empty,
/// non-null string), never "no value".
QString ElementText(QString text);

/// While the object's content is walked, the hand-down of flag and logger
/// at each child need only reach the list elements appended since the last
/// (see Framework::HandedDown).
template <typename Class>
class ListWalk
{
public:
    explicit ListWalk(const Class& object)
        : m_object(object)
    {
        Mark(true);
    }
    ~ListWalk() { Mark(false); }
    ListWalk(const ListWalk&) = delete;
    ListWalk& operator=(const ListWalk&) = delete;

private:
    void Mark(bool walking)
    {
        auto& d = Framework::Access<Class>::Record(m_object);
        if (!d)
            return;
        Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
            if constexpr (Framework::IsList<decltype(row)>) {
                Framework::HandedDown& done = ((*d).*row.field).handedDown;
                walking ? done.Start() : done.Stop();
            }
        });
    }

    const Class& m_object;
};

/// ProcessXml(): entered on the object's start tag. The scalar members
/// given as attributes, then the base's walk over the content, which hands
/// each child element to ProcessXmlStartElement.
template <typename Class>
void Read(Class& object, QXmlStreamReader& reader)
{
    Framework::Access<Class>::InitData(object);
    const QXmlStreamAttributes attributes = reader.attributes();
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (!Framework::IsList<decltype(row)>) {
            const QLatin1String name(row.name);
            if (row.xml == Framework::XmlForm::Attribute && attributes.hasAttribute(name))
                SetFromText(object, row, attributes.value(name).toString());
        }
    });
    const ListWalk<Class> walk(object);
    object.REPORTGENERATOR::IRGObject::ProcessXml(reader);
}

/// A child element whose name is the class of a list's elements: the
/// list's work element forgets the previous child, takes the owner's flag
/// and logger, reads itself from the reader (still on the child's start tag)
/// and is appended when its ProcessXml returns. That happens also when the
/// document breaks off inside the child: what was read of it is appended
/// like any other child (in validation mode the append refuses it if it
/// lacks data), and the whole-document operation reports the broken
/// document afterwards.
template <typename Class, typename Data, typename T>
void ReadElement(Class& object, const Framework::ListMember<Data, T>& row, T& work, QXmlStreamReader& reader)
{
    work.Reset();
    work.SetValidate(object.GetValidate());
    work.SetLogger(object.GetLogger());
    work.ProcessXml(reader);
    Framework::Append(object, row, std::move(work));
}

/// ProcessXmlStartElement(): entered on a child's start tag. Flag and
/// logger re-applied through the virtual operations, then the child handed
/// to the first member, in member order, that it names: a list element by
/// its class, a scalar member by the member's name (read from the
/// element's text, also for a member written as an attribute). Any other
/// element is skipped.
template <typename Class>
void ReadChild(Class& object, QXmlStreamReader& reader)
{
    Validation::Reapply(object);
    const auto name = reader.name();
    auto& data = Framework::RecordOf(object);
    bool handled = false;
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        if (handled)
            return;
        if constexpr (Framework::IsList<decltype(row)>) {
            auto& work = (data.*row.field).readElement;
            if (name == work.GetObjectName()) {
                handled = true;
                ReadElement(object, row, work, reader);
            }
        } else if (name == QLatin1String(row.name)) {
            handled = true;
            SetFromText(object, row, ElementText(Framework::Access<Class>::TextValue(object, reader)));
        }
    });
    if (!handled)
        Framework::Access<Class>::SkipElement(object, reader);
}

} // namespace Xml
} // namespace TORVIXML

#endif
