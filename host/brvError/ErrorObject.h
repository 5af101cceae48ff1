#pragma once

#include "automation/Object.h"

// A new error and logging object, reached by name:
//   Constructor(title, major, minor, revision)   what the alerts and entries call the program
//   Alert(message, [title])                      tells the user, whatever DisplayAlerts says
//   LogEvent(message)                            an entry in the event log
//   ErrorMessage(module, routine, error, line, [debug message])
//                                                an entry, and an alert while DisplayAlerts is on; `error` is read by name:
//                                                Number, Source, Description, HelpFile, HelpContext, LastDllError
//   DisplayAlerts                                Boolean, to read and write; on unless BRVERROR_ALERTS is 0
//   LogFile                                      the event log's file name
// Nothing that is missing, null or of another type makes a call fail.
Object MakeErrorComponent();
