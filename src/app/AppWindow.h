#pragma once
// A top-level window of the application that other parts open by its identifier ("panel",
// "visualizer"): a title, a default size, a hidden title bar through the platform's chrome, and
// one content view filling it. It exists only while open: closing it destroys it.
#include <QPointer>
#include <QString>
#include <QWidget>
#include <memory>
#include <vector>

#include "app/WindowChrome.h"

namespace corvanel {

class AppWindow final : public QWidget {
    Q_OBJECT

  public:
    AppWindow(QString identifier, const QString& title, QSize defaultSize,
              const WindowChromeFactory& chrome);
    ~AppWindow() override;

    const QString& identifier() const { return identifier_; }
    WindowChrome& chrome() { return *chrome_; }

    // Puts `content` (owned by the window from now on) under the hidden title bar.
    void setContent(QWidget* content);
    QWidget* content() const { return content_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString identifier_;
    std::unique_ptr<WindowChrome> chrome_;
    QPointer<QWidget> content_;
};

// The application's open windows in the order they were opened (its window list).
class WindowList {
  public:
    void add(AppWindow* window);
    // The first open window whose identifier contains `part`; windows without one are skipped.
    AppWindow* firstWithIdentifierContaining(const QString& part) const;
    AppWindow* withIdentifier(const QString& identifier) const;
    std::vector<AppWindow*> openWindows() const;

  private:
    std::vector<QPointer<AppWindow>> windows_;
};

}  // namespace corvanel
