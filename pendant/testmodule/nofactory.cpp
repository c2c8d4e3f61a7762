// A shared library with code but no module registration.
extern "C" __attribute__((visibility("default"))) int pendant_nofactory_answer()
{
    return 42;
}
