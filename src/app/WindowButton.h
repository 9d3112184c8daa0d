#pragma once
// One of the three round window buttons (close, minimise, zoom) that a frameless window draws
// itself. Its symbol shows while the pointer is over the row of buttons, on all three at once.
#include <QAbstractButton>

namespace corvanel {

class WindowButton final : public QAbstractButton {
    Q_OBJECT

  public:
    enum class Kind { close, minimize, zoom };

    WindowButton(Kind kind, QWidget* parent);

    QSize sizeHint() const override { return {12, 12}; }

    void setGlyphShown(bool shown);
    bool glyphShown() const { return glyphShown_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Kind kind_;
    bool glyphShown_ = false;
};

}  // namespace corvanel
