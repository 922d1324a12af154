// XServer: a screen of its own for a test.
#ifndef TESTS_ROADS_DIALOG_XSERVER_H
#define TESTS_ROADS_DIALOG_XSERVER_H

#include <string>

#include <sys/types.h>

namespace testing_support
{

/// Starts Xvfb on a display that is free, without access for others, and ends it.
class XServer
{
public:
    /// Throws std::runtime_error where it does not start.
    XServer();
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    /// ":99", say.
    const std::string& Display() const { return mDisplay; }

private:
    pid_t mProcess = -1;
    std::string mDisplay;
};

}  // namespace testing_support

#endif
