// The codes that the wrap library answers by itself. All others are the runtime's own.
#pragma once

namespace status {

inline constexpr int ok = 0;
inline constexpr int null_pointer = static_cast<int>(0x80004003);    // E_POINTER
inline constexpr int unexpected = static_cast<int>(0x8000ffff);      // E_UNEXPECTED
inline constexpr int out_of_memory = static_cast<int>(0x8007000e);   // E_OUTOFMEMORY
inline constexpr int not_allowed_now = static_cast<int>(0x80131022); // HOST_E_INVALIDOPERATION
inline constexpr int not_running = static_cast<int>(0x80131023);     // HOST_E_CLRNOTAVAILABLE
inline constexpr int malformed_name = static_cast<int>(0x80131047);  // FUSION_E_INVALID_NAME

} // namespace status
