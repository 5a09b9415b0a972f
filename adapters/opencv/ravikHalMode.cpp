// The library's implementations are chosen when this one is loaded, before OpenCV can call a hook.
#include <ravik/frame.h>

namespace {

// Vector code where it exists; other processing units are left to those who ask for them.
[[maybe_unused]] const int chosen = rvkSetOperationMode(RAVIK_OP_CPU_PERFORMANCE);

} // namespace
