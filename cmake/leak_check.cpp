// The leak checker's version 14 takes the thread-local memory of libraries that a program loads, as it loads
// the image library, for what it is not, and crashes. It then does not look at that memory.
extern "C" const char* __lsan_default_options() {
    return "intercept_tls_get_addr=0";
}
