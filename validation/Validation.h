#ifndef TORVIXML_VALIDATION_VALIDATION_H
#define TORVIXML_VALIDATION_VALIDATION_H

// How the validation flag and the logger travel down the tree, the steps
// every writer and reader runs first, and the completeness test of Check().

#include "IRGObject.h"
#include "OutOfRangeException.h"

#include "MemberRecord.h"
#include "Messages.h"

#include <QVector>

#include <memory>

namespace TORVIXML {
namespace Validation {

/// Hands a parent's flag to every element of one of its lists (and, through
/// the elements' own SetValidate, to theirs). The list is iterated through
/// its detaching access, so no element shared with another list is touched.
template <typename T>
void HandDownValidate(QVector<T>& list, bool validate)
{
    for (T& element : list)
        element.SetValidate(validate);
}

template <typename T>
void HandDownLogger(QVector<T>& list, const std::shared_ptr<REPORTGENERATOR::Logger>& logger)
{
    for (T& element : list)
        element.SetLogger(logger);
}

/// Re-applies an object's own flag and logger through its virtual
/// operations, which pushes both to every list element below it.
inline void Reapply(const REPORTGENERATOR::IRGObject& object)
{
    object.SetValidate(object.GetValidate());
    object.SetLogger(object.GetLogger());
}

/// The write prologue: re-apply flag and logger; in validation mode check
/// the object (a failure propagates) and write nothing for an object
/// without data. Returns whether the object is to be written.
inline bool WritePrologue(const REPORTGENERATOR::IRGObject& object)
{
    if (!object.GetValidate()) {
        Reapply(object);
        return true;
    }
    // Check() re-applies flag and logger itself.
    object.Check();
    return object.HasData();
}

/// Whether the elements of a list may be written without their own write
/// prologue, because their owner's prologue already did all it would do:
/// it handed flag and logger down to them, and in validation mode its
/// Check() checked them (it does so when the list is marked set), and an
/// object that passes its check has data.
inline bool ElementsPrepared(bool validate, bool listSet)
{
    return !validate || listSet;
}

/// The re-application at the start of every child element while an XML
/// element's content is walked. Doing the full hand-down for every child
/// would make reading a list quadratic; within one walk only the parent
/// itself changes its list, and only by appending, so the elements that
/// already received the flag and logger keep them and just the ones appended
/// since the previous child need them. The result is the same as a full
/// hand-down.
template <typename T>
void ReapplyWhileReading(const REPORTGENERATOR::IRGObject& object, Framework::ListField<T>& field)
{
    const bool validate = object.GetValidate();
    const std::shared_ptr<REPORTGENERATOR::Logger> logger = object.GetLogger();
    object.REPORTGENERATOR::IRGObject::SetValidate(validate);
    object.REPORTGENERATOR::IRGObject::SetLogger(logger);
    const int from = field.handedDown > 0 ? field.handedDown : 0;
    for (int i = from; i < field.list.size(); ++i) {
        field.list[i].SetValidate(validate);
        field.list[i].SetLogger(logger);
    }
    if (field.handedDown >= 0)
        field.handedDown = field.list.size();
}

/// Check(): a member that is not complete fails with
/// "<object name>: Please set <label> properly.".
inline void Require(const REPORTGENERATOR::IRGObject& object, bool complete, const char* label)
{
    if (!complete)
        throw OutOfRangeException(Framework::PleaseSetMessage(object.GetObjectName(), label));
}

} // namespace Validation
} // namespace TORVIXML

// Check(bool) of every class: flag and logger re-applied down the tree, then
// the members checked, list elements first.
#define TORVIXML_CHECK_ENTRY(Class)                                                            \
    void Class::Check(bool flag) const                                                         \
    {                                                                                          \
        Validation::Reapply(*this);                                                            \
        CheckMembers(flag);                                                                    \
    }

// SetValidate() and SetLogger() of a class with a list member FIELD: the
// base's operation, then the same to every element of the list, once the
// object has a record.
#define TORVIXML_HAND_DOWN(Class, FIELD)                                                       \
    void Class::SetValidate(bool validate) const                                               \
    {                                                                                          \
        IRGObject::SetValidate(validate);                                                      \
        if (d)                                                                                 \
            Validation::HandDownValidate(d->FIELD.list, validate);                             \
    }                                                                                          \
    void Class::SetLogger(std::shared_ptr<REPORTGENERATOR::Logger> logger) const               \
    {                                                                                          \
        IRGObject::SetLogger(logger);                                                          \
        if (d)                                                                                 \
            Validation::HandDownLogger(d->FIELD.list, logger);                                 \
    }

#endif
