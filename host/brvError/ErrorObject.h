#pragma once

#include "automation/Object.h"

// A new error and logging object, reached by name:
//   Constructor(title, major, minor, revision)   what the alerts and entries call the program
//   Alert(message, [title])                      tells the user; while DisplayAlerts is off an entry instead
//   LogEvent(message)                            an entry in the event log
//   ErrorMessage(module, routine, error, line, [debug message])
//                                                an entry, and an alert while DisplayAlerts is on; `error` is
//                                                read by name: Number, Source, Description, HelpFile,
//                                                HelpContext, LastDllError
//   DisplayAlerts                                Boolean, to read and write; on unless the environment variable
//                                                BRVERROR_ALERTS is 0, which is for runs that nobody watches
//   LogFile                                      the event log's file name
// An entry's fields: time, title and version, module, routine, number, source, description, line, debug message,
// LastDllError, HelpFile, HelpContext. An argument that is missing, null or of another type counts as empty and makes
// no call fail; only DisplayAlerts refuses what is no Boolean (errors 13 and 94). A log that cannot be written fails no
// call either.
Object MakeErrorComponent();
