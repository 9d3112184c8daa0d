#pragma once
// The status item where the desktop has no system tray: a small window of our own that shows the
// same label and opens the same popup when clicked, so the application is never invisible. It is
// a frameless tool window with no close button; closing it anyway (a window manager's close
// shortcut) quits the application.
#include <QImage>
#include <QWidget>

#include "app/StatusItem.h"

namespace corvanel {

class WindowStatusItem final : public StatusItem {
  public:
    WindowStatusItem();

    void setLabelImage(const QImage& templateImage) override;
    void setInserted(bool inserted) override;
    QRect geometry() const override;

    QWidget& window() { return window_; }

  private:
    class LabelWindow final : public QWidget {
      public:
        explicit LabelWindow(WindowStatusItem& item);
        QImage label;

      protected:
        void paintEvent(QPaintEvent* event) override;
        void mouseReleaseEvent(QMouseEvent* event) override;
        void closeEvent(QCloseEvent* event) override;

      private:
        WindowStatusItem& item_;
    };

    LabelWindow window_;
    bool placed_ = false;
};

}  // namespace corvanel
