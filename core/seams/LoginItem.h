#pragma once

namespace lumnara {

/// Starting the program when the user logs in. Owned by Platform, called on the main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// What the session will do at the next login, read afresh.
    virtual bool isRegistered() const = 0;

    /// Throws what kept the session from taking it; isRegistered() then tells the state that holds.
    virtual void setRegistered(bool registered) = 0;
};

} // namespace lumnara
