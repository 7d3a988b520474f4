#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace lumnara {

/// The messages that we send; a reply bears the number of its request.
enum class IpcType : std::uint32_t {
    command = 0,
    workspaces = 1,
    subscribe = 2,
    outputs = 3,
    tree = 4,
    config = 9,
};

/// The events that we read; their numbers have the highest bit set.
enum class IpcEvent : std::uint32_t {
    workspace = 0x80000000,
    output = 0x80000001,
    window = 0x80000003,
    binding = 0x80000005,
    shutdown = 0x80000006,
};

struct IpcFrame {
    std::uint32_t type = 0;
    std::string payload;

    bool isEvent() const { return type & 0x80000000; }
};

/// The peer sent something that is no message of this protocol.
class IpcProtocolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A message as the IPC of i3 frames it: the magic "i3-ipc", the payload's length and the type, both of 32
/// bits in the machine's byte order, and the payload.
std::string encodeFrame(IpcType type, std::string_view payload);

/// Cuts a stream of bytes into messages. Holds at most one unfinished message, of a bounded length.
class FrameReader {
public:
    /// More than any layout needs.
    static constexpr std::size_t longestPayload = std::size_t{4} << 20;

    void append(std::string_view bytes) { buffer_.append(bytes); }
    /// The next whole message, or nothing yet. Throws IpcProtocolError for a wrong magic or a payload
    /// longer than the longest; the reader is of no use then.
    std::optional<IpcFrame> next();

private:
    std::string buffer_;
    std::size_t consumed_ = 0;
};

} // namespace lumnara
