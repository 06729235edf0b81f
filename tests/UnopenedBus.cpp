/// sdbus-c++ 1.2 doesn't free a connection that it couldn't open; asked by the leak sanitiser
/// alone.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:sd_bus_new\n";
}
