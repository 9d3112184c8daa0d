#pragma once
// One of the three round window buttons (close, minimise, zoom) that a frameless window draws
// itself; the symbol shows while the pointer is over the button.
#include <QAbstractButton>

namespace corvanel {

class WindowButton final : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Kind { close, minimize, zoom };

    WindowButton(Kind kind, QWidget* parent);

    QSize sizeHint() const override { return {12, 12}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    Kind kind_;
    bool hovered_ = false;
};

}  // namespace corvanel
