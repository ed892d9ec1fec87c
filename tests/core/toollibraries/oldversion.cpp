// A tool library of another SDK version.
extern "C" int getVersion() { return 20100; }
extern "C" void* getPlugin() { return nullptr; }
