// SettingsChooser: lets the user choose an export's settings in the plug-in's dialog.
#ifndef HOST_EXPORT_SETTINGSCHOOSER_H
#define HOST_EXPORT_SETTINGSCHOOSER_H

#include "host/Dialog.h"
#include "host/Registration.h"
#include "host/export/ExportPlan.h"

#include <optional>

namespace host
{

/// What the dialog is opened with: the plan's settings, for audio of the rate, the channel count
/// and the depth that are wished, the source's otherwise. A file type that has an export filter of
/// its own stays when it is not from a settings text.
DialogRequest RequestDialog(const Registration& inRegistration, const ExportWish& inWish,
                            const ExportSource& inSource, const ExportPlan& inPlan);

/// The wish for exactly these settings, in the place of an earlier one.
ExportWish WishForChosen(const std::string& inSettings, const ExportWish& inWish);

class SettingsChooser
{
public:
    /// inPlugIn  started already, with inRegistration as its answer; dialogs can be shown
    SettingsChooser(const PlugIn& inPlugIn, const Registration& inRegistration)
        : mPlugIn(inPlugIn), mRegistration(inRegistration)
    {
    }

    /// The plan for what the user chooses, from the given one on; nothing if the user cancels.
    /// Throws Failure as RunExportDialog and PlanExport do.
    std::optional<ExportPlan> Choose(const ExportWish& inWish, const ExportSource& inSource,
                                     const ExportPlan& inPlan, const std::string& inPath) const;

private:
    const PlugIn& mPlugIn;
    const Registration mRegistration;
};

}  // namespace host

#endif
