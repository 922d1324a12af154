// Application: the process's Qt application, made where the host has none.
#ifndef KELPUIQT_APPLICATION_H
#define KELPUIQT_APPLICATION_H

namespace kelpui::qt
{

/// Null when there is an application with widgets now, else why not.
const char* ProvideApplication();

}  // namespace kelpui::qt

#endif
