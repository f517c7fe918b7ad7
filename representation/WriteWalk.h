#ifndef TORVIXML_REPRESENTATION_WRITEWALK_H
#define TORVIXML_REPRESENTATION_WRITEWALK_H

// The walk both writers make over an object and its list elements, once its
// write prologue has run. What a form puts down for each step is up to its
// sink:
//   token = Begin(object)            the object's element or frame opens
//   Scalar(object, row, value)       one enumeration or string member
//   token = BeginList(row, count)    a list with count (> 0) elements
//   EndList(token), End(token)

#include "MemberState.h"
#include "MemberTable.h"

#include <utility>

namespace TORVIXML {
namespace Representation {

/// Writes the object's members in write order, list elements included.
///
/// Of an element's own write prologue nothing is left to do but, at times,
/// its check: the prologue at the start of the write handed flag and logger
/// down the whole tree, and in validation mode its check walked every list
/// marked set. An element of a list that is not marked set is checked
/// before it is written, in validation mode, as its own prologue would (the
/// check then covers its own lists marked set). An element that passes its
/// check has data, so no element is left out.
template <typename Class, typename Sink>
void WriteMembers(const Class& object, Sink& out)
{
    auto& data = Framework::RecordOf(object);
    const auto frame = out.Begin(object);
    Framework::ForEachInWriteOrder(Framework::Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (Framework::IsList<decltype(row)>) {
            const auto& list = (data.*row.field).list;
            if (list.isEmpty())
                return;
            const bool checked = data.IsSet(row.bit);
            const auto elements = out.BeginList(row, list.size());
            for (const auto& element : list) {
                if (!checked && element.GetValidate())
                    element.Check();
                WriteMembers(element, out);
            }
            out.EndList(elements);
        } else {
            out.Scalar(object, row, (data.*row.field).value);
        }
    });
    out.End(frame);
}

} // namespace Representation
} // namespace TORVIXML

#endif
