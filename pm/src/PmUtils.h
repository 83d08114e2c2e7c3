// The front of the utilities, one header per subject. A subject uses only those above it.
#pragma once

#include "PmTimeTexts.h"
#include "PmReportNames.h"
#include "PmAttributeLookup.h"
#include "PmStorage.h"
#include "PmPublishing.h"
#include "PmHousekeeping.h"
