#pragma once
// A switch-style toggle: the label on the left, a small track with a sliding knob on the right.
// Checkable like a check box, so it binds to a boolean the same way.
#include <QAbstractButton>

namespace corvanel {

class ToggleSwitch final : public QAbstractButton {
    Q_OBJECT

  public:
    explicit ToggleSwitch(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& position) const override;
};

}  // namespace corvanel
