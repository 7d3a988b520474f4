#include "app/qt/windows/LayerShell.h"

#include "app/qt/windows/LayerPicture.h"
#include "core/async/TestLoop.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(LayerShell, IsNotOfferedWithoutACompositor) {
    async::TestLoop loop;
    LayerShell shell(loop);
    EXPECT_FALSE(shell.isOffered());
    LayerPicture picture(shell);
    picture.show(QImage(10, 10, QImage::Format_ARGB32_Premultiplied), "DP-1", {});
    picture.hide();
}

} // namespace
} // namespace lumnara
