#pragma once

#include "core/model/Geometry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumnara {

class AccessibilityElement;
using AccessibilityElements = std::vector<std::shared_ptr<AccessibilityElement>>;

/// What another program's element tells under an attribute's name. Nobody promises a type; monostate stands
/// for one that is none of the others.
using AccessibilityValue =
    std::variant<std::monostate, bool, std::int64_t, double, std::string, Point, Size, AccessibilityElements>;

/// One element of another program's surface, and a hold on it, not a copy: each call asks that program, and
/// blocks for as long as it takes. An element that has gone tells nothing. Main thread.
class AccessibilityElement {
public:
    virtual ~AccessibilityElement() = default;

    /// Nothing when the element has no such attribute, or it can't be read.
    virtual std::optional<AccessibilityValue> attribute(std::string_view name) = 0;
    /// The system's code for what came of it; 0 is success.
    virtual int perform(std::string_view action) = 0;
};

/// What the user lets the program do to other programs. Owned by Platform, called on the main thread; a
/// session without such a permission has no Accessibility.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// Whether the permission is granted now, read afresh. Without it posted events do nothing.
    virtual bool isTrusted() = 0;

    /// The root of that process's elements; null where programs have none. Without the permission, or without
    /// the process, it tells nothing.
    virtual std::shared_ptr<AccessibilityElement> application(std::int32_t /*pid*/) { return nullptr; }
};

} // namespace lumnara
