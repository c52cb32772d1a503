// A library that lacks most of VISA, to be bound by the test.
extern "C" __attribute__((visibility("default"))) void viOpenDefaultRM() {}
extern "C" __attribute__((visibility("default"))) void viStatusDesc() {}
extern "C" __attribute__((visibility("default"))) void viOpen() {}
