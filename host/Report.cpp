#include "host/Report.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace host
{

nlohmann::ordered_json NewObject()
{
    nlohmann::ordered_json object;
    object["version"] = kSchemaVersion;
    return object;
}

void PrintObject(const nlohmann::ordered_json& inObject, FILE* inStream)
{
    const std::string line =
        inObject.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    std::fwrite(line.data(), 1, line.size(), inStream);
}

nlohmann::ordered_json FailureObject(const Failure& inFailure, const std::string& inPath)
{
    nlohmann::ordered_json object = NewObject();
    if (!inPath.empty())
        object["path"] = inPath;
    object["error"] = {{"result", inFailure.mResult}, {"text", inFailure.what()}};
    return object;
}

void PrintFailure(const Failure& inFailure, const std::string& inPath, bool inJson)
{
    const char* separator = inPath.empty() ? "" : ": ";
    std::fprintf(stderr, "tarvo: %s%s%s\n", inPath.c_str(), separator, inFailure.what());
    if (inJson)
        PrintObject(FailureObject(inFailure, inPath));
}

ExitCode PrintCancelled(bool inJson, const std::string& inPath, const std::string& inOutput)
{
    std::fprintf(stderr, "tarvo: cancelled\n");
    if (!inJson)
        return kExitFailed;
    nlohmann::ordered_json object = NewObject();
    if (!inPath.empty())
        object["path"] = inPath;
    if (!inOutput.empty())
        object["output"] = inOutput;
    object["cancelled"] = true;
    PrintObject(object);
    return kExitFailed;
}

void FlushOutput()
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw Failure(kExitOutput, 0,
                      std::string("cannot write to standard output: ") + std::strerror(errno));
}

}  // namespace host
