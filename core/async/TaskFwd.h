#pragma once

namespace lumnara::async {

/// For headers that only name tasks; whoever writes, starts or awaits one includes Task.h.
template <class T = void> class Task;

} // namespace lumnara::async
