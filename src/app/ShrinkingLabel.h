#pragma once
// A one-line label that shrinks its font to fit its width, down to a given fraction of the
// font's size, and elides beyond that with an ellipsis; the full text is in its tooltip.
#include <QWidget>

namespace corvanel {

class ShrinkingLabel final : public QWidget {
    Q_OBJECT

  public:
    ShrinkingLabel(const QFont& font, qreal minimumScale, QWidget* parent = nullptr);

    void setText(const QString& text);
    const QString& text() const { return text_; }
    void setColor(const QColor& color);
    // Centred unless told otherwise.
    void setAlignment(Qt::Alignment alignment);
    // The text as drawn at the current width: ending in an ellipsis when it does not fit.
    QString shownText() const;
    // The font size fraction the current text is drawn at (1 when it fits at full size).
    qreal currentScale() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QFont scaledFont() const;

    QString text_;
    QColor color_;
    Qt::Alignment alignment_ = Qt::AlignCenter;
    qreal minimumScale_;
};

}  // namespace corvanel
