#pragma once

#include "core/model/Geometry.h"
#include "core/seams/KeyCode.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace lumnara {

/// The window server's own numbers.
enum class MouseEventType : int { leftDown = 1, leftUp = 2, moved = 5, leftDragged = 6 };
enum class MouseButton : int { left = 0 };

/// What an event is made as, before its fields are set: nothing in particular, of the mouse, or of the
/// keyboard.
struct BlankEvent {
    bool operator==(const BlankEvent&) const = default;
};
struct MouseEvent {
    MouseEventType type = MouseEventType::moved;
    Point at;
    MouseButton button = MouseButton::left;
    bool operator==(const MouseEvent&) const = default;
};
struct KeyEvent {
    KeyCode key{};
    bool isDown = false;
    bool operator==(const KeyEvent&) const = default;
};

/// Whose state of buttons and modifiers an event goes with; the system's own numbers.
enum class EventSourceState : int { combinedSession = 0, hidSystem = 1 };

/// An event and its numbered fields, in the order in which they are set.
struct SyntheticEvent {
    struct Field {
        int number = 0;
        std::variant<std::int64_t, double> value;
        bool operator==(const Field&) const = default;
    };

    std::variant<BlankEvent, MouseEvent, KeyEvent> origin{};
    std::vector<Field> fields{};
    /// Nothing for an event without a source.
    std::optional<EventSourceState> source{};

    bool operator==(const SyntheticEvent&) const = default;
    void set(int number, std::int64_t value) { fields.push_back({number, value}); }
    void set(int number, double value) { fields.push_back({number, value}); }

    /// The field as it was set last; nothing when it was not set, or as the other kind of number.
    std::optional<std::int64_t> integer(int number) const { return read<std::int64_t>(number); }
    std::optional<double> real(int number) const { return read<double>(number); }

private:
    template <class T> std::optional<T> read(int number) const {
        for (auto field = fields.rbegin(); field != fields.rend(); ++field) {
            if (field->number != number) continue;
            const T* value = std::get_if<T>(&field->value);
            return value ? std::optional<T>(*value) : std::nullopt;
        }
        return std::nullopt;
    }
};

/// Where in the stream of input an event is let in.
enum class EventTap : int { hid = 0, session = 1, annotatedSession = 2 };

/// Input made by the program. Owned by Platform, called on the main thread; a session that lets no program
/// make input has no EventServices.
class EventServices {
public:
    virtual ~EventServices() = default;

    /// Makes the event, sets its fields in their order and posts it. An event that can't be made is skipped;
    /// what comes of a posted one, nobody tells.
    virtual void post(const SyntheticEvent& event, EventTap tap) = 0;

    /// Where the pointer is now; nothing when it can't be told.
    virtual std::optional<Point> pointer() = 0;
    /// Puts the pointer there at once.
    virtual void warpPointer(Point to) = 0;
};

} // namespace lumnara
