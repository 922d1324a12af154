// Report: what a command tells, as JSON lines for programs or as text for people.
//
// Data goes to standard output, everything else to standard error. Every JSON object has "version",
// the number of the schema (docs/json.md), and stands on one line.
#ifndef HOST_REPORT_H
#define HOST_REPORT_H

#include "host/Failure.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace host
{

constexpr int kSchemaVersion = 1;

/// An object that begins with "version".
nlohmann::ordered_json NewObject();

/// One line; bytes that are no UTF-8 (of a path, say) become U+FFFD.
void PrintObject(const nlohmann::ordered_json& inObject, FILE* inStream = stdout);

/// The "error" object of a failure; an empty path is left out.
nlohmann::ordered_json FailureObject(const Failure& inFailure, const std::string& inPath);

/// The failure as "PATH: text" on standard error, and with inJson also as an "error" object on
/// standard output. An empty path is left out.
void PrintFailure(const Failure& inFailure, const std::string& inPath, bool inJson);

/// Tells that the user closed a dialog without a choice, with inJson also as an object with the
/// paths that are not empty; answers the exit code.
ExitCode PrintCancelled(bool inJson, const std::string& inPath, const std::string& inOutput = "");

/// Ends the process's output: what could not be written is a failure (kExitOutput).
void FlushOutput();

}  // namespace host

#endif
