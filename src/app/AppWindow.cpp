#include "app/AppWindow.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

namespace corvanel {

AppWindow::AppWindow(QString identifier, const QString& title, QSize defaultSize,
                     const WindowChromeFactory& chrome)
    : identifier_(std::move(identifier)) {
    setObjectName(identifier_);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    auto layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    chrome_ = chrome(*this);
    resize(defaultSize);
    // A new window opens in the middle of the screen, as the platform would place it.
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

AppWindow::~AppWindow() = default;

void AppWindow::setContent(QWidget* content) {
    content_ = content;
    layout()->addWidget(content);
}

void AppWindow::paintEvent(QPaintEvent*) {
    // Where the platform supplies a translucent material behind the window (macOS), let it show.
    if (testAttribute(Qt::WA_TranslucentBackground)) return;
    // Elsewhere this gradient stands for that material.
    QPainter painter(this);
    QLinearGradient material(0, 0, 0, height());
    material.setColorAt(0, QColor(0x2a, 0x2a, 0x30));
    material.setColorAt(1, QColor(0x1c, 0x1c, 0x21));
    painter.fillRect(rect(), material);
}

void WindowList::add(AppWindow* window) {
    std::erase_if(windows_, [](const QPointer<AppWindow>& open) { return open.isNull(); });
    windows_.emplace_back(window);
}

AppWindow* WindowList::firstWithIdentifierContaining(const QString& part) const {
    for (const QPointer<AppWindow>& window : windows_)
        if (window && !window->identifier().isEmpty() && window->identifier().contains(part))
            return window;
    return nullptr;
}

AppWindow* WindowList::withIdentifier(const QString& identifier) const {
    for (const QPointer<AppWindow>& window : windows_)
        if (window && window->identifier() == identifier) return window;
    return nullptr;
}

std::vector<AppWindow*> WindowList::openWindows() const {
    std::vector<AppWindow*> open;
    for (const QPointer<AppWindow>& window : windows_)
        if (window) open.push_back(window);
    return open;
}

}  // namespace corvanel
