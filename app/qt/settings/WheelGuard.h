#pragma once

class QWidget;

namespace lumnara {

/// Lets the wheel scroll the page over a control that would otherwise change its value, unless it has the
/// focus.
void guardFromWheel(QWidget* control);

} // namespace lumnara
