// A library that calls a function which nobody has: it can be loaded as long as nobody looks.
extern "C" void function_that_nobody_has();

extern "C" __attribute__((visibility("default"))) void unresolved_call() {
    function_that_nobody_has();
}
