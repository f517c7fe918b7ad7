#ifndef TORVIXML_TORVIXML_H
#define TORVIXML_TORVIXML_H

// Every public type of TorviXML: the report-object base (IRGObject, Logger,
// ObjectTypes, the exceptions) and the three settings classes.

#include "BinaryParsingException.h"
#include "Compression.h"
#include "IRGObject.h"
#include "IncompleteDefinitionException.h"
#include "Logger.h"
#include "ObjectTypes.h"
#include "OutOfRangeException.h"
#include "RGException.h"
#include "ReportException.h"

#include "DataOperationMode.h"
#include "GuiComponentSettings.h"
#include "TorviGuiModeSettings.h"

#endif
