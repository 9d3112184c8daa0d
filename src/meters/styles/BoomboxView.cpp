#include "meters/styles/BoomboxView.h"

#include "meters/kit/Colors.h"
#include "meters/kit/ContinuousRect.h"
#include "meters/kit/InstrumentCase.h"
#include "meters/kit/LevelMath.h"

namespace corvanel::meters {

namespace {

QColor blockColour(int k) {
    const double f = static_cast<double>(k) / BoomboxView::blockCount;
    if (f > 0.88) return rgb(0.92, 0.10, 0.08);
    if (f > 0.78) return rgb(0.98, 0.55, 0.10);
    if (f > 0.45) return rgb(0.98, 0.93, 0.10);
    return rgb(0.24, 0.86, 0.20);
}

struct Blocks {
    QRectF canvas;
    std::size_t columns;
    double columnWidth;
    double blockHeight;

    Blocks(const QSizeF& size, std::size_t m)
        : canvas(QRectF(QPointF(), size)
                     .adjusted(BoomboxView::canvasInset, BoomboxView::canvasInset,
                               -BoomboxView::canvasInset, -BoomboxView::canvasInset)),
          columns(m),
          columnWidth(m == 0
                          ? 0.0
                          : (canvas.width() - BoomboxView::columnGap * static_cast<double>(m - 1)) /
                                static_cast<double>(m)),
          blockHeight((canvas.height() - (BoomboxView::blockCount - 1) * BoomboxView::blockGap) /
                      BoomboxView::blockCount) {}

    double columnX(std::size_t c) const {
        return canvas.left() + static_cast<double>(c) * (columnWidth + BoomboxView::columnGap);
    }
    // Block k counts from 1 at the bottom.
    double blockTop(int k) const {
        return canvas.top() + canvas.height() - blockHeight * k - BoomboxView::blockGap * (k - 1);
    }
    QRectF block(std::size_t c, int k) const {
        return {columnX(c), blockTop(k), columnWidth, blockHeight};
    }
};

}  // namespace

void BoomboxView::setValues(const MeterValues& values) {
    columns_ = pairwiseMaxima(values.levels);
}

void BoomboxView::paint(QPainter& painter, const QSizeF& size) {
    panel_.draw(painter, size, [](QPainter& p, const QSizeF& s) {
        drawBezel(p, QRectF(QPointF(), s), 10, {rgb(0.10, 0.06, 0.18), rgb(0.04, 0.02, 0.09)},
                  {grey(0.0, 0.4), 3, {0, 2}});
    });
    if (columns_.empty()) return;
    if (columns_.size() != layoutColumns_) {
        layoutColumns_ = columns_.size();
        blocks_.invalidate();
    }
    // Every block of every column, lit, drawn once; a frame copies each column's lit run.
    blocks_.prepare(painter, size, [this](QPainter& p, const QSizeF& s) {
        const Blocks blocks(s, layoutColumns_);
        for (std::size_t c = 0; c < layoutColumns_; ++c)
            for (int k = 1; k <= blockCount; ++k)
                p.fillPath(continuousRoundedRect(blocks.block(c, k), blocks.blockHeight / 2.8),
                           blockColour(k));
    });
    const Blocks blocks(size, layoutColumns_);
    for (std::size_t c = 0; c < layoutColumns_; ++c) {
        const int lit = litSegments(columns_[c], blockCount);
        if (lit < 1) continue;
        const double top = blocks.blockTop(lit) - blockGap / 2;
        blocks_.drawPart(
            painter, QRectF(blocks.columnX(c) - columnGap / 2, top, blocks.columnWidth + columnGap,
                            blocks.canvas.bottom() + blockGap / 2 - top));
    }
}

}  // namespace corvanel::meters
