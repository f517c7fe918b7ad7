#ifndef TORVIXML_REPRESENTATION_XMLSUPPORT_H
#define TORVIXML_REPRESENTATION_XMLSUPPORT_H

// Reading steps shared by the XML readers of all settings classes.

#include "IRGObject.h"

#include "MemberRecord.h"
#include "Validation.h"

#include <QString>
#include <QXmlStreamReader>

namespace TORVIXML {
namespace Xml {

/// A name given as a child element: an empty text is a value (an empty,
/// non-null string), never "no value".
QString NameText(QString text);

/// Marks the start and end of the walk over a parent's content, so that the
/// re-application of flag and logger at each child can skip the elements
/// that already have them (see Validation::ReapplyWhileReading).
template <typename T>
class ListWalk
{
public:
    explicit ListWalk(Framework::ListField<T>& field)
        : m_field(field)
    {
        m_field.handedDown = 0;
    }
    ~ListWalk() { m_field.handedDown = -1; }
    ListWalk(const ListWalk&) = delete;
    ListWalk& operator=(const ListWalk&) = delete;

private:
    Framework::ListField<T>& m_field;
};

/// A child object: the parent's work element forgets the previous child,
/// takes the parent's flag and logger, reads itself from the reader (still on
/// the child's start tag) and is handed to append() when its ProcessXml
/// returns. That happens also when the document breaks off inside the child:
/// what was read of it is appended like any other child (in validation mode
/// the append refuses it if it lacks data), and the whole-document operation
/// reports the broken document afterwards.
template <typename T, typename AppendElement>
void ReadChild(const REPORTGENERATOR::IRGObject& parent, T& work, QXmlStreamReader& reader,
               AppendElement&& append)
{
    work.Reset();
    work.SetValidate(parent.GetValidate());
    work.SetLogger(parent.GetLogger());
    work.ProcessXml(reader);
    append(work);
}

} // namespace Xml
} // namespace TORVIXML

// GetXml() of every class: the write prologue, then the element.
#define TORVIXML_XML_WRITE_ENTRY(Class)                                                        \
    void Class::GetXml(QXmlStreamWriter& writer) const                                         \
    {                                                                                          \
        if (Validation::WritePrologue(*this))                                                  \
            WriteXmlElement(writer);                                                           \
    }

#endif
