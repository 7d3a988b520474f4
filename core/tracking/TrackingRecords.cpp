#include "core/tracking/TrackingRecords.h"

namespace lumnara {

std::string_view rawValue(TrackingSession::State state) {
    switch (state) {
    case TrackingSession::State::running: return "running";
    case TrackingSession::State::paused: return "paused";
    case TrackingSession::State::ended: break;
    }
    return "ended";
}

} // namespace lumnara
