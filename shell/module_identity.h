// The names of the module that the runtime is linked into.
//
// They are data of the module, so that one compilation of the runtime serves the whole family and
// the `tp_name` of a static type is still a constant that the linker fills in. Each module defines
// them once by including shell/module_identity.inc.
#pragma once

namespace module_identity {

extern const char module_name[]; // "kelmor.psd"

extern const char version_type[];          // "kelmor.psd._ModuleVersionType"
extern const char field_descr_type[];      // "kelmor.psd._FieldDescrType"
extern const char instance_descr_type[];   // "kelmor.psd._InstanceMethodDescrType"
extern const char static_descr_type[];     // "kelmor.psd._StaticMethodDescrType"
extern const char mix_method_descr_type[]; // "kelmor.psd._MixMethodDescrType"
extern const char method_object_type[];    // "kelmor.psd._MethodObjectType"

extern const char wrpgen_module[];  // "kelmor.psd._wrpgen"
extern const char interop_module[]; // "kelmor.psd._wrpgen._interop"
extern const char generic_module[]; // "kelmor.psd._wrpgen._generic"

// Types of the interop module, such as "kelmor.psd._wrpgen._interop._StreamWrapper".
extern const char idisposable_wrapper[];
extern const char iter_wrapper[];
extern const char iterable_wrapper[];
extern const char icol_wrapper[];
extern const char ilist_wrapper[];
extern const char rocolbase_wrapper[];
extern const char colbase_wrapper[];
extern const char array_wrapper[];
extern const char arrlist_wrapper[];
extern const char shl_buffer_view[];
extern const char stream_wrapper[];

} // namespace module_identity
