// Frames painted on a pool thread: what the panel and the visualizer copy to the screen.
#include <gtest/gtest.h>

#include <QSemaphore>
#include <QThread>
#include <QThreadPool>

#include "meters/kit/FramePainter.h"

namespace corvanel::meters {
namespace {

TEST(FramePainter, PaintsOnAThreadOfTheGlobalPoolAtTheRequestedPixelScale) {
    FramePainter painter;
    bool onPoolThread = false;
    const QThread* caller = QThread::currentThread();
    const QThread* painting = nullptr;
    const QImage& frame = painter.paint({30, 20}, 2.0, [&](QPainter& p) {
        painting = QThread::currentThread();
        onPoolThread = QThreadPool::globalInstance()->contains(painting);
        p.fillRect(QRectF(10, 5, 5, 5), Qt::red);
    });
    EXPECT_NE(painting, caller);
    EXPECT_TRUE(onPoolThread);  // so the raster engine keeps every fill on that thread
    EXPECT_EQ(frame.size(), QSize(60, 40));
    EXPECT_DOUBLE_EQ(frame.devicePixelRatio(), 2.0);
    EXPECT_EQ(frame.pixelColor(24, 14), QColor(Qt::red));
    EXPECT_EQ(frame.pixelColor(18, 14).alpha(), 0);
}

TEST(FramePainter, StartsEveryFrameClearAndFollowsSizeChanges) {
    FramePainter painter;
    painter.paint({10, 10}, 1.0, [](QPainter& p) { p.fillRect(QRect(0, 0, 10, 10), Qt::blue); });
    const QImage& next = painter.paint({12, 8}, 1.0, [](QPainter&) {});
    EXPECT_EQ(next.size(), QSize(12, 8));
    EXPECT_EQ(next.pixelColor(2, 2).alpha(), 0);
}

TEST(FramePainter, PaintsItselfWhileOtherWorkFillsThePool) {
    QThreadPool* pool = QThreadPool::globalInstance();
    QSemaphore release;
    QSemaphore finished;
    const int busy = pool->maxThreadCount();
    for (int i = 0; i < busy; ++i)
        pool->start([&] {
            release.acquire();
            finished.release();
        });
    FramePainter painter;
    const QThread* painting = nullptr;
    painter.paint({4, 4}, 1.0, [&](QPainter&) { painting = QThread::currentThread(); });
    EXPECT_EQ(painting, QThread::currentThread());
    release.release(busy);
    finished.acquire(busy);
}

}  // namespace
}  // namespace corvanel::meters
