#ifndef TORVIXML_SETTINGSCLASSES_H
#define TORVIXML_SETTINGSCLASSES_H

#include "torvixml_export.h"

#include <QString>
#include <QStringList>
#include <QVector>
#include <QtGlobal>

namespace TORVIXML {

class TorviGuiModeSettings;

/// One member of a settings class as the stored forms show it.
struct MemberDescription
{
    enum Kind { Enumeration, String, List };
    enum XmlForm {
        Attribute,    // an attribute of the object's element
        TextElement,  // a child element holding the text
        ChildElements // one child element per list element
    };

    /// The member's name: that of its accessors, and its XML attribute or
    /// element; for a list, the class of its elements.
    QString name;
    Kind kind = String;
    /// Its position in the set flags, in member order.
    int bit = 0;
    XmlForm xmlForm = Attribute;
    /// The member id that tags its record in the binary form.
    qint32 binaryId = 0;
    /// Its place among the members in both stored forms, from 0.
    int writeOrder = 0;
    /// An enumeration's names, entry k naming value k.
    QStringList enumerationNames;
};

/// A settings class: its name, class id and members in member order.
struct ClassDescription
{
    QString name;
    qint64 id = 0;
    QVector<MemberDescription> members;
};

/// TorviGuiModeSettings, DataOperationMode and GuiComponentSettings, in
/// this order, described from the tables that the library itself works with.
TORVIXML_EXPORT QVector<ClassDescription> SettingsClasses();

/// What one member of an object holds.
struct MemberValue
{
    /// Whether the member is set; the values of a member that is not set
    /// are its initial ones.
    bool set = false;
    /// A string's text, or the name of an enumeration's value (a null string
    /// for a value that has no name).
    QString text;
    /// An enumeration's value.
    qint32 value = 0;
    /// A list's elements: their indexes among the objects of the tree.
    QVector<int> elements;
};

/// One object of a settings tree: its class, as an index into
/// SettingsClasses(), and one value per member of the class, in member order.
struct ObjectValues
{
    int classIndex = 0;
    QVector<MemberValue> members;
};

/// The objects of a tree with the values of their members, read through the
/// same tables as the description: the root first, each list element after
/// the object that holds it, depth first and in member order.
TORVIXML_EXPORT QVector<ObjectValues> SettingsValues(const TorviGuiModeSettings& root);

} // namespace TORVIXML

#endif
