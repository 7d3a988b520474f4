#pragma once

#include <functional>

namespace lumnara::testing {

/// Runs `work` in a child process, which is killed when it enters its system call of that number, from 0.
/// True when the child had ended before.
bool endsBeforeSystemCall(int number, const std::function<void()>& work);

/// Makes a system call (SYS_...) fail with this error from now on, in this process and its children.
void failSystemCall(long systemCall, int error);

} // namespace lumnara::testing
