#pragma once

// All that one writes and starts tasks with.
#include "core/async/Coroutine.h"
#include "core/async/Race.h"
#include "core/async/Sleep.h"
#include "core/async/TaskHandle.h"
