// ControlCalls: every call that sets something in a control or dialog, by name and in order.
#ifndef TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_CONTROLCALLS_H
#define TESTS_TARVO_PLUGINS_TARVOAT_DIALOG_CONTROLCALLS_H

#include <string>
#include <vector>

namespace testing_support
{

/// Notes calls for the length of the object; one at a time. A line is the control without the "ID"
/// at its end, the operation and its argument: "FileTypePopup AddItem 'WAVE'". What the framework
/// calls on its own behalf meanwhile is not noted, apart from the controls of an archive being
/// made, which start with nothing.
class ControlCalls
{
public:
    ControlCalls();
    ~ControlCalls();
    ControlCalls(const ControlCalls&) = delete;
    ControlCalls& operator=(const ControlCalls&) = delete;

    /// What has been noted since the last time.
    std::vector<std::string> Take();

private:
    std::vector<std::string> mLines;
};

}  // namespace testing_support

#endif
