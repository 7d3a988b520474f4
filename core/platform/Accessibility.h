#pragma once

namespace lumnara {

/// What the user lets the program do to other programs. Owned by Platform, called on the main thread; a
/// session without such a permission has no Accessibility.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// Whether the permission is granted now, read afresh. Without it posted events do nothing.
    virtual bool isTrusted() = 0;
};

} // namespace lumnara
