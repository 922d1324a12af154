// KnownLeaks: what leak checkers are to pass over in programs that show the plug-in's dialog.
//
// Qt and fontconfig keep what they have read of fonts and themes to the end of a process. The
// question for MIME types hands the platform an empty array that its answer takes the place of.

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n"
           "leak:libQt6Core.so\n"
           "leak:libQt6Gui.so\n"
           "leak:libQt6Widgets.so\n"
           "leak:QueryMIMETypes\n";
}
