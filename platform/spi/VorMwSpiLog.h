// Where log messages and traces go: (any, "VorMwSpiLog", "1") and (any, "KelMwSpiTrace", any).
#pragma once

#include "VorSpiTypes.h"

/// One message or trace. All texts are valid during the call only; the text is not terminated by a line feed.
struct VorMwSpiLogRecord {
    /// 3 error, 4 warning, 6 information, 8 trace.
    int level;
    const char* operation;
    const char* text;
    const char* sourceFile;
    int sourceLine;
    const char* subsystem;
};

/// The log takes messages; the trace takes traces, and each message once more. Any thread, several at once.
/// Neither operation may throw.
struct VorMwSpiLog_1 {
    KelMgmtSpiInterface_1 identity;
    void (*write)(const VorMwSpiLogRecord* record);
};

struct KelMwSpiTrace {
    KelMgmtSpiInterface_1 identity;
    void (*trace)(const VorMwSpiLogRecord* record);
};

static_assert(sizeof(VorMwSpiLog_1) == 4 * sizeof(void*) && sizeof(KelMwSpiTrace) == 4 * sizeof(void*));
