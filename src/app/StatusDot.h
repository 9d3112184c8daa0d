#pragma once
// A filled circle in one colour (the header's auto-switch indicator).
#include <QColor>
#include <QWidget>

namespace corvanel {

class StatusDot final : public QWidget {
    Q_OBJECT

  public:
    StatusDot(int diameter, QWidget* parent = nullptr);

    void setColor(const QColor& color);
    const QColor& color() const { return color_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor color_;
};

}  // namespace corvanel
