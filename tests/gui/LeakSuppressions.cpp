// The font configuration library keeps caches for the life of the process
// and never frees them; under the leak checker of a sanitized build they
// would fail every suite that lays out text. Read only when the checker runs.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig\n";
}
