#pragma once
// A one-line label that shrinks its font to fit its width, down to a given fraction of the
// font's size, and elides beyond that.
#include <QWidget>

namespace corvanel {

class ShrinkingLabel final : public QWidget {
    Q_OBJECT

  public:
    ShrinkingLabel(const QFont& font, qreal minimumScale, QWidget* parent = nullptr);

    void setText(const QString& text);
    const QString& text() const { return text_; }
    void setColor(const QColor& color);
    // The font size fraction the current text is drawn at (1 when it fits at full size).
    qreal currentScale() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString text_;
    QColor color_;
    qreal minimumScale_;
};

}  // namespace corvanel
