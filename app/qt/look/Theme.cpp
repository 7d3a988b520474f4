#include "app/qt/look/Theme.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace lumnara {
namespace {

const Theme darkTheme{
    .appearance = Appearance::dark,
    .backdropTop = QColor(0x1A, 0x1D, 0x25),
    .backdropBottom = QColor(0x10, 0x12, 0x18),
    .text = QColor(0xF1, 0xF3, 0xF7),
    .secondaryText = QColor(0xA7, 0xAF, 0xBE),
    .faintText = QColor(0x7C, 0x85, 0x96),
    .hairline = QColor(0xFF, 0xFF, 0xFF, 0x1F),
    .tile = QColor(0x24, 0x28, 0x32),
    .tileBorder = QColor(0xFF, 0xFF, 0xFF, 0x12),
    .selectedTile = QColor(0x31, 0x37, 0x44),
    .selectionRing = QColor(0xF1, 0xF3, 0xF7),
    .shadow = QColor(0, 0, 0, 0x60),
    .neutral = QColor(0x8A, 0x93, 0xA4),
    .field = QColor(0x14, 0x17, 0x1E),
    .error = QColor(0xF2, 0xA2, 0x8E),
    .notice = QColor(0x2A, 0x2F, 0x3A, 0xF6),
    .noticeBorder = QColor(0xFF, 0xFF, 0xFF, 0x22),
};

const Theme lightTheme{
    .appearance = Appearance::light,
    .backdropTop = QColor(0xF3, 0xF4, 0xF7),
    .backdropBottom = QColor(0xE4, 0xE7, 0xED),
    .text = QColor(0x18, 0x1B, 0x22),
    .secondaryText = QColor(0x56, 0x5E, 0x6D),
    .faintText = QColor(0x74, 0x7D, 0x8D),
    .hairline = QColor(0x18, 0x1B, 0x22, 0x22),
    .tile = QColor(0xFF, 0xFF, 0xFF),
    .tileBorder = QColor(0x18, 0x1B, 0x22, 0x14),
    .selectedTile = QColor(0xFF, 0xFF, 0xFF),
    .selectionRing = QColor(0x2A, 0x2F, 0x3A),
    .shadow = QColor(0x20, 0x28, 0x38, 0x40),
    .neutral = QColor(0x86, 0x8F, 0xA0),
    .field = QColor(0xEE, 0xF0, 0xF4),
    .error = QColor(0xB2, 0x3A, 0x2C),
    .notice = QColor(0xFF, 0xFF, 0xFF, 0xFA),
    .noticeBorder = QColor(0x18, 0x1B, 0x22, 0x22),
};

} // namespace

Appearance appearanceOf(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness()
               ? Appearance::dark
               : Appearance::light;
}

Appearance sessionAppearance() {
    const QByteArray forced = qgetenv("LUMNARA_APPEARANCE");
    if (forced == "light") return Appearance::light;
    if (forced == "dark") return Appearance::dark;
    return appearanceOf(QGuiApplication::palette());
}

const Theme& Theme::of(Appearance appearance) {
    return appearance == Appearance::dark ? darkTheme : lightTheme;
}

QColor Theme::legible(const QColor& color) const {
    float hue, saturation, lightness;
    color.getHslF(&hue, &saturation, &lightness);
    hue = std::max(hue, 0.0f); // A gray has none.
    if (appearance == Appearance::dark) return QColor::fromHslF(hue, saturation, std::max(lightness, 0.78f));
    return QColor::fromHslF(hue, saturation * 0.85f, std::min(lightness, 0.38f));
}

QColor trayNeutral() { return {0x8A, 0x93, 0xA4}; }

QFont interfaceFont(double pixels, QFont::Weight weight) {
    static const QString family = [] {
        for (const char* name : {"Inter", "Noto Sans", "Cantarell", "DejaVu Sans"}) {
            if (QFontDatabase::hasFamily(QString::fromLatin1(name))) return QString::fromLatin1(name);
        }
        return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    }();
    QFont font(family);
    font.setPixelSize(qRound(pixels));
    font.setWeight(weight);
    return font;
}

} // namespace lumnara
