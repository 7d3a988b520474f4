#pragma once

#include "core/platform/x11/X11Connection.h"
#include "core/seams/IdleSource.h"

#include <memory>

namespace lumnara {

/// The server's own count since the last input of any device, by the extension MIT-SCREEN-SAVER.
class X11IdleSource : public IdleSource {
public:
    /// Null on a server without the extension.
    static std::unique_ptr<X11IdleSource> on(std::shared_ptr<X11Connection> connection);

    std::optional<double> secondsSinceInput() override;

private:
    explicit X11IdleSource(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    std::shared_ptr<X11Connection> connection_;
};

} // namespace lumnara
