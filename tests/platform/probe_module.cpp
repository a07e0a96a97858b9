// A small shared object for the library-loading tests: one C entry that
// names itself, so a test can tell a loaded copy is a working library.
extern "C" __attribute__((visibility("default"))) int hnsybProbe()
{
    return 42;
}
