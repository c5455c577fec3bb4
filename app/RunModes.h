// SPDX-License-Identifier: MIT
// The two run modes that need no console. Each gives the reason for SignalShutdown, which the caller signals.
#pragma once

// Makes the monitoring service crash in a controlled way and write its dump, by an event that is set for six
// seconds. Asks before and tells after unless FORCE_DEBUG_DUMP_SILENT is there. An event that cannot be had
// is passed over without a word.
const wchar_t* RunForcedDump();

// Changes the one setting that the value of SETCONFIG names ("name:value") and reads it back. A read-back
// that differs is logged and shown in a box that goes away by itself.
const wchar_t* RunSetConfig();
