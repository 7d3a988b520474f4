#include "app/qt/look/Symbols.h"

#include "app/qt/look/Theme.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace lumnara {
namespace {

/// The side of the square on which the symbols are designed, and the width of their lines there.
constexpr double designSide = 24;
constexpr double designStroke = 1.7;

/// Lines to stroke and areas to fill, on the design square.
struct Symbol {
    QPainterPath lines;
    QPainterPath areas;
    bool dashed = false;

    Symbol& rect(double x, double y, double width, double height, double radius) {
        lines.addRoundedRect(x, y, width, height, radius, radius);
        return *this;
    }
    Symbol& circle(double x, double y, double radius) {
        lines.addEllipse(QPointF(x, y), radius, radius);
        return *this;
    }
    Symbol& dot(double x, double y, double radius) {
        areas.addEllipse(QPointF(x, y), radius, radius);
        return *this;
    }
    Symbol& line(std::initializer_list<QPointF> points) {
        auto point = points.begin();
        lines.moveTo(*point);
        while (++point != points.end()) lines.lineTo(*point);
        return *this;
    }
    Symbol& outline(std::initializer_list<QPointF> points) {
        line(points);
        lines.closeSubpath();
        return *this;
    }
    Symbol& curve(QPointF from, QPointF control1, QPointF control2, QPointF to) {
        lines.moveTo(from);
        lines.cubicTo(control1, control2, to);
        return *this;
    }
};

Symbol squareGrid() {
    return Symbol()
        .rect(4, 4, 6.5, 6.5, 1.8)
        .rect(13.5, 4, 6.5, 6.5, 1.8)
        .rect(4, 13.5, 6.5, 6.5, 1.8)
        .rect(13.5, 13.5, 6.5, 6.5, 1.8);
}

Symbol circleGrid() {
    return Symbol()
        .circle(7.3, 7.3, 3.3)
        .circle(16.7, 7.3, 3.3)
        .circle(7.3, 16.7, 3.3)
        .circle(16.7, 16.7, 3.3);
}

Symbol squareStack() {
    return Symbol().rect(3.5, 9, 17, 11.5, 2.6).line({{5.8, 6}, {18.2, 6}}).line({{8.2, 3.2}, {15.8, 3.2}});
}

Symbol rectangleGroup() {
    return Symbol().rect(3, 4.5, 8, 15, 2).rect(14, 4.5, 7, 5.8, 2).rect(14, 13.7, 7, 5.8, 2);
}

Symbol diamond() { return Symbol().outline({{12, 2.8}, {21.2, 12}, {12, 21.2}, {2.8, 12}}); }

Symbol regularPolygon(int corners, double radius) {
    QPolygonF polygon;
    for (int corner = 0; corner < corners; ++corner) {
        const double angle = 2 * std::numbers::pi * corner / corners - std::numbers::pi / 2;
        polygon << QPointF(12 + radius * std::cos(angle), 12 + radius * std::sin(angle));
    }
    Symbol symbol;
    symbol.lines.addPolygon(polygon);
    symbol.lines.closeSubpath();
    return symbol;
}

Symbol star() {
    QPolygonF polygon;
    for (int corner = 0; corner < 10; ++corner) {
        const double angle = std::numbers::pi * corner / 5 - std::numbers::pi / 2;
        const double radius = corner % 2 == 0 ? 9.6 : 4.5;
        polygon << QPointF(12 + radius * std::cos(angle), 12.8 + radius * std::sin(angle));
    }
    Symbol symbol;
    symbol.lines.addPolygon(polygon);
    symbol.lines.closeSubpath();
    return symbol;
}

Symbol window() {
    return Symbol().rect(3, 4, 18, 16, 3).line({{3.4, 9}, {20.6, 9}}).dot(6.2, 6.6, 0.85).dot(9, 6.6, 0.85);
}

Symbol squareDashed() {
    Symbol symbol;
    symbol.rect(4, 4, 16, 16, 3.6);
    symbol.dashed = true;
    return symbol;
}

Symbol envelope() { return Symbol().rect(3, 5, 18, 14, 2.6).line({{3.8, 6.6}, {12, 13.2}, {20.2, 6.6}}); }

Symbol terminal() {
    return Symbol()
        .rect(3, 4, 18, 16, 3)
        .line({{7, 8.8}, {10.4, 12}, {7, 15.2}})
        .line({{12.6, 15.4}, {17, 15.4}});
}

Symbol globe() {
    Symbol symbol;
    symbol.circle(12, 12, 9).line({{3.2, 12}, {20.8, 12}});
    symbol.lines.addEllipse(QPointF(12, 12), 4, 9);
    return symbol;
}

Symbol document() {
    return Symbol()
        .outline({{5.5, 3}, {14, 3}, {18.5, 7.5}, {18.5, 21}, {5.5, 21}})
        .line({{13.6, 3.4}, {13.6, 8}, {18.2, 8}})
        .line({{8.8, 12.4}, {15.2, 12.4}})
        .line({{8.8, 16.2}, {15.2, 16.2}});
}

Symbol musicNote() {
    return Symbol()
        .line({{9.4, 17.4}, {9.4, 5.6}, {19, 3.6}, {19, 15.2}})
        .line({{9.4, 9.4}, {19, 7.4}})
        .circle(6.7, 17.6, 2.7)
        .circle(16.3, 15.4, 2.7);
}

Symbol bubble() {
    Symbol symbol;
    QPainterPath& path = symbol.lines;
    path.moveTo(6.4, 4.2);
    path.lineTo(17.6, 4.2);
    path.arcTo(14.6, 4.2, 6, 6, 90, -90);
    path.lineTo(20.6, 13.2);
    path.arcTo(14.6, 10.2, 6, 6, 0, -90);
    path.lineTo(11.6, 16.2);
    path.lineTo(7, 20.4);
    path.lineTo(7, 16.2);
    path.lineTo(6.4, 16.2);
    path.arcTo(3.4, 10.2, 6, 6, 270, -90);
    path.lineTo(3.4, 7.2);
    path.arcTo(3.4, 4.2, 6, 6, 180, -90);
    return symbol;
}

Symbol hammer() {
    Symbol symbol;
    QPainterPath upright;
    upright.addRoundedRect(5.2, 3, 13.6, 5.8, 1.6, 1.6);
    upright.moveTo(10.4, 9);
    upright.lineTo(10.4, 20.4);
    upright.arcTo(10.4, 18.8, 3.2, 3.2, 180, 180);
    upright.lineTo(13.6, 9);
    QTransform tilt;
    tilt.translate(12, 12);
    tilt.rotate(40);
    tilt.translate(-12, -12);
    symbol.lines = tilt.map(upright);
    return symbol;
}

Symbol folder() {
    return Symbol()
        .outline({{3, 5.2}, {9.4, 5.2}, {11.6, 7.8}, {21, 7.8}, {21, 19}, {3, 19}})
        .line({{3.4, 11.2}, {20.6, 11.2}});
}

Symbol house() {
    return Symbol()
        .line({{2.8, 11.6}, {12, 3.6}, {21.2, 11.6}})
        .line({{5.4, 9.8}, {5.4, 20}, {18.6, 20}, {18.6, 9.8}})
        .line({{9.8, 20}, {9.8, 14.4}, {14.2, 14.4}, {14.2, 20}});
}

Symbol paintbrush() {
    return Symbol()
        .line({{10, 13.6}, {18.4, 3.8}})
        .line({{12.6, 15.4}, {20.6, 5.4}})
        .curve({18.4, 3.8}, {19.6, 2.4}, {21.8, 4}, {20.6, 5.4})
        .curve({10, 13.6}, {6, 12.8}, {7, 17.6}, {3.2, 19.4})
        .curve({3.2, 19.4}, {8.4, 22}, {13.4, 20.4}, {12.6, 15.4})
        .line({{10, 13.6}, {12.6, 15.4}});
}

Symbol film() {
    Symbol symbol;
    symbol.rect(3, 4.5, 18, 15, 2.4).line({{7.4, 4.5}, {7.4, 19.5}}).line({{16.6, 4.5}, {16.6, 19.5}});
    symbol.line({{7.4, 12}, {16.6, 12}});
    for (const double y : {8.3, 12.0, 15.7}) symbol.line({{3.4, y}, {7.2, y}}).line({{16.8, y}, {20.6, y}});
    return symbol;
}

Symbol gameController() {
    return Symbol()
        .rect(2.4, 6.4, 19.2, 11.6, 5.6)
        .line({{8, 10}, {8, 14.4}})
        .line({{5.8, 12.2}, {10.2, 12.2}})
        .dot(14.8, 13.6, 1.15)
        .dot(17.6, 10.8, 1.15);
}

Symbol cart() {
    return Symbol()
        .line({{2.6, 4}, {5.4, 4}, {7.8, 15.4}, {18.4, 15.4}, {20.6, 7.4}, {6.2, 7.4}})
        .dot(9, 19.2, 1.5)
        .dot(17.2, 19.2, 1.5);
}

Symbol book() {
    return Symbol()
        .line({{12, 6.6}, {12, 20}})
        .curve({12, 6.6}, {9.6, 4.4}, {6, 4}, {3, 4.6})
        .curve({12, 6.6}, {14.4, 4.4}, {18, 4}, {21, 4.6})
        .line({{3, 4.6}, {3, 17.8}})
        .line({{21, 4.6}, {21, 17.8}})
        .curve({3, 17.8}, {6, 17.2}, {9.6, 17.8}, {12, 20})
        .curve({21, 17.8}, {18, 17.2}, {14.4, 17.8}, {12, 20});
}

Symbol chartBars() {
    return Symbol().rect(3.4, 12.6, 4.2, 7.4, 1.2).rect(9.9, 8, 4.2, 12, 1.2).rect(16.4, 4, 4.2, 16, 1.2);
}

Symbol camera() {
    return Symbol()
        .outline({{3, 7.4}, {7.4, 7.4}, {9.2, 4.6}, {14.8, 4.6}, {16.6, 7.4}, {21, 7.4}, {21, 19}, {3, 19}})
        .circle(12, 13, 3.7);
}

Symbol calendar() {
    Symbol symbol;
    symbol.rect(3.4, 5, 17.2, 15.4, 2.8).line({{3.8, 9.8}, {20.2, 9.8}});
    symbol.line({{8, 3}, {8, 6.6}}).line({{16, 3}, {16, 6.6}});
    for (const double x : {8.0, 12.0, 16.0}) symbol.dot(x, 13.2, 1).dot(x, 16.8, 1);
    return symbol;
}

Symbol magnifyingGlass() { return Symbol().circle(10.4, 10.4, 6.8).line({{15.4, 15.4}, {21, 21}}); }

Symbol exclamation() { return Symbol().circle(12, 12, 9.2).line({{12, 7}, {12, 12.8}}).dot(12, 16.6, 1.2); }

Symbol link() {
    Symbol symbol;
    QPainterPath upright;
    upright.moveTo(10.6, 8.2);
    upright.lineTo(7, 8.2);
    upright.arcTo(3.2, 8.2, 7.6, 7.6, 90, 180);
    upright.lineTo(10.6, 15.8);
    upright.moveTo(13.4, 8.2);
    upright.lineTo(17, 8.2);
    upright.arcTo(13.2, 8.2, 7.6, 7.6, 90, -180);
    upright.lineTo(13.4, 15.8);
    upright.moveTo(8.8, 12);
    upright.lineTo(15.2, 12);
    symbol.lines = upright;
    return symbol;
}

Symbol bolt() {
    return Symbol().outline({{13.4, 2.6}, {5, 13.6}, {11.2, 13.6}, {10.2, 21.4}, {19, 10}, {12.6, 10}});
}

Symbol moon() {
    return Symbol()
        .curve({20.4, 14.2}, {16.4, 16}, {8.4, 12.8}, {10.4, 3.6})
        .curve({10.4, 3.6}, {-0.4, 6.4}, {2, 21.4}, {12.4, 20.8})
        .curve({12.4, 20.8}, {16.4, 20.6}, {19.4, 17.8}, {20.4, 14.2});
}

Symbol video() {
    return Symbol()
        .rect(2.6, 6, 12.6, 12, 2.6)
        .outline({{15.2, 10.8}, {21.4, 7.4}, {21.4, 16.6}, {15.2, 13.2}});
}

Symbol cup() {
    Symbol symbol;
    symbol.line({{4, 6}, {16.4, 6}, {15.6, 14.4}, {13.4, 16.8}, {7, 16.8}, {4.8, 14.4}, {4, 6}});
    symbol.curve({16.2, 8}, {21.6, 7.4}, {21.2, 13.6}, {15.8, 13.2});
    return symbol.line({{3.4, 20.2}, {17, 20.2}});
}

Symbol clock() { return Symbol().circle(12, 12, 9).line({{12, 6.6}, {12, 12}, {15.6, 14.2}}); }

Symbol timer() {
    return Symbol().circle(12, 13.6, 7.8).line({{12, 9.4}, {12, 13.6}}).line({{9.6, 2.8}, {14.4, 2.8}});
}

Symbol hourglass() {
    return Symbol()
        .line({{5, 3.4}, {19, 3.4}})
        .line({{5, 20.6}, {19, 20.6}})
        .line({{6.6, 3.6}, {6.6, 7}, {17.4, 17}, {17.4, 20.4}})
        .line({{17.4, 3.6}, {17.4, 7}, {6.6, 17}, {6.6, 20.4}});
}

Symbol pencil() {
    return Symbol()
        .outline({{4, 20}, {5, 15.4}, {16.4, 4}, {20, 7.6}, {8.6, 19}})
        .line({{13.8, 6.6}, {17.4, 10.2}});
}

Symbol trash() {
    return Symbol()
        .line({{4, 6.4}, {20, 6.4}})
        .line({{9, 6.2}, {9, 3.4}, {15, 3.4}, {15, 6.2}})
        .line({{5.8, 6.6}, {6.8, 20.6}, {17.2, 20.6}, {18.2, 6.6}})
        .line({{10, 10.4}, {10, 16.8}})
        .line({{14, 10.4}, {14, 16.8}});
}

const QHash<QString, Symbol>& allSymbols() {
    static const QHash<QString, Symbol> symbols{
        {"square.grid.2x2", squareGrid()},
        {"circle.grid.2x2", circleGrid()},
        {"square.stack", squareStack()},
        {"rectangle.3.group", rectangleGroup()},
        {"diamond", diamond()},
        {"hexagon", regularPolygon(6, 9.6)},
        {"macwindow", window()},
        {"square.dashed", squareDashed()},
        {"envelope", envelope()},
        {"terminal", terminal()},
        {"globe", globe()},
        {"doc.text", document()},
        {"music.note", musicNote()},
        {"bubble.left", bubble()},
        {"hammer", hammer()},
        {"folder", folder()},
        {"star", star()},
        {"house", house()},
        {"paintbrush", paintbrush()},
        {"film", film()},
        {"gamecontroller", gameController()},
        {"cart", cart()},
        {"book", book()},
        {"chart.bar", chartBars()},
        {"camera", camera()},
        {"calendar", calendar()},
        {"magnifyingglass", magnifyingGlass()},
        {"exclamationmark.circle", exclamation()},
        {"link", link()},
        {"bolt", bolt()},
        {"moon", moon()},
        {"video", video()},
        {"cup.and.saucer", cup()},
        {"clock", clock()},
        {"timer", timer()},
        {"hourglass", hourglass()},
        {"pencil", pencil()},
        {"trash", trash()},
        {"chevron.up", Symbol().line({{5.4, 15.2}, {12, 8.6}, {18.6, 15.2}})},
        {"chevron.down", Symbol().line({{5.4, 8.8}, {12, 15.4}, {18.6, 8.8}})},
    };
    return symbols;
}

const Symbol* symbolOrBase(QString name) {
    const auto& symbols = allSymbols();
    for (;;) {
        const auto found = symbols.constFind(name);
        if (found != symbols.cend()) return &*found;
        const auto dot = name.lastIndexOf('.');
        if (dot <= 0) return nullptr;
        name.truncate(dot);
    }
}

bool isPicture(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() > 0x7F; });
}

} // namespace

bool hasSymbol(const QString& name) { return symbolOrBase(name) != nullptr; }

void drawSymbol(QPainter& painter, const QString& name, const QRectF& box, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const Symbol* symbol = symbolOrBase(name);
    if (!symbol && isPicture(name)) {
        painter.setFont(interfaceFont(box.height() * 0.82));
        painter.setPen(color);
        painter.drawText(box, Qt::AlignCenter | Qt::TextDontClip, name);
    } else {
        if (!symbol) symbol = &*allSymbols().constFind("square.grid.2x2");
        painter.translate(box.topLeft());
        painter.scale(box.width() / designSide, box.height() / designSide);
        QPen pen(color, designStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        if (symbol->dashed) pen.setDashPattern({1.9, 2.0});
        painter.strokePath(symbol->lines, pen);
        painter.fillPath(symbol->areas, color);
    }
    painter.restore();
}

} // namespace lumnara
