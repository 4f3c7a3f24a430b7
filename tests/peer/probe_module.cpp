// The module that the probe's runtime takes itself for.
#define KELMOR_MODULE_NAME "kelmor.psd"
#include "shell/module_identity.inc"
