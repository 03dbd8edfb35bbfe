// The krrxGetApiVersion that kestrune_add_module() links into a module whose
// own sources do not define one.
#include "krrxdynamiclinker.h"

KRRX_DEFINE_API_VERSION()
