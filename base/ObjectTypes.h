#ifndef TORVIXML_OBJECTTYPES_H
#define TORVIXML_OBJECTTYPES_H

#include <QtGlobal>

namespace REPORTGENERATOR {

/// Kinds of report objects known to the report-object base library.
enum ObjectTypes : qint32 {
    UndefinedObject = 0, ///< what a default-constructed report object reports
    SettingsObject,      ///< a settings value (configuration data)
    ReportObject,        ///< a report or a part of one
    ContainerObject      ///< an object that only groups others
};

} // namespace REPORTGENERATOR

#endif
