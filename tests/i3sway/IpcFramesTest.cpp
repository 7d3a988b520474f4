#include "core/platform/i3sway/IpcFrames.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(IpcFrames, LieAsTheProtocolSays) {
    const std::string frame = encodeFrame(IpcType::subscribe, "[\"output\"]");
    const std::string header{"i3-ipc\x0a\0\0\0\2\0\0\0", 14};
    EXPECT_EQ(frame, header + "[\"output\"]");
}

TEST(IpcFrames, ComeWholeHoweverTheBytesArrive) {
    const std::string stream = encodeFrame(IpcType::outputs, std::string(300, 'x')) +
                               encodeFrame(IpcType::command, "") + encodeFrame(IpcType::workspaces, "[]");
    for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
        FrameReader reader;
        std::string seen;
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            reader.append(std::string_view(stream).substr(at, piece));
            while (const auto frame = reader.next())
                seen += std::to_string(frame->type) + ":" + std::to_string(frame->payload.size()) + " ";
        }
        ASSERT_EQ(seen, "3:300 0:0 1:2 ") << "in pieces of " << piece;
    }
}

TEST(IpcFrames, RefuseWhatIsNone) {
    for (const std::string nonsense : {"HTTP/1.1 200 OK", "x", "i3-ipx", "i3-ip\n"}) {
        FrameReader reader;
        reader.append(nonsense);
        EXPECT_THROW(reader.next(), IpcProtocolError) << nonsense;
    }
    // A length that would fill the memory is refused by the header alone.
    FrameReader reader;
    reader.append({"i3-ipc\xff\xff\xff\x7f\0\0\0\0", 14});
    EXPECT_THROW(reader.next(), IpcProtocolError);
}

} // namespace
} // namespace lumnara
