#ifndef TORVIXML_TORVIXML_H
#define TORVIXML_TORVIXML_H

// Every public type of TorviXML: the report-object base (IRGObject, Logger,
// ObjectTypes, the exceptions), the three settings classes with the
// description of their members (SettingsClasses) and the library's version
// (TORVIXML_VERSION_STRING).

#include "BinaryParsingException.h"
#include "IRGObject.h"
#include "IncompleteDefinitionException.h"
#include "Logger.h"
#include "ObjectTypes.h"
#include "OutOfRangeException.h"
#include "RGException.h"
#include "ReportException.h"

#include "DataOperationMode.h"
#include "GuiComponentSettings.h"
#include "SettingsClasses.h"
#include "TorviGuiModeSettings.h"

#include "torvixml_version.h"

#endif
