#pragma once

#include "core/seams/Accessibility.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara::testing {

/// Another program's elements, as they are told on a bad day.
class DamagedAccessibility : public Accessibility {
public:
    /// What is told in place of the value that an element has under this name.
    using Damage = std::function<std::optional<AccessibilityValue>(std::string_view name,
                                                                   const AccessibilityValue& value)>;
    enum class Actions { performed, refused, ignored };

    explicit DamagedAccessibility(Accessibility& real) : real_(real) {}

    /// Empty for elements that tell the truth. `identifier` narrows it to the elements of that name; an empty
    /// one means those without a name.
    Damage damage;
    std::optional<std::string> identifier;
    Actions actions = Actions::performed;

    bool isTrusted() override { return real_.isTrusted(); }
    std::shared_ptr<AccessibilityElement> application(std::int32_t pid) override {
        return wrap(real_.application(pid));
    }

private:
    class Element : public AccessibilityElement {
    public:
        Element(DamagedAccessibility& owner, std::shared_ptr<AccessibilityElement> real)
            : owner_(owner),
              real_(std::move(real)) {}
        std::optional<AccessibilityValue> attribute(std::string_view name) override {
            auto value = real_->attribute(name);
            if (!value) return std::nullopt;
            if (owner_.damage && isMeant()) value = owner_.damage(name, *value);
            if (auto* elements = value ? std::get_if<AccessibilityElements>(&*value) : nullptr)
                for (auto& element : *elements) element = owner_.wrap(std::move(element));
            return value;
        }
        int perform(std::string_view action) override {
            if (owner_.actions == Actions::refused) return -25204;
            return owner_.actions == Actions::ignored ? 0 : real_->perform(action);
        }

    private:
        bool isMeant() {
            if (!owner_.identifier) return true;
            const auto told = real_->attribute("AXIdentifier");
            const auto* name = told ? std::get_if<std::string>(&*told) : nullptr;
            return name ? *name == *owner_.identifier : owner_.identifier->empty();
        }

        DamagedAccessibility& owner_;
        std::shared_ptr<AccessibilityElement> real_;
    };

    std::shared_ptr<AccessibilityElement> wrap(std::shared_ptr<AccessibilityElement> real) {
        return real ? std::make_shared<Element>(*this, std::move(real)) : nullptr;
    }

    Accessibility& real_;
};

} // namespace lumnara::testing
