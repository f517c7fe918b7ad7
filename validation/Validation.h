#ifndef TORVIXML_VALIDATION_VALIDATION_H
#define TORVIXML_VALIDATION_VALIDATION_H

// How the validation flag and the logger travel down the tree, the step
// every writer and reader runs first, and the completeness check, written
// once over the member tables.

#include "IRGObject.h"
#include "OutOfRangeException.h"

#include "MemberState.h"
#include "MemberTable.h"
#include "Messages.h"

#include <QVector>

#include <memory>
#include <utility>

namespace TORVIXML {
namespace Validation {

/// Re-applies an object's own flag and logger through its virtual
/// operations, which hand both down to every list element below it.
inline void Reapply(const REPORTGENERATOR::IRGObject& object)
{
    object.SetValidate(object.GetValidate());
    object.SetLogger(object.GetLogger());
}

/// Hands a flag to the elements of a list (and, through the elements' own
/// SetValidate, to theirs). While the owner's XML content is walked, the
/// leading elements that hold the flag already are passed over.
template <typename T>
void HandDownValidate(Framework::ListField<T>& field, bool validate)
{
    Framework::HandedDown& done = field.handedDown;
    const int from = done.Active() && done.validate == validate ? done.validateCount : 0;
    for (int i = from; i < field.list.size(); ++i)
        field.list[i].SetValidate(validate);
    if (done.Active()) {
        done.validateCount = field.list.size();
        done.validate = validate;
    }
}

template <typename T>
void HandDownLogger(Framework::ListField<T>& field, const std::shared_ptr<REPORTGENERATOR::Logger>& logger)
{
    Framework::HandedDown& done = field.handedDown;
    const int from = done.Active() && done.logger == logger.get() ? done.loggerCount : 0;
    for (int i = from; i < field.list.size(); ++i)
        field.list[i].SetLogger(logger);
    if (done.Active()) {
        done.loggerCount = field.list.size();
        done.logger = logger.get();
    }
}

/// SetValidate() of every class: the base's operation; the record made the
/// object's own; the flag to every element of every list.
template <typename Class>
void SetValidate(const Class& object, bool validate)
{
    object.REPORTGENERATOR::IRGObject::SetValidate(validate);
    auto& d = Framework::Access<Class>::Record(object);
    d.detach();
    if (!d)
        return;
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (Framework::IsList<decltype(row)>)
            HandDownValidate((*d).*row.field, validate);
    });
}

/// SetLogger() of every class: the base's operation, then the logger to
/// every element of every list once the object has a record.
template <typename Class>
void SetLogger(const Class& object, const std::shared_ptr<REPORTGENERATOR::Logger>& logger)
{
    object.REPORTGENERATOR::IRGObject::SetLogger(logger);
    auto& d = Framework::Access<Class>::Record(object);
    if (!d)
        return;
    Framework::ForEachMember(Framework::Members<Class>::Rows(), [&](const auto& row) {
        if constexpr (Framework::IsList<decltype(row)>)
            HandDownLogger((*d).*row.field, logger);
    });
}

/// The write prologue: flag and logger re-applied; in validation mode the
/// object checked (a failure propagates) and nothing written for an object
/// without data. Returns whether the object is to be written.
inline bool WritePrologue(const REPORTGENERATOR::IRGObject& object)
{
    Reapply(object);
    if (!object.GetValidate())
        return true;
    object.Check();
    return object.HasData();
}

/// Whether a scalar member is complete: set, and an enumeration inside its
/// name table, a string not null.
template <typename Data, typename E>
bool IsComplete(Data& data, const Framework::EnumMember<Data, E>& row)
{
    return data.IsSet(row.bit) && row.names().Contains((data.*row.field).value);
}
template <typename Data>
bool IsComplete(Data& data, const Framework::TextMember<Data>& row)
{
    return data.IsSet(row.bit) && !(data.*row.field).value.isNull();
}

/// The check walk below Check(bool), once flag and logger have been
/// re-applied to the whole tree: the elements of every list marked set,
/// depth first, then the object's scalar members in member order. The
/// first incomplete member throws "<object name>: Please set <member>
/// properly.". The flag is handed on and not acted on.
template <typename Class>
void CheckMembers(const Class& object, bool flag)
{
    auto& data = Framework::RecordOf(object);
    const auto rows = Framework::Members<Class>::Rows();
    Framework::ForEachMember(rows, [&](const auto& row) {
        if constexpr (Framework::IsList<decltype(row)>) {
            if (data.IsSet(row.bit)) {
                for (const auto& element : std::as_const((data.*row.field).list))
                    CheckMembers(element, flag);
            }
        }
    });
    Framework::ForEachMember(rows, [&](const auto& row) {
        if constexpr (!Framework::IsList<decltype(row)>) {
            if (!IsComplete(data, row))
                throw OutOfRangeException(Framework::PleaseSetMessage(object.GetObjectName(), row.name));
        }
    });
}

/// Check(bool) of every class: flag and logger re-applied down the tree,
/// then the check walk. An element's own Check(bool) would re-apply what
/// the walk's start has just handed down, so the walk goes on below it.
template <typename Class>
void Check(const Class& object, bool flag)
{
    Reapply(object);
    CheckMembers(object, flag);
}

} // namespace Validation
} // namespace TORVIXML

#endif
