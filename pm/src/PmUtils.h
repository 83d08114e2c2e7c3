// The front of the utilities, one header per subject. A subject uses only those above it.
#pragma once

// clang-format off
#include "PmTimeTexts.h"
#include "PmReportNames.h"
#include "PmAttributeLookup.h"
#include "PmStorage.h"
#include "PmPublishing.h"
#include "PmHousekeeping.h"
// clang-format on
