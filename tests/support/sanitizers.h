// Sanitizers make everything slower; limits of time grow with them.
#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr int slowdown = 20;
#else
inline constexpr int slowdown = 1;
#endif
