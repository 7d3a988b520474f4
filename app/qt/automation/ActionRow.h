#pragma once

#include "app/qt/look/SymbolButton.h"
#include "core/automation/Automation.h"

#include <QWidget>

#include <functional>

namespace lumnara {

/// One action of an automation in its list: symbol, label, detail and buttons. One stop of the tab key; with
/// the focus it is used by keys, which its menu tells.
class ActionRow : public QWidget {
public:
    enum class Command { edit, moveUp, moveDown, remove, focusBefore, focusAfter };

    static constexpr int rowHeight = 34;
    /// Where the label begins.
    static constexpr int textLeft = 39;

    ActionRow();

    void show(const AutomationAction& action, bool isFirst, bool isLast);
    std::function<void(Command)> onCommand;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    SymbolButton* button(const char* symbol, const char* title, Command command);
    void command(Command command);
    double textWidth() const;
    void tellWhatIsCut();

    QString symbol_;
    QString label_;
    QString detail_;
    SymbolButton* up_ = nullptr;
    SymbolButton* down_ = nullptr;
    SymbolButton* edit_ = nullptr;
};

} // namespace lumnara
