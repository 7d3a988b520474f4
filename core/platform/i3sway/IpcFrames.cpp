#include "core/platform/i3sway/IpcFrames.h"

#include <cstring>

namespace lumnara {

namespace {

constexpr std::string_view frameMagic = "i3-ipc";
constexpr std::size_t frameHeader = frameMagic.size() + 2 * sizeof(std::uint32_t);

std::uint32_t frameNumber(const char* bytes) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

} // namespace

std::string encodeFrame(IpcType type, std::string_view payload) {
    const std::uint32_t numbers[] = {static_cast<std::uint32_t>(payload.size()),
                                     static_cast<std::uint32_t>(type)};
    std::string frame(frameMagic);
    frame.append(reinterpret_cast<const char*>(numbers), sizeof numbers);
    frame.append(payload);
    return frame;
}

std::optional<IpcFrame> FrameReader::next() {
    const std::string_view rest = std::string_view(buffer_).substr(consumed_);
    const std::string_view magic = rest.substr(0, frameMagic.size());
    if (magic != frameMagic.substr(0, magic.size())) throw IpcProtocolError("a message without the magic");
    if (rest.size() >= frameHeader) {
        const std::size_t length = frameNumber(rest.data() + frameMagic.size());
        if (length > longestPayload) throw IpcProtocolError("a message that is too long");
        if (rest.size() >= frameHeader + length) {
            consumed_ += frameHeader + length;
            return IpcFrame{.type = frameNumber(rest.data() + frameMagic.size() + sizeof(std::uint32_t)),
                            .payload = std::string(rest.substr(frameHeader, length))};
        }
    }
    buffer_.erase(0, consumed_);
    consumed_ = 0;
    return std::nullopt;
}

} // namespace lumnara
