#pragma once
// The window that drops down below the status item and holds the menu content. It closes when
// the user clicks elsewhere; the click on the status item that closed it does not open it again.
#include <QElapsedTimer>
#include <QWidget>

namespace corvanel {

class PopupWindow final : public QWidget {
    Q_OBJECT

  public:
    // Clicks on the status item this soon after the popup closed are the closing click itself.
    static constexpr int reopenGuardMilliseconds = 300;

    PopupWindow();

    void setContent(QWidget* content);

    // The status item was clicked: open below `anchor` (at the pointer when the platform gives
    // no geometry), or close if open.
    void toggle(const QRect& anchor);
    // Opens below `anchor`; where the item's place is not known (an empty anchor, or a tray
    // icon not yet embedded, which reports itself at the screen's origin), at the top right of
    // the screen, where status areas are.
    void openBelow(const QRect& anchor);

    // Where the popup goes for an anchor rectangle on a screen area: centred below it, kept on
    // the screen, above the anchor when there is no room below.
    static QPoint placement(const QRect& anchor, const QSize& popup, const QRect& screen);

  protected:
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QElapsedTimer sinceClosed_;
};

}  // namespace corvanel
