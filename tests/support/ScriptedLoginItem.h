#pragma once

#include "core/seams/LoginItem.h"

#include <stdexcept>

namespace lumnara::testing {

/// Takes what it is told, unless it refuses.
class ScriptedLoginItem : public LoginItem {
public:
    bool isRegistered() const override { return registered; }
    void setRegistered(bool wanted) override {
        if (refuses) throw std::runtime_error("the disk is full");
        registered = wanted;
    }

    bool registered = false;
    bool refuses = false;
};

} // namespace lumnara::testing
