// KnownLeaks: what leak checkers are to pass over. For test programs that ask for MIME types.
//
// The question for MIME types hands the platform an empty array that its answer takes the place of,
// so one empty array is lost with each answer.

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions()
{
    return "leak:QueryMIMETypes\n";
}
