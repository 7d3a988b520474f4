#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QPalette>
#include <QWidget>
#include <gtest/gtest.h>

namespace lumnara::testing {

/// With a folder in LUMNARA_PICTURES a picture of the widget is left there to be looked at.
inline void savePicture(QWidget& widget, const QString& name) {
    const QString folder = qEnvironmentVariable("LUMNARA_PICTURES");
    if (folder.isEmpty()) return;
    QCoreApplication::processEvents(); // lays out what has changed
    QDir().mkpath(folder);
    EXPECT_TRUE(widget.grab().save(QStringLiteral("%1/%2.png").arg(folder, name)));
}

/// Colours such as the desktops give to windows.
inline QPalette panelPalette(bool dark) {
    if (!dark) return QPalette(QColor(0xEF, 0xEF, 0xF1));
    QPalette palette(QColor(0x31, 0x36, 0x3B), QColor(0x2A, 0x2E, 0x32));
    palette.setColor(QPalette::Base, QColor(0x1B, 0x1E, 0x20));
    palette.setColor(QPalette::Text, QColor(0xFC, 0xFC, 0xFC));
    palette.setColor(QPalette::WindowText, QColor(0xFC, 0xFC, 0xFC));
    return palette;
}

} // namespace lumnara::testing
